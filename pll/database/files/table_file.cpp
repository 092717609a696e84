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
#include "database/files/read_budget.h"
#include "database/files/table_fields.h"
#include "database/memory.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <cstdint>
#include <cstring>
#include <exception>
#include <istream>
#include <limits>
#include <streambuf>

using namespace pll_internal;

namespace {

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

// White space as the number reader knows it.
bool is_blank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The blocks of an input file as a stream, without memory of its own. Whoever listens sees each
// block before the next one takes its place, so that no file is read twice for the sake of places.
class FILE_BUFFER : public std::streambuf
{
public:
    explicit FILE_BUFFER(PLL_TABLE_LISTENER* listener) : m_listener(listener), m_shown(nullptr) {}

    int open(const char* name, PLL_READ_BUDGET* budget) { return m_file.open(name, budget); }
    int get_error() const { return m_file.get_error(); }

    // Shows the listener all characters up to where the reader is.
    void show()
    {
        if (m_listener != nullptr && m_shown != gptr()) {
            m_listener->see(m_shown, static_cast<std::size_t>(gptr() - m_shown));
            m_shown = gptr();
        }
    }

    // Passes the word here, blanks before it too.
    void skip_word()
    {
        while (sgetc() != traits_type::eof() && is_blank(traits_type::to_char_type(sgetc()))) {
            sbumpc();
        }
        while (sgetc() != traits_type::eof() && !is_blank(traits_type::to_char_type(sgetc()))) {
            sbumpc();
        }
    }

    void skip_rest()
    {
        while (sgetc() != traits_type::eof()) {
            setg(eback(), egptr(), egptr());
        }
        show();
    }

protected:
    int_type underflow() override
    {
        show();
        std::size_t size = 0;
        char* const block = m_file.take_block(&size);
        setg(block, block, block + size);
        m_shown = block;
        return size == 0 ? traits_type::eof() : traits_type::to_int_type(*block);
    }

private:
    PLL_INPUT_FILE m_file;
    PLL_TABLE_LISTENER* m_listener;  // null: nobody
    const char* m_shown;             // up to here
};

// The columns of the results in file order.
double PLL_BANDWIDTH_SETTING::*const RESULTS[] = {
    &PLL_BANDWIDTH_SETTING::m_typical_phase_margin,   &PLL_BANDWIDTH_SETTING::m_typical_bandwidth,
    &PLL_BANDWIDTH_SETTING::m_typical_jitter_peaking, &PLL_BANDWIDTH_SETTING::m_fast_phase_margin,
    &PLL_BANDWIDTH_SETTING::m_fast_bandwidth,         &PLL_BANDWIDTH_SETTING::m_fast_jitter_peaking,
    &PLL_BANDWIDTH_SETTING::m_slow_phase_margin,      &PLL_BANDWIDTH_SETTING::m_slow_bandwidth,
    &PLL_BANDWIDTH_SETTING::m_slow_jitter_peaking};

bool is_word(const char* word, const char* name)
{
    return gen_stricmp(word, name) == 0 && std::strlen(word) == std::strlen(name);
}

// Of the streams, which take memory of their own for long numbers.
PLL_FINDING refuse_memory()
{
    MEM_MANAGER::report_exhaustion();
    return PLL_FINDING::OUT_OF_MEMORY;
}

// Reads one table file.
class TABLE_READER
{
public:
    TABLE_READER(const TABLE& table, PLL_READ_BUDGET* budget, PLL_TABLE_LISTENER* listener)
        : m_table(table),
          m_budget(budget),
          m_listener(listener),
          m_format{false, false},
          m_buffer(listener),
          m_stream(&m_buffer)
    {
        m_stream.imbue(std::locale::classic());
    }

    PLL_FINDING read(const char* file_name);

private:
    PLL_FINDING tell(const PLL_FAULT& fault) const;
    PLL_FINDING read_format();
    PLL_FINDING read_rows();
    PLL_FINDING read_row(bool* is_stored);
    PLL_FINDING read_columns(PLL_BANDWIDTH_SETTING* row);
    PLL_FINDING store(PLL_BANDWIDTH_SETTING* row);
    void complete(PLL_BANDWIDTH_SETTING* row) const;
    bool is_at_end_of_table();
    void skip_line() { m_stream.ignore(std::numeric_limits<std::streamsize>::max(), '\n'); }

    // Reads the next column; a number that the file ends right behind counts as one that fails.
    template <class T>
    bool read_column(T* value)
    {
        if (m_listener != nullptr) {
            m_buffer.show();
            m_listener->begin_column();
        }
        return pll_read_field(m_stream, *value);
    }

    // Why the column that was read last fails.
    PLL_FINDING refusal();

