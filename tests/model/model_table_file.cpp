// The model's reader of bandwidth settings tables: the whole text as a stream of numbers.
#include "model_database.h"

#include <cstdint>
#include <locale>
#include <sstream>

namespace {

constexpr std::size_t LONGEST_WORD = 1023;
constexpr std::int64_t MOST_GROUPS = 4194304;
constexpr double HZ_OF_A_MHZ = 1000000.0;

// What the format word says of the columns.
struct COLUMNS
{
    bool m_capacitor = false;
    bool m_results = true;
};

// The characters up to the first blank, which is taken too; false when none comes in time.
bool take_format(std::istream& text, COLUMNS* columns)
{
    std::string word;
    for (int c = text.get(); c != ' '; c = text.get()) {
        if (c == std::char_traits<char>::eof() || word.size() == LONGEST_WORD) {
            return false;
        }
        word += static_cast<char>(c);
    }
    columns->m_capacitor = model_same_name(word, "V2");
    columns->m_results = !model_same_name(word, "SIMPLE_V1");
    return true;
}

void skip_rest_of_line(std::istream& text)
{
    for (int c = text.get(); c != '\n' && c != std::char_traits<char>::eof();) {
        c = text.get();
    }
}

// One number, unless an earlier one of the file failed.
template <class NUMBER>
void take(std::istream& text, NUMBER* number, bool* is_ok)
{
    if (*is_ok) {
        text >> *number;
        *is_ok = text.good();
    }
}

MODEL_ROW take_row(std::istream& text, const COLUMNS& columns, bool* is_ok)
{
    MODEL_ROW row;
    if (columns.m_capacitor) {
        take(text, &row.m_loop_filter_capacitor, is_ok);
    } else {
        row.m_loop_filter_capacitor = -1;
    }
    take(text, &row.m_m, is_ok);
    take(text, &row.m_charge_pump_current, is_ok);
    take(text, &row.m_loop_filter_resistor, is_ok);
    struct CORNER
    {
        double* m_margin;
        double* m_bandwidth;
        double* m_peaking;
    };
    for (const CORNER& corner :
         {CORNER{&row.m_typical_phase_margin, &row.m_typical_bandwidth,
                 &row.m_typical_jitter_peaking},
          CORNER{&row.m_fast_phase_margin, &row.m_fast_bandwidth, &row.m_fast_jitter_peaking},
          CORNER{&row.m_slow_phase_margin, &row.m_slow_bandwidth, &row.m_slow_jitter_peaking}}) {
        if (columns.m_results) {
            take(text, corner.m_margin, is_ok);
            take(text, corner.m_bandwidth, is_ok);
            take(text, corner.m_peaking, is_ok);
            *corner.m_bandwidth *= HZ_OF_A_MHZ;
        } else {
            *corner.m_margin = *corner.m_bandwidth = *corner.m_peaking = -1.0;
        }
    }
    return row;
}

// True when every row was read and one of them has a group.
bool take_rows(std::istream& text, const COLUMNS& columns,
               std::vector<std::vector<MODEL_ROW>>* table, MODEL_REPORTS& reports)
{
    const int size = static_cast<int>(table->size());
    bool is_ok = true;
    int stored = 0;
    while (is_ok && !text.eof()) {
        const int next = text.peek();
        if (next == '\n' || next == std::char_traits<char>::eof()) {
            break;
        }
        const MODEL_ROW row = take_row(text, columns, &is_ok);
        if (is_ok) {
            skip_rest_of_line(text);
        }
        if (row.m_m < 0 || row.m_m >= size) {
            reports.push_back("bandwidth_setting->m_m < bandwidth_settings_table_size");
        } else {
            (*table)[static_cast<std::size_t>(row.m_m)].push_back(row);
            ++stored;
        }
    }
    return is_ok && stored > 0;
}

}  // namespace

bool model_read_table(MODEL_BASIC* basic, const std::string* text, MODEL_REPORTS& reports)
{
    basic->m_use_bandwidth_settings_table = true;
    basic->m_table.clear();
    const std::int64_t size =
        std::int64_t{basic->m_vco_post_scale_counter_max} * basic->m_m_counter_max + 1;
    if (size < 0 || size > MOST_GROUPS) {
        return false;
    }
    basic->m_table.resize(static_cast<std::size_t>(size));
    if (text == nullptr) {
        return false;
    }
    std::istringstream stream(*text);
    stream.imbue(std::locale::classic());
    COLUMNS columns;
    if (!take_format(stream, &columns)) {
        return false;
    }
    skip_rest_of_line(stream);
    skip_rest_of_line(stream);
    return take_rows(stream, columns, &basic->m_table, reports);
}
