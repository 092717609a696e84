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
#include "database/files/table_file.h"

#include "gen_string.h"
#include "pll_manager.h"

#include "database/files/input_file.h"
#include "database/memory.h"
#include "database/watch/table_watch.h"
#include "platform/report_error.h"

#include <cstdint>
#include <exception>
#include <istream>
#include <limits>
#include <streambuf>

namespace {

const int WORD_SIZE = 1024;  // characters of the format word, with the NUL
const char WORD_END = ' ';
const std::int64_t MAX_GROUPS = 4194304;
const double HZ_PER_MHZ = 1000000.0;
const int NO_CAPACITOR = -1;
const double NO_RESULT = -1.0;

// The groups of a table under way.
struct TABLE
{
    int m_size;
    PLL_BANDWIDTH_SETTING_GROUP* m_groups;
};

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

    // How many characters were read so far.
    std::int64_t offset() const { return m_block_offset + (gptr() - eback()); }

protected:
    int_type underflow() override
    {
        m_block_offset += egptr() - eback();
        std::size_t size = 0;
        char* const block = m_file.take_block(&size);
        setg(block, block, block + size);
        return size == 0 ? traits_type::eof() : traits_type::to_int_type(*block);
    }

private:
    PLL_INPUT_FILE m_file;
    std::int64_t m_block_offset = 0;
};

// An open table file, and who watches its reading.
class TABLE_INPUT
{
public:
    TABLE_INPUT(FILE_BUFFER* buffer, PLL_TABLE_WATCH* watch)
        : m_stream(buffer), m_buffer(*buffer), m_watch(watch)
    {
        m_stream.imbue(std::locale::classic());
    }

    template <class T>
    bool read_field(T* value)
    {
        if (m_watch != nullptr) {
            m_watch->begin_field(m_buffer.offset());
        }
        return pll_read_field(m_stream, *value);
    }

    // The step of the reading that just ended, for the watch.
    PLL_TABLE_POSITION position() const
    {
        return {m_buffer.offset(), m_stream.eof() && !m_stream.fail()};
    }

