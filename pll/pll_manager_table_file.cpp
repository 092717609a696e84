// Bandwidth settings table files: for each effective feedback multiplication M the loop filters
// that the device can have, and what they achieve.
//
//   line 1   the format word, ended by a blank; the rest is skipped
//   line 2   column titles, skipped
//   others   one row each; an empty line ends the table
//
//   V2            capacitor M current resistor  results
//   SIMPLE_V1     M current resistor
//   other words   M current resistor  results
//
// The results are phase margin, bandwidth (MHz) and jitter peaking at the typical, the fast and the
// slow corner. What follows the last column is ignored.
#include "gen_string.h"
#include "pll_manager.h"
#include "pll_manager_file.h"
#include "pll_manager_memory.h"
#include "pll_report_error.h"

#include <cstdint>
#include <exception>
#include <istream>
#include <limits>
#include <streambuf>

namespace {

const char UNUSED_TABLE_FILE[] = "unused";
const int WORD_SIZE = 1024;  // characters of the format word, with the NUL
const char WORD_END = ' ';
const std::int64_t MAX_GROUPS = 4194304;
const double HZ_PER_MHZ = 1000000.0;
const int NO_CAPACITOR = -1;
const double NO_RESULT = -1.0;

struct FORMAT
{
    bool m_has_capacitor;
    bool m_has_results;
};

// The blocks of an input file as a stream, without memory of its own.
class FILE_BUFFER : public std::streambuf
{
public:
    bool open(const char* name) { return m_file.open(name); }

protected:
    int_type underflow() override
    {
        std::size_t size = 0;
        char* const block = m_file.take_block(&size);
        setg(block, block, block + size);
        return size == 0 ? traits_type::eof() : traits_type::to_int_type(*block);
    }

private:
    PLL_INPUT_FILE m_file;
};

// The columns of the results in file order.
double PLL_BANDWIDTH_SETTING::*const RESULTS[] = {
    &PLL_BANDWIDTH_SETTING::m_typical_phase_margin,   &PLL_BANDWIDTH_SETTING::m_typical_bandwidth,
    &PLL_BANDWIDTH_SETTING::m_typical_jitter_peaking, &PLL_BANDWIDTH_SETTING::m_fast_phase_margin,
    &PLL_BANDWIDTH_SETTING::m_fast_bandwidth,         &PLL_BANDWIDTH_SETTING::m_fast_jitter_peaking,
    &PLL_BANDWIDTH_SETTING::m_slow_phase_margin,      &PLL_BANDWIDTH_SETTING::m_slow_bandwidth,
    &PLL_BANDWIDTH_SETTING::m_slow_jitter_peaking};

bool is_word(const MEM_STRING& word, const char* name)
{
    return word.size() == gen_strlen(name) && gen_stricmp(word.c_str(), name) == 0;
}

void skip_line(std::istream& stream)
{
    stream.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
}

bool read_format(std::istream& stream, FORMAT* format)
{
    MEM_STRING word{MEM_ALLOCATOR<char>(PLL_MANAGER_SOURCE)};
    if (!pll_read_field(stream, word)) {
        return false;
    }
    format->m_has_capacitor = is_word(word, "V2");
    format->m_has_results = !is_word(word, "SIMPLE_V1");
    skip_line(stream);
    skip_line(stream);
    return true;
}

// True at an empty line, which ends the table, and at the end of the file.
bool is_at_end_of_table(std::istream& stream)
{
    const int next = stream.peek();
    return next == '\n' || next == std::char_traits<char>::eof();
}

// Reads the columns of a row up to the first that fails; that and the later ones keep 0.
bool read_columns(std::istream& stream, const FORMAT& format, PLL_BANDWIDTH_SETTING* row)
{
    const bool is_read =
        (!format.m_has_capacitor || pll_read_field(stream, row->m_loop_filter_capacitor)) &&
        pll_read_field(stream, row->m_m) && pll_read_field(stream, row->m_charge_pump_current) &&
        pll_read_field(stream, row->m_loop_filter_resistor);
    if (!is_read || !format.m_has_results) {
        return is_read;
    }
    for (double PLL_BANDWIDTH_SETTING::*const result : RESULTS) {
        if (!pll_read_field(stream, row->*result)) {
            return false;
        }
    }
    return true;
}

bool read_row(std::istream& stream, const FORMAT& format, PLL_BANDWIDTH_SETTING* row)
{
    const bool is_read = read_columns(stream, format, row);
    if (!format.m_has_capacitor) {
        row->m_loop_filter_capacitor = NO_CAPACITOR;
    }
    if (format.m_has_results) {
        row->m_typical_bandwidth *= HZ_PER_MHZ;
        row->m_fast_bandwidth *= HZ_PER_MHZ;
        row->m_slow_bandwidth *= HZ_PER_MHZ;
    } else {
        for (double PLL_BANDWIDTH_SETTING::*const result : RESULTS) {
            row->*result = NO_RESULT;
        }
    }
    return is_read;
}

enum class STORING
{
    STORED,
    NO_GROUP,  // the table has none for the row's M
    OUT_OF_MEMORY
};

// Gives a row to the group of its M, which owns it from then on; any other row is released.
STORING store_row(PLL_BANDWIDTH_SETTING* row, int size, PLL_BANDWIDTH_SETTING_GROUP* table)
{
    if (!check(row->m_m >= 0 && row->m_m < size,
               "bandwidth_setting->m_m < bandwidth_settings_table_size", PLL_MANAGER_SOURCE)) {
        delete row;
        return STORING::NO_GROUP;
    }
    try {
        table[row->m_m].m_settings.push_back(row);
    } catch (const std::exception&) {
        delete row;
        return STORING::OUT_OF_MEMORY;
    }
    return STORING::STORED;
}

// Reads the rows up to the first that fails; true when none does and one was stored. A row that
// fails is stored all the same.
bool read_rows(std::istream& stream, const FORMAT& format, int size,
               PLL_BANDWIDTH_SETTING_GROUP* table)
{
    bool is_ok = true;
    bool has_row = false;
    while (is_ok && !stream.eof() && !is_at_end_of_table(stream)) {
        PLL_BANDWIDTH_SETTING* const row = new PLL_BANDWIDTH_SETTING;
        if (row == nullptr) {
            return false;
        }
        is_ok = read_row(stream, format, row);
        skip_line(stream);
        const STORING storing = store_row(row, size, table);
        is_ok = is_ok && storing != STORING::OUT_OF_MEMORY;
        has_row = has_row || storing == STORING::STORED;
    }
    return is_ok && has_row;
}

bool read_table(const char* file_name, int size, PLL_BANDWIDTH_SETTING_GROUP* table)
{
    FILE_BUFFER buffer;
    if (!buffer.open(file_name)) {
        return false;
    }
    std::istream stream(&buffer);
    stream.imbue(std::locale::classic());
    FORMAT format = {false, false};
    return read_format(stream, &format) && read_rows(stream, format, size, table);
}

// Groups for every M that the counters allow; null for more than a table may have.
PLL_BANDWIDTH_SETTING_GROUP* create_table(const PLL_BASIC_INFO& info, int* size)
{
    const std::int64_t groups =
        std::int64_t{info.m_vco_post_scale_counter_max} * info.m_m_counter_max + 1;
    if (groups < 0 || groups > MAX_GROUPS) {
        return nullptr;
    }
    *size = static_cast<int>(groups);
    return new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(groups)];
}

}  // namespace

