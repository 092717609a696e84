// The readers of tokens as the manager offers them: those that its own readers use, on a cursor of
// the host.
#include "pll_manager.h"

#include "database/files/locale.h"
#include "database/files/operands.h"
#include "database/files/vocabulary.h"
#include "database/memory.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>
#include <cstdlib>

using namespace pll_internal;

namespace {

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

}  // namespace

char* PLL_MANAGER::find_unquoted_string_token(char** line) const
{
    return is_cursor(line) ? pll_cut_word(line) : nullptr;
}

char* PLL_MANAGER::find_string_token(char** line) const
{
    return is_cursor(line) ? pll_cut_name(line) : nullptr;
}

bool PLL_MANAGER::find_number_token(char** line, int* value) const
{
    const HOST_STATE state;
    int number = 0;
    if (!is_cursor(line)) {
        return false;
    }
    PLL_WORDS words(*line, nullptr);
    const PLL_FINDING reason = pll_read_number(&words, &number);
    *line = words.cursor();
    if (reason != PLL_FINDING::NONE || value == nullptr) {
        return false;
    }
    *value = number;
    return true;
}

bool PLL_MANAGER::find_float_token(char** line, double* value) const
{
    const HOST_STATE state;
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
    if (!is_cursor(line)) {
        return 0;
    }
    int count = 0;
    PLL_WORDS words(*line, nullptr);
    pll_read_numbers(&words, array, &count);
    *line = words.cursor();
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
    if (!is_cursor(line)) {
        return 0;
    }
    int count = 0;
    PLL_WORDS words(*line, nullptr);
    pll_read_counters(&words, array, &count);
    *line = words.cursor();
    return count;
}

bool PLL_MANAGER::find_bool_token(char** line) const
{
    return pll_find_flag(find_unquoted_string_token(line)) == PLL_FLAG::IS_TRUE;
}

PLL_TYPE_ENUM PLL_MANAGER::find_pll_type_enum(const char* name) const
{
    return pll_find_type(name);
}

PLL_RECONFIG_TYPE_ENUM PLL_MANAGER::find_reconfig_type_enum(const char* name) const
{
    return pll_find_reconfig_type(name);
}

CDB_PLL_COUNTER_TYPE_ENUM PLL_MANAGER::find_counter_type_enum(const char* name) const
{
    return pll_find_counter_type(name);
}