    std::istream m_stream;
    const FILE_BUFFER& m_buffer;
    PLL_TABLE_WATCH* m_watch;  // null: nobody
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

bool read_format(TABLE_INPUT* input, FORMAT* format)
{
    MEM_STRING word{MEM_ALLOCATOR<char>(PLL_MANAGER_SOURCE)};
    const bool is_read = pll_read_field(input->m_stream, word);
    const bool is_out_of_memory = !is_read && input->m_stream.good();
    if (input->m_watch != nullptr && !is_out_of_memory) {
        input->m_watch->format_word(word.c_str(), is_read);
    }
    if (!is_read) {
        return false;
    }
    format->m_has_capacitor = is_word(word, "V2");
    format->m_has_results = !is_word(word, "SIMPLE_V1");
    skip_line(input->m_stream);
    skip_line(input->m_stream);
    return true;
}

// True at an empty line, which ends the table, and at the end of the file.
bool is_at_end_of_table(std::istream& stream)
{
    const int next = stream.peek();
    return next == '\n' || next == std::char_traits<char>::eof();
}

// Reads the columns of a row up to the first that fails; that and the later ones keep 0.
bool read_columns(TABLE_INPUT* input, const FORMAT& format, PLL_BANDWIDTH_SETTING* row)
{
    const bool is_read =
        (!format.m_has_capacitor || input->read_field(&row->m_loop_filter_capacitor)) &&
        input->read_field(&row->m_m) && input->read_field(&row->m_charge_pump_current) &&
        input->read_field(&row->m_loop_filter_resistor);
    if (!is_read || !format.m_has_results) {
        return is_read;
    }
    for (double PLL_BANDWIDTH_SETTING::*const result : RESULTS) {
        if (!input->read_field(&(row->*result))) {
            return false;
        }
    }
    return true;
}

bool read_row(TABLE_INPUT* input, const FORMAT& format, PLL_BANDWIDTH_SETTING* row)
{
    const bool is_read = read_columns(input, format, row);
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

// Reads one row and what follows it in its line; false when that fails.
bool read_line(TABLE_INPUT* input, const FORMAT& format, const TABLE& table, bool* is_stored)
{
    PLL_TABLE_WATCH* const watch = input->m_watch;
    if (watch != nullptr) {
        watch->begin_row(input->m_buffer.offset());
    }
    PLL_BANDWIDTH_SETTING* const row = new PLL_BANDWIDTH_SETTING;
    if (row == nullptr) {
        return false;
    }
    const bool is_read = read_row(input, format, row);
    const PLL_TABLE_POSITION end = input->position();
    skip_line(input->m_stream);
    const int m = row->m_m;
    const STORING storing = store_row(row, table.m_size, table.m_groups);
    *is_stored = storing == STORING::STORED;
    if (watch != nullptr && storing != STORING::OUT_OF_MEMORY) {
        watch->end_row(end, is_read, m, *is_stored ? row : nullptr);
    }
    return is_read && storing != STORING::OUT_OF_MEMORY;
}

// Reads the rows up to the first that fails; true when none does and one was stored. A row that
// fails is stored all the same.
bool read_rows(TABLE_INPUT* input, const FORMAT& format, const TABLE& table)
{
    bool is_ok = true;
    bool has_row = false;
    while (is_ok && !input->m_stream.eof() && !is_at_end_of_table(input->m_stream)) {
        bool is_stored = false;
        is_ok = read_line(input, format, table, &is_stored);
        has_row = has_row || is_stored;
    }
    if (is_ok && input->m_watch != nullptr) {
        input->m_watch->end_table(input->m_buffer.offset(), has_row);
    }
    return is_ok && has_row;
}

bool read_table(const char* file_name, const TABLE& table, PLL_TABLE_WATCH* watch)
{
    FILE_BUFFER buffer;
    if (!buffer.open(file_name)) {
        if (watch != nullptr) {
            watch->tell_of_table(PLL_FINDING::TABLE_NOT_OPENED);
        }
        return false;
    }
    TABLE_INPUT input(&buffer, watch);
    FORMAT format = {false, false};
    return read_format(&input, &format) && read_rows(&input, format, table);
}

// Groups for every M that the counters allow; none for more than a table may have.
TABLE create_table(const PLL_BASIC_INFO& info, PLL_TABLE_WATCH* watch)
{
    const std::int64_t groups =
        std::int64_t{info.m_vco_post_scale_counter_max} * info.m_m_counter_max + 1;
    if (groups < 0 || groups > MAX_GROUPS) {
        if (watch != nullptr) {
            watch->tell_of_table(PLL_FINDING::TABLE_TOO_LARGE, groups, MAX_GROUPS);
        }
        return {0, nullptr};
    }
    if (watch != nullptr) {
        watch->set_largest_m(static_cast<int>(groups - 1));
    }
    return {static_cast<int>(groups),
            new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(groups)]};
}

// Reads a table and gives it to the record.
bool read_into(PLL_BASIC_INFO* info, const char* file_name, PLL_TABLE_WATCH* watch)
{
    const TABLE table = create_table(*info, watch);
    info->m_use_bandwidth_settings_table = true;
    if (table.m_groups == nullptr) {
        info->set_bandwidth_settings_table(0, nullptr);
        return false;
    }
    bool is_read = false;
    try {
        is_read = read_table(file_name, table, watch);
    } catch (const std::exception&) {
        is_read = false;
    }
    info->set_bandwidth_settings_table(table.m_size, table.m_groups);
    return is_read;
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

bool pll_observe_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                               const char* file_name, PLL_READ_OBSERVER* observer)
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
    if (observer == nullptr) {
        return read_into(&info, file_name, nullptr);
    }
    PLL_TABLE_WATCH watch(observer, family, type, file_name);
    return read_into(&info, file_name, &watch);
}

bool pll_read_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                            const char* file_name)
{
    return pll_observe_bandwidth_settings_table_file(family, type, file_name, nullptr);
}

bool read_table_files(PLL_FAMILY_INFO* family, const PLL_TYPE_BANDWIDTH_FILE_LIST& files,
                      PLL_READ_OBSERVER* observer)
{
    bool are_read = true;
    for (const PLL_TYPE_BANDWIDTH_FILE_NAME* file : files) {
        are_read = check(file != nullptr, "pll_type_bandwidth_file != 0", PLL_MANAGER_SOURCE) &&
                   pll_observe_bandwidth_settings_table_file(family, file->m_type,
                                                             file->m_file_name.c_str(), observer) &&
                   are_read;
    }
    return are_read;
}

bool pll_read_bandwidth_settings_table_files(PLL_FAMILY_INFO* family,
                                             PLL_TYPE_BANDWIDTH_FILE_LIST* files)
{
    return check(files != nullptr, "pll_type_bandwidth_file_list != 0", PLL_MANAGER_SOURCE) &&
           read_table_files(family, *files, nullptr);
}
