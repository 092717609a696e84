#include "database/files/operands.h"

#include "gen_string.h"

#include "database/files/vocabulary.h"
#include "database/memory.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace pll_internal {

namespace {

const int DECIMAL = 10;
const char END_OF_LIST[] = "end";

// The number that a word of digits alone stands for; false for any other word, and a null one. A
// number too long for 64 bits is the largest of them.
bool convert_digits(const char* word, long long* number)
{
    if (word == nullptr) {
        return false;
    }
    const long long LARGEST = std::numeric_limits<long long>::max();
    long long value = 0;
    for (const char* c = word; *c != '\0'; ++c) {
        if (*c < '0' || *c > '9') {
            return false;
        }
        const int digit = *c - '0';
        value = value > (LARGEST - digit) / DECIMAL ? LARGEST : DECIMAL * value + digit;
    }
    *number = value;
    return true;
}

int keep_32_bits(long long number)
{
    return static_cast<int>(static_cast<unsigned>(number));
}

void tell_of_cut(const PLL_WORDS& words, const char* word, long long number)
{
    if (number > std::numeric_limits<int>::max()) {
        words.tell_limit(PLL_FINDING::NUMBER_CUT, word, keep_32_bits(number),
                         std::numeric_limits<int>::max());
    }
}

PLL_FINDING read_number(PLL_WORDS* words, const char** word, int* value)
{
    *word = words->next_word();
    long long number = 0;
    if (!convert_digits(*word, &number)) {
        return words->tell(PLL_FINDING::NUMBER_EXPECTED, *word);
    }
    tell_of_cut(*words, *word, number);
    *value = keep_32_bits(number);
    return PLL_FINDING::NONE;
}

template <class T>
PLL_FINDING refuse_memory(T** array, int* count)
{
    manager_release(*array);
    *array = nullptr;
    *count = 0;
    return PLL_FINDING::OUT_OF_MEMORY;
}

// What follows the number in the same word is not read.
PLL_FINDING read_real(PLL_WORDS* words, double* value)
{
    char* const word = words->next_word();
    char* end = nullptr;
    const double number = word == nullptr ? 0.0 : std::strtod(word, &end);
    if (number == 0.0) {
        return words->tell(PLL_FINDING::REAL_EXPECTED, word);
    }
    if (*end != '\0') {
        words->tell(PLL_FINDING::EXTRA_WORDS, end);
    }
    *value = number;
    return PLL_FINDING::NONE;
}

void read_flag(PLL_WORDS* words, bool* value)
{
    const char* const word = words->next_word();
    const PLL_FLAG flag = pll_find_flag(word);
    if (flag == PLL_FLAG::UNKNOWN) {
        words->tell(PLL_FINDING::UNKNOWN_FLAG, word);
    }
    *value = flag == PLL_FLAG::IS_TRUE;
}

PLL_FINDING read_scaled_number(PLL_WORDS* words, PLL_OPERANDS* operands)
{
    const PLL_FINDING reason = read_number(words, &operands->m_word, &operands->m_post_scale);
    return reason == PLL_FINDING::NONE ? pll_read_number(words, &operands->m_number) : reason;
}

}  // namespace

PLL_OPERANDS::~PLL_OPERANDS()
{
    manager_release(m_numbers);
    manager_release(m_counters);
}

PLL_FINDING pll_read_number(PLL_WORDS* words, int* value)
{
    const char* word = nullptr;
    return read_number(words, &word, value);
}

// A list ends at the first word that is no number, and at one that is negative once it is cut.
PLL_FINDING pll_read_numbers(PLL_WORDS* words, int** array, int* count)
{
    const char* word = words->next_word();
    long long number = 0;
    for (; convert_digits(word, &number) && keep_32_bits(number) >= 0; word = words->next_word()) {
        tell_of_cut(*words, word, number);
        if (!manager_append(array, count, keep_32_bits(number))) {
            return refuse_memory(array, count);
        }
    }
    if (*count == 0) {
        return words->tell(PLL_FINDING::LIST_EMPTY, word);
    }
    if (word != nullptr && words->is_heard()) {
        words->tell(PLL_FINDING::LIST_CUT_SHORT, word);
        words->drop_rest();
    }
    return PLL_FINDING::NONE;
}

PLL_FINDING pll_read_counters(PLL_WORDS* words, CDB_PLL_COUNTER_TYPE_ENUM** array, int* count)
{
    const char* word = words->next_name();
    while (word != nullptr && gen_stricmp(word, END_OF_LIST) != 0) {
        const CDB_PLL_COUNTER_TYPE_ENUM type = pll_find_counter_type(word);
        if (type == CDB_PLL_COUNTER_TYPE_MAX) {
            words->tell(PLL_FINDING::UNKNOWN_COUNTER, word);
        }
        if (!manager_append(array, count, type)) {
            return refuse_memory(array, count);
        }
        word = words->next_name();
    }
    return *count == 0 ? words->tell(PLL_FINDING::LIST_EMPTY, word) : PLL_FINDING::NONE;
}

PLL_FINDING pll_read_operands(PLL_OPERAND_KIND kind, PLL_WORDS* words, PLL_OPERANDS* operands)
{
    PLL_FINDING reason = PLL_FINDING::NONE;
    switch (kind) {
    case PLL_OPERAND_KIND::NAME:
        operands->m_word = words->next_name();
        break;
    case PLL_OPERAND_KIND::WORD:
        operands->m_word = words->next_word();
        break;
    case PLL_OPERAND_KIND::NUMBER:
        reason = read_number(words, &operands->m_word, &operands->m_number);
        break;
    case PLL_OPERAND_KIND::POST_SCALE_NUMBER:
        reason = read_scaled_number(words, operands);
        break;
    case PLL_OPERAND_KIND::REAL:
        reason = read_real(words, &operands->m_real);
        break;
    case PLL_OPERAND_KIND::FLAG:
        read_flag(words, &operands->m_flag);
        break;
    case PLL_OPERAND_KIND::SORTED_NUMBERS:
        reason = pll_read_numbers(words, &operands->m_numbers, &operands->m_count);
        std::sort(operands->m_numbers, operands->m_numbers + operands->m_count);
        break;
    case PLL_OPERAND_KIND::NUMBERS:
        reason = pll_read_numbers(words, &operands->m_numbers, &operands->m_count);
        break;
    case PLL_OPERAND_KIND::COUNTERS:
        reason = pll_read_counters(words, &operands->m_counters, &operands->m_count);
        break;
    }
    return reason;
}

}  // namespace pll_internal
