// Watches the reader of a family file for an observer.
#pragma once

#include "database/files/family_file.h"
#include "database/watch/line_watch.h"

namespace pll_internal {

// The records are as the reader has left them whenever it tells of something; the watch adds where
// a statement stands and where its value went.
class PLL_STATEMENT_WATCH : public PLL_LINE_LISTENER
{
public:
    // Both must outlive the watch.
    PLL_STATEMENT_WATCH(const PLL_FAMILY_FILE_READER& reader, PLL_READ_OBSERVER* observer);

    void begin_line(const char* line, const PLL_INPUT_FILE& file, const char* file_name) override;
    void hear(const PLL_FAULT& fault) override;
    void end_line(PLL_FINDING reason, PLL_WORDS* rest) override;
    void hear_of_file(const PLL_FAULT& fault, const char* file, int line) override;

private:
    // What findings on the statement under way share, but for its place.
    PLL_READ_FINDING finding() const;
    PLL_VOCABULARY vocabulary_of(PLL_FINDING finding) const;
    PLL_READ_STATEMENT statement() const;
    void add_records(const PLL_KEYWORD& keyword, PLL_READ_STATEMENT* event) const;

    const PLL_FAMILY_FILE_READER& m_reader;
    PLL_LINE_WATCH m_line;
};

}  // namespace pll_internal
