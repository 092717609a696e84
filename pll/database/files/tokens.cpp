// Tokens of the path file and the family files.
//
// A line is words between blanks, tabs, carriage returns and line feeds; a '#' where a word would
// start begins a comment. A word that may be quoted runs from its double quote to the next one.
// Words are ended by NULs in the line itself, which is why every reader takes a cursor into it.
#include "gen_string.h"
#include "pll_manager.h"
#include "pll_observer.h"

#include "database/files/family_file.h"
#include "database/files/locale.h"
#include "database/memory.h"
#include "platform/report_error.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace {

const char WHITESPACES[] = " \t\n\r";
const char QUOTES[] = "\"";
const char COMMENT = '#';
const int DECIMAL = 10;

const char* const PLL_TYPE_STRINGS[] = {"ENHANCED_PLL", "FAST_PLL", "FAST_PLL_HIGH_SPEED",
                                        "VESTRA_PLL"};
static_assert(std::size(PLL_TYPE_STRINGS) == PLL_TYPE_MAX);

const char* const RECONFIG_TYPE_STRINGS[] = {"none", "short", "long", "enhanced"};
static_assert(std::size(RECONFIG_TYPE_STRINGS) == PLL_RECONFIG_TYPE_MAX);

const char* const COUNTER_TYPE_STRINGS[] = {"L0", "L1", "G0", "G1", "G2",    "G3",   "E0",
                                            "E1", "E2", "E3", "C0", "C1",    "C2",   "C3",
                                            "C4", "C5", "M",  "N",  "L0TAP", "L1TAP"};
static_assert(std::size(COUNTER_TYPE_STRINGS) == CDB_PLL_COUNTER_TYPE_MAX);

// Flags: the first of them are true, every other word is false, these in earnest.
const char* const FLAG_STRINGS[] = {"true", "yes", "on", "false", "no", "off"};
const std::size_t NUMBER_OF_TRUE_WORDS = 3;

// The place of `name` in `names`, their number when it is none of them.
int find_name(const char* name, const char* const* names, std::size_t count)
{
    const char* const* const end = names + count;
    return static_cast<int>(
        std::find_if(names, end,
                     [name](const char* other) { return gen_stricmp(name, other) == 0; }) -
        names);
}

template <std::size_t COUNT>
const char* word_at(const char* const (&words)[COUNT], int index)
{
    return index >= 0 && index < static_cast<int>(COUNT) ? words[index] : nullptr;
}

bool is_cursor(char** line)
{
    if (line == nullptr) {
        report_error("line != NULL", PLL_MANAGER_SOURCE);
        return false;
    }
    if (*line == nullptr) {
        report_error("*line != NULL", PLL_MANAGER_SOURCE);
        return false;
    }
    return true;
}

// Moves the cursor to the next word; false at a comment or the end of the line.
bool skip_to_word(char** line)
{
    *line += std::strspn(*line, WHITESPACES);
    return **line != '\0' && **line != COMMENT;
}

// Cuts the word off that runs from the cursor to one of `separators`.
char* cut_word(char** line, const char* separators)
{
    char* const word = *line;
    *line += std::strcspn(word, separators);
    if (**line != '\0') {
        **line = '\0';
        ++*line;
    }
    return word;
}

bool is_digit(char c)
{
    return c >= '0' && c <= '9';
}

}  // namespace

char* PLL_MANAGER::find_unquoted_string_token(char** line) const
{
    if (!is_cursor(line) || !skip_to_word(line)) {
        return nullptr;
    }
    return cut_word(line, WHITESPACES);
}

char* PLL_MANAGER::find_string_token(char** line) const
{
    if (!is_cursor(line) || !skip_to_word(line)) {
        return nullptr;
    }
    if (**line != *QUOTES) {
        return cut_word(line, WHITESPACES);
    }
    ++*line;
    return cut_word(line, QUOTES);
}

// A number too long for 64 bits is the largest of them, of which 32 bits are kept.
bool PLL_MANAGER::find_number_token(char** line, int* value) const
{
    const char* const word = find_unquoted_string_token(line);
    if (word == nullptr || value == nullptr ||
        !std::all_of(word, word + std::strlen(word), is_digit)) {
        return false;
    }
    *value = static_cast<int>(static_cast<unsigned>(std::strtoll(word, nullptr, DECIMAL)));
    return true;
}

