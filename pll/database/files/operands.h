// The operands of statements.
#pragma once

#include "pll_info.h"

#include "database/files/words.h"

namespace pll_internal {

// What follows a keyword. Operands that are missing or malformed are an error, except that names,
// words and flags may be missing here.
enum class PLL_OPERAND_KIND
{
    NAME,               // a word that may be quoted
    WORD,               // a word without quotes
    NUMBER,             // a decimal integer
    POST_SCALE_NUMBER,  // two of them: VCO post-scale and value
    REAL,               // a real number that is not zero
    FLAG,               // true, yes or on; anything else is false
    SORTED_NUMBERS,     // one or more integers, sorted ascending
    NUMBERS,            // one or more integers in file order
    COUNTERS            // one or more names of counters up to "end"
};

// The operands that were read; which of them are set follows from their kind.
struct PLL_OPERANDS
{
    PLL_OPERANDS() = default;
    ~PLL_OPERANDS();
    PLL_OPERANDS(const PLL_OPERANDS&) = delete;
    PLL_OPERANDS& operator=(const PLL_OPERANDS&) = delete;

    const char* m_word = nullptr;  // the first of them as it is written, in the line; null: none
    int m_number = 0;
    int m_post_scale = -1;  // of a value without one: all of them
    double m_real = 0.0;
    bool m_flag = false;
    int m_count = 0;  // of m_numbers or m_counters, which are owned
    int* m_numbers = nullptr;
    CDB_PLL_COUNTER_TYPE_ENUM* m_counters = nullptr;
};

// Read operands from the words of a line, which hears of what is wrong with them. They return why
// they cannot be read, NONE when they can: the findings of the kind, or OUT_OF_MEMORY. Real numbers
// are those of the numeric locale "C", which the caller sets.
PLL_FINDING pll_read_operands(PLL_OPERAND_KIND kind, PLL_WORDS* words, PLL_OPERANDS* operands);
PLL_FINDING pll_read_number(PLL_WORDS* words, int* value);
PLL_FINDING pll_read_numbers(PLL_WORDS* words, int** array, int* count);
PLL_FINDING pll_read_counters(PLL_WORDS* words, CDB_PLL_COUNTER_TYPE_ENUM** array, int* count);

}  // namespace pll_internal