    TABLE m_table;
    PLL_READ_BUDGET* m_budget;
    PLL_TABLE_LISTENER* m_listener;  // null: nobody
    FORMAT m_format;
    FILE_BUFFER m_buffer;
    std::istream m_stream;
};

PLL_FINDING TABLE_READER::tell(const PLL_FAULT& fault) const
{
    if (m_listener != nullptr) {
        m_listener->hear_of_table(fault);
    }
    return fault.m_finding;
}

PLL_FINDING TABLE_READER::read(const char* file_name)
{
    const PLL_FINDING place = m_budget->judge_place(file_name, m_listener != nullptr);
    if (place != PLL_FINDING::NONE && pll_is_read_error(tell({place}))) {
        return place;
    }
    if (const int error = m_buffer.open(file_name, m_budget); error != 0) {
        return tell(fault_of_system(PLL_FINDING::TABLE_NOT_OPENED, error));
    }
    PLL_FINDING reason = read_format();
    if (reason == PLL_FINDING::NONE) {
        reason = read_rows();
    }
    if (m_buffer.get_error() != 0) {
        return tell(fault_of_reading(m_buffer.get_error(), *m_budget));
    }
    return reason == PLL_FINDING::OUT_OF_MEMORY ? tell({reason}) : reason;
}

PLL_FINDING TABLE_READER::read_format()
{
    char word[PLL_FORMAT_WORD_SIZE];
    const std::size_t length = extract_format_word(m_stream, word);
    if (m_buffer.get_error() != 0) {
        return PLL_FINDING::READ_FAILED;
    }
    PLL_FINDING finding = PLL_FINDING::NONE;
    if (!m_stream.good()) {
        finding = m_stream.bad() ? refuse_memory() : PLL_FINDING::TABLE_FORMAT_MISSING;
    } else if (std::strpbrk(word, "\t\r\n") != nullptr) {
        finding = PLL_FINDING::TABLE_FORMAT_UNENDED;
    }
    if (m_listener != nullptr) {
        m_buffer.show();
        m_listener->hear_of_format(finding, word);
    }
    if (pll_is_read_error(finding)) {
        return finding;
    }
    m_format.m_has_capacitor = length == std::strlen(word) && is_word(word, "V2");
    m_format.m_has_results = length != std::strlen(word) || !is_word(word, "SIMPLE_V1");
    skip_line();
    skip_line();
    return PLL_FINDING::NONE;
}

// True at an empty line, which ends the table, and at the end of the file.
bool TABLE_READER::is_at_end_of_table()
{
    const int next = m_stream.peek();
    return next == '\n' || next == std::char_traits<char>::eof();
}

// Reads the rows up to the first that fails. A row that fails is stored all the same; a line that
// the system cannot read to its end is not. What follows the table is passed, as it may be cut too.
PLL_FINDING TABLE_READER::read_rows()
{
    bool has_row = false;
    while (!m_stream.eof() && !is_at_end_of_table()) {
        bool is_stored = false;
        const PLL_FINDING reason = read_row(&is_stored);
        if (pll_is_read_error(reason)) {
            return reason;
        }
        has_row = has_row || is_stored;
    }
    const PLL_FINDING reason = has_row ? PLL_FINDING::NONE : PLL_FINDING::TABLE_WITHOUT_ROWS;
    if (m_listener != nullptr && m_buffer.get_error() == 0) {
        m_buffer.show();
        m_listener->end_table(reason);
    }
    m_buffer.skip_rest();
    if (m_listener != nullptr && m_buffer.get_error() == 0) {
        m_listener->end_file();
    }
    return reason;
}

// Reads one row and what follows it in its line.
PLL_FINDING TABLE_READER::read_row(bool* is_stored)
{
    if (m_listener != nullptr) {
        m_buffer.show();
        m_listener->begin_row();
    }
    PLL_BANDWIDTH_SETTING* const row = new PLL_BANDWIDTH_SETTING;
    if (row == nullptr) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    PLL_FINDING reason = read_columns(row);
    if (m_listener != nullptr) {
        m_buffer.show();
        m_listener->end_columns();
    }
    skip_line();
    if (m_buffer.get_error() != 0 || reason == PLL_FINDING::OUT_OF_MEMORY) {
        delete row;
        return m_buffer.get_error() != 0 ? PLL_FINDING::READ_FAILED : reason;
    }
    complete(row);
    PLL_TABLE_ROW result = {reason, row->m_m, row};
    const PLL_FINDING storing = store(row);
    *is_stored = storing == PLL_FINDING::NONE;
    if (storing == PLL_FINDING::OUT_OF_MEMORY) {
        return storing;
    }
    if (m_listener != nullptr) {
        result.m_row = *is_stored ? row : nullptr;
        result.m_reason = reason == PLL_FINDING::NONE ? storing : reason;
        m_listener->end_row(result, m_table.m_size - 1);
    }
    return reason;
}

PLL_FINDING TABLE_READER::refusal()
{
    if (m_stream.bad()) {
        return refuse_memory();
    }
    return m_stream.fail() ? PLL_FINDING::TABLE_NUMBER_EXPECTED
                           : PLL_FINDING::TABLE_LINE_UNFINISHED;
}

// Reads the columns of a row up to the first that fails; that and the later ones keep 0. The word
// that fails is passed to its end.
PLL_FINDING TABLE_READER::read_columns(PLL_BANDWIDTH_SETTING* row)
{
    bool is_read = (!m_format.m_has_capacitor || read_column(&row->m_loop_filter_capacitor)) &&
                   read_column(&row->m_m) && read_column(&row->m_charge_pump_current) &&
                   read_column(&row->m_loop_filter_resistor);
    if (m_format.m_has_results) {
        for (double PLL_BANDWIDTH_SETTING::*const result : RESULTS) {
            is_read = is_read && read_column(&(row->*result));
        }
    }
    if (is_read) {
        return PLL_FINDING::NONE;
    }
    if (m_listener != nullptr && m_stream.fail()) {
        m_buffer.skip_word();
    }
    return refusal();
}

void TABLE_READER::complete(PLL_BANDWIDTH_SETTING* row) const
{
    if (!m_format.m_has_capacitor) {
        row->m_loop_filter_capacitor = NO_CAPACITOR;
    }
    if (m_format.m_has_results) {
        row->m_typical_bandwidth *= HZ_PER_MHZ;
        row->m_fast_bandwidth *= HZ_PER_MHZ;
        row->m_slow_bandwidth *= HZ_PER_MHZ;
    } else {
        for (double PLL_BANDWIDTH_SETTING::*const result : RESULTS) {
            row->*result = NO_RESULT;
        }
    }
}

// Gives a row to the group of its M, which owns it from then on; any other row is released.
PLL_FINDING TABLE_READER::store(PLL_BANDWIDTH_SETTING* row)
{
    if (!check(row->m_m >= 0 && row->m_m < m_table.m_size,
               "bandwidth_setting->m_m < bandwidth_settings_table_size", PLL_MANAGER_SOURCE)) {
        delete row;
        return PLL_FINDING::ROW_WITHOUT_GROUP;
    }
    try {
        m_table.m_groups[row->m_m].m_settings.push_back(row);
    } catch (const std::exception&) {
        delete row;
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    return PLL_FINDING::NONE;
}

// The most groups that a table may have now, of which `groups` would take their share; 0 when that
// is beyond what the host allows.
std::int64_t limit_of_groups(std::int64_t groups, PLL_READ_BUDGET* budget)
{
    if (groups < 0 || groups > MAX_GROUPS) {
        return MAX_GROUPS;
    }
    return budget->take_groups(groups) ? 0 : budget->limits().m_table_groups;
}

// Groups for every M that the counters allow; none for more than a table may have.
PLL_FINDING create_table(const PLL_BASIC_INFO& info, PLL_READ_BUDGET* budget,
                         PLL_TABLE_LISTENER* listener, TABLE* table)
{
    PLL_FAULT fault{PLL_FINDING::TABLE_TOO_LARGE};
    fault.m_value = std::int64_t{info.m_vco_post_scale_counter_max} * info.m_m_counter_max + 1;
    fault.m_limit = limit_of_groups(fault.m_value, budget);
    if (fault.m_limit == 0) {
        fault.m_finding = PLL_FINDING::OUT_OF_MEMORY;
        table->m_size = static_cast<int>(fault.m_value);
        table->m_groups = new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(fault.m_value)];
    }
    if (table->m_groups != nullptr) {
        return PLL_FINDING::NONE;
    }
    if (listener != nullptr) {
        listener->hear_of_table(fault);
    }
    return fault.m_finding;
}

}  // namespace

namespace pll_internal {

PLL_FINDING read_table_file(PLL_BASIC_INFO* info, const char* file_name, PLL_READ_BUDGET* budget,
                            PLL_TABLE_LISTENER* listener)
{
    TABLE table = {0, nullptr};
    PLL_FINDING reason = create_table(*info, budget, listener, &table);
    info->m_use_bandwidth_settings_table = true;
    if (reason != PLL_FINDING::NONE) {
        info->set_bandwidth_settings_table(0, nullptr);
        return reason;
    }
    try {
        reason = TABLE_READER(table, budget, listener).read(file_name);
    } catch (const std::exception&) {
        reason = refuse_memory();
    }
    info->set_bandwidth_settings_table(table.m_size, table.m_groups);
    return reason;
}

}  // namespace pll_internal
