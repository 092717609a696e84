// What the readers of lines say of what is wrong, from the place that knows it.
#pragma once

#include "pll_observer.h"

#include "database/files/input_file.h"

namespace pll_internal {

// One thing that is wrong with a line.
struct PLL_FAULT
{
    PLL_FINDING m_finding = PLL_FINDING::NONE;
    const char* m_word = nullptr;  // as it was cut out of the line; null: a word is missing
    const char* m_at = nullptr;    // where the missing word was looked for
    const char* m_needed = "";     // the keyword that must come first
    long long m_value = 0;         // what was read, and what it must not exceed
    long long m_limit = 0;
    int m_system_error = 0;  // why a file cannot be opened, see PLL_INPUT_FILE::open
};

class PLL_WORDS;

// Listens to a reader of lines. Nothing that it hears allocates memory on the reader's account, and
// nothing that it does changes what is read.
class PLL_LINE_LISTENER
{
public:
    PLL_LINE_LISTENER() = default;
    virtual ~PLL_LINE_LISTENER() = default;
    PLL_LINE_LISTENER(const PLL_LINE_LISTENER&) = delete;
    PLL_LINE_LISTENER& operator=(const PLL_LINE_LISTENER&) = delete;

    // A line, whole, that `file` read last.
    virtual void begin_line(const char* line, const PLL_INPUT_FILE& file,
                            const char* file_name) = 0;
    virtual void hear(const PLL_FAULT& fault) = 0;

    // After a line that holds something was carried out: `reason` is why it was skipped or failed,
    // NONE when it was stored; `rest` are the words that were not used.
    virtual void end_line(PLL_FINDING reason, PLL_WORDS* rest) = 0;

    // What is wrong with a file, or from `line` of it on; 0: as a whole.
    virtual void hear_of_file(const PLL_FAULT& fault, const char* file, int line) = 0;
};

}  // namespace pll_internal
