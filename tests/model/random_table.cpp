// Random table files, and random damage to any file.
#include "random_database.h"

#include <sstream>

namespace {

// What stands before, in and after the rows of one table.
struct STYLE
{
    std::string m_format;
    bool m_has_capacitor;
    bool m_has_results;
    bool m_has_comments;
    std::string m_line_break;
};

STYLE pick_style(RANDOM* random)
{
    STYLE style = {"V2 ", true, true, random->chance(20), random->chance(90) ? "\n" : "\r\n"};
    const int kind = random->between(0, 9);
    if (kind < 3) {
        style = {"simple_V1 ", false, false, style.m_has_comments, style.m_line_break};
    } else if (kind < 5) {
        style = {"V1 ", false, true, style.m_has_comments, style.m_line_break};
    } else if (kind == 5) {
        style = {" ", false, true, style.m_has_comments, style.m_line_break};
    } else if (kind == 6) {
        style = {"SIMPLE_V1\nV9 ", false, true, style.m_has_comments, style.m_line_break};
    }
    return style;
}

void write_row(std::ostream& stream, const MODEL_ROW& row, const STYLE& style)
{
    const double HZ_OF_A_MHZ = 1e6;
    if (style.m_has_capacitor) {
        stream << row.m_loop_filter_capacitor << ' ';
    }
    stream << row.m_m << '\t' << row.m_charge_pump_current << "  " << row.m_loop_filter_resistor;
    if (style.m_has_results) {
        stream << ' ' << row.m_typical_phase_margin << ' ' << row.m_typical_bandwidth / HZ_OF_A_MHZ
               << ' ' << row.m_typical_jitter_peaking << ' ' << row.m_fast_phase_margin << ' '
               << row.m_fast_bandwidth / HZ_OF_A_MHZ << ' ' << row.m_fast_jitter_peaking << ' '
               << row.m_slow_phase_margin << ' ' << row.m_slow_bandwidth / HZ_OF_A_MHZ << ' '
               << row.m_slow_jitter_peaking;
    }
    stream << (style.m_has_comments ? " # row" : "") << style.m_line_break;
}

MODEL_ROW random_row(int m, RANDOM* random)
{
    MODEL_ROW row;
    row.m_m = m;
    row.m_charge_pump_current = random->between(1, 100);
    row.m_loop_filter_resistor = random->between(1, 9000);
    row.m_loop_filter_capacitor = random->between(-1, 20);
    row.m_typical_bandwidth = random->fraction() * 3e6;
    row.m_fast_bandwidth = random->fraction() * 3e6;
    row.m_slow_bandwidth = random->fraction() * 3e6;
    row.m_typical_phase_margin = random->between(30, 70);
    return row;
}

// A row that the format does not allow, or that has no group.
std::string odd_row(int size, RANDOM* random)
{
    switch (random->between(0, 8)) {
    case 0:
        return "\n";
    case 1:
        return "1 2 x\n";
    case 2:
        return "2147483648 1 1 1 1 1 1 1 1 1 1 1 1\n";
    case 3:
        return std::to_string(size) + " " + std::to_string(size) + " 5 5 1 1 1 1 1 1 1 1 1\n";
    case 4:
        return "-3 -3 5 5 1 1 1 1 1 1 1 1 1\n";
    case 5:
        return " \t\n";
    case 6:
        return "\r\n";
    case 7:
        return "1 1 1 1 1e999 1 1 1 1 1 1 1 1\n";
    default:
        return "1 1 1 1 nan 1 1 1 1 1 1 1 1\n";
    }
}

}  // namespace

std::string make_table_text(const MODEL_DEVICE& device, int size, RANDOM* random)
{
    const STYLE style = pick_style(random);
    std::ostringstream stream;
    stream.precision(random->chance(50) ? 6 : 17);
    stream << style.m_format << "random table" << style.m_line_break << "titles"
           << style.m_line_break;
    const int odd_rows = random->chance(15) ? 30 : 0;
    for (const std::vector<MODEL_ROW>& rows : device.m_table) {
        for (const MODEL_ROW& row : rows) {
            if (random->between(0, 999) < odd_rows) {
                stream << odd_row(size, random);
            }
            write_row(stream, row, style);
        }
    }
    if (device.m_table.empty()) {
        for (int left = random->between(0, 12); left > 0; --left) {
            write_row(stream, random_row(random->between(0, std::max(0, size - 1)), random), style);
        }
        if (odd_rows != 0) {
            stream << odd_row(size, random);
        }
    }
    std::string text = stream.str();
    if (random->chance(5) && !text.empty()) {
        text.pop_back();
    }
    return text;
}

void damage_text(std::string* text, RANDOM* random)
{
    const int at = random->between(0, static_cast<int>(text->size()));
    const std::size_t place = static_cast<std::size_t>(at);
    switch (random->between(0, 5)) {
    case 0:
        text->resize(place);
        break;
    case 1:
        if (place < text->size()) {
            const int bit = 1 << random->between(0, 7);
            (*text)[place] = static_cast<char>((*text)[place] ^ bit);
        }
        break;
    case 2:
        text->insert(place, std::string(1, '\0'));
        break;
    case 3:
        text->insert(place, random->chance(50) ? "\n" : "\r");
        break;
    case 4:
        text->insert(place, std::string(static_cast<std::size_t>(random->between(900, 1100)), ' '));
        break;
    default:
        text->erase(place, static_cast<std::size_t>(random->between(1, 20)));
        break;
    }
}