bool PLL_MANAGER::find_float_token(char** line, double* value) const
{
    const char* const word = find_unquoted_string_token(line);
    const PLL_NUMERIC_LOCALE locale;
    if (word == nullptr || value == nullptr || !locale.is_set()) {
        return false;
    }
    const double number = std::strtod(word, nullptr);
    if (number == 0.0) {
        return false;
    }
    *value = number;
    return true;
}

int PLL_MANAGER::find_int_array(char** line, int** array) const
{
    if (array == nullptr) {
        return 0;
    }
    *array = nullptr;
    int count = 0;
    int value = 0;
    while (find_number_token(line, &value) && value >= 0) {
        if (!manager_append(array, &count, value)) {
            manager_release(*array);
            *array = nullptr;
            return 0;
        }
    }
    return count;
}

int PLL_MANAGER::find_int_array_and_sort(char** line, int** array) const
{
    const int count = find_int_array(line, array);
    if (count > 0) {
        std::sort(*array, *array + count);
    }
    return count;
}

int PLL_MANAGER::compact_int_array_from_bits_array_and_sort(int count, const int* bits_array,
                                                            int** array)
{
    if (array == nullptr) {
        return 0;
    }
    *array = nullptr;
    if (count <= 0 || !check(bits_array != nullptr, "bits_array != NULL", PLL_MANAGER_SOURCE)) {
        return 0;
    }
    int* const values =
        static_cast<int*>(manager_allocate(sizeof(int) * static_cast<std::size_t>(count)));
    if (values == nullptr) {
        return 0;
    }
    int* const end =
        std::copy_if(bits_array, bits_array + count, values, [](int value) { return value > 0; });
    std::sort(values, end);
    *array = values;
    return static_cast<int>(end - values);
}

int PLL_MANAGER::find_counter_type_array(char** line, CDB_PLL_COUNTER_TYPE_ENUM** array) const
{
    if (array == nullptr) {
        return 0;
    }
    *array = nullptr;
    int count = 0;
    for (const char* word = find_string_token(line);
         word != nullptr && gen_stricmp(word, END_OF_LIST) != 0; word = find_string_token(line)) {
        if (!manager_append(array, &count, find_counter_type_enum(word))) {
            manager_release(*array);
            *array = nullptr;
            return 0;
        }
    }
    return count;
}

bool PLL_MANAGER::find_bool_token(char** line) const
{
    const char* const word = find_unquoted_string_token(line);
    const int number_of_words = static_cast<int>(NUMBER_OF_TRUE_WORDS);
    return word != nullptr && find_name(word, FLAG_STRINGS, NUMBER_OF_TRUE_WORDS) < number_of_words;
}

PLL_TYPE_ENUM PLL_MANAGER::find_pll_type_enum(const char* name) const
{
    return static_cast<PLL_TYPE_ENUM>(
        find_name(name, PLL_TYPE_STRINGS, std::size(PLL_TYPE_STRINGS)));
}

PLL_RECONFIG_TYPE_ENUM PLL_MANAGER::find_reconfig_type_enum(const char* name) const
{
    return static_cast<PLL_RECONFIG_TYPE_ENUM>(
        find_name(name, RECONFIG_TYPE_STRINGS, std::size(RECONFIG_TYPE_STRINGS)));
}

CDB_PLL_COUNTER_TYPE_ENUM PLL_MANAGER::find_counter_type_enum(const char* name) const
{
    return static_cast<CDB_PLL_COUNTER_TYPE_ENUM>(
        find_name(name, COUNTER_TYPE_STRINGS, std::size(COUNTER_TYPE_STRINGS)));
}

const char* pll_get_word(PLL_VOCABULARY vocabulary, int index)
{
    const std::span<const PLL_KEYWORD> keywords = get_keywords();
    switch (vocabulary) {
    case PLL_VOCABULARY::NONE:
        return nullptr;
    case PLL_VOCABULARY::KEYWORDS:
        return index >= 0 && index < static_cast<int>(keywords.size())
                   ? keywords[static_cast<std::size_t>(index)].m_keyword
                   : nullptr;
    case PLL_VOCABULARY::PLL_TYPES:
        return word_at(PLL_TYPE_STRINGS, index);
    case PLL_VOCABULARY::RECONFIG_TYPES:
        return word_at(RECONFIG_TYPE_STRINGS, index);
    case PLL_VOCABULARY::COUNTERS:
        return word_at(COUNTER_TYPE_STRINGS, index);
    case PLL_VOCABULARY::FLAGS:
        return word_at(FLAG_STRINGS, index);
    }
    return nullptr;
}