bool pll_read_field(std::istream& stream, int& value)
{
    try {
        stream >> value;
        return stream.good();
    } catch (const std::exception&) {
        return false;
    }
}

bool pll_read_field(std::istream& stream, double& value)
{
    try {
        stream >> value;
        return stream.good();
    } catch (const std::exception&) {
        return false;
    }
}

bool pll_read_field(std::istream& stream, MEM_STRING& value)
{
    try {
        char word[WORD_SIZE];
        stream.getline(word, WORD_SIZE, WORD_END);
        const std::streamsize taken = stream.gcount() - (stream.good() ? 1 : 0);
        value.assign(word, static_cast<std::size_t>(taken));
        return stream.good();
    } catch (const std::exception&) {
        return false;
    }
}

bool pll_read_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                            const char* file_name)
{
    const bool has_family = check(family != nullptr, "family_info != 0", PLL_MANAGER_SOURCE);
    const bool has_name =
        check(file_name != nullptr, "bandwidth_settings_table_file_name != 0", PLL_MANAGER_SOURCE);
    if (!has_family || !has_name || type < ENHANCED_PLL || type >= PLL_TYPE_MAX) {
        return false;
    }
    PLL_BASIC_INFO& info = family->m_basic_infos[type];
    if (gen_stricmp(file_name, UNUSED_TABLE_FILE) == 0) {
        info.set_bandwidth_settings_table(0, nullptr);
        info.m_use_bandwidth_settings_table = false;
        return true;
    }
    int size = 0;
    PLL_BANDWIDTH_SETTING_GROUP* const table = create_table(info, &size);
    info.m_use_bandwidth_settings_table = true;
    if (table == nullptr) {
        info.set_bandwidth_settings_table(0, nullptr);
        return false;
    }
    bool is_read = false;
    try {
        is_read = read_table(file_name, size, table);
    } catch (const std::exception&) {
        is_read = false;
    }
    info.set_bandwidth_settings_table(size, table);
    return is_read;
}

bool pll_read_bandwidth_settings_table_files(PLL_FAMILY_INFO* family,
                                             PLL_TYPE_BANDWIDTH_FILE_LIST* files)
{
    if (!check(files != nullptr, "pll_type_bandwidth_file_list != 0", PLL_MANAGER_SOURCE)) {
        return false;
    }
    bool are_read = true;
    for (const PLL_TYPE_BANDWIDTH_FILE_NAME* file : *files) {
        are_read = check(file != nullptr, "pll_type_bandwidth_file != 0", PLL_MANAGER_SOURCE) &&
                   pll_read_bandwidth_settings_table_file(family, file->m_type,
                                                          file->m_file_name.c_str()) &&
                   are_read;
    }
    return are_read;
}
