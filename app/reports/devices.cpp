#include "app/devices/database.h"
#include "app/output/characters.h"
#include "app/output/format.h"
#include "app/output/input_error.h"
#include "app/output/record_list.h"
#include "app/output/text_table.h"
#include "app/reports/reports.h"
#include "app/words/usage_error.h"

#include <algorithm>
#include <set>

namespace {

// Two periods as a range of frequencies.
struct PERIOD_RANGE
{
    int m_shortest;
    int m_longest;
};

std::vector<PERIOD_RANGE> ranges_of(const PLL_PART_INFO& part)
{
    const PLL_TIMING_INFO& timing = part.m_timing_info;
    return {{timing.get_vco_min_period(1), timing.get_vco_max_period(1)},
            {timing.m_pfd_min, timing.m_pfd_max},
            {timing.m_input_min, timing.m_input_max}};
}

std::string format_end(int period)
{
    return is_given(period) ? format_period_as_mhz(period) : "-";
}

RECORD_VALUE record_end(int period)
{
    const std::string text = format_end(period);
    return text == "-" ? RECORD_VALUE::none() : RECORD_VALUE::number(text);
}

void append_type(const PLL_FAMILY_INFO& family, const std::string& type, std::string* text)
{
    TEXT_TABLE table({{"part", "", ALIGN::LEFT},
                      {"speed grade", "", ALIGN::LEFT},
                      {"listed", "", ALIGN::LEFT},
                      {"VCO from", "MHz", ALIGN::RIGHT},
                      {"to", "MHz", ALIGN::RIGHT},
                      {"PFD from", "MHz", ALIGN::RIGHT},
                      {"to", "MHz", ALIGN::RIGHT},
                      {"input from", "MHz", ALIGN::RIGHT},
                      {"to", "MHz", ALIGN::RIGHT}});
    for (int i = 0; i < family.m_number_of_parts; ++i) {
        const PLL_PART_INFO& part = *family.m_parts[i];
        if (type != name_of_type(part.m_type)) {
            continue;
        }
        std::vector<std::string> cells = {part.m_name, part.m_speed_grade,
                                          part.m_not_listed ? "no" : "yes"};
        for (const PERIOD_RANGE& range : ranges_of(part)) {
            cells.push_back(format_end(range.m_longest));
            cells.push_back(format_end(range.m_shortest));
        }
        table.add_row(cells);
    }
    *text += "\n" + type + "\n";
    table.append_to(text);
}

// "speed grades 5, 6, 7; not listed 4".
std::string describe_speed_grades(const PLL_FAMILY_INFO& family)
{
    std::string listed;
    std::string others;
    const char* const* const begin = family.m_listed_speed_grades;
    const char* const* const end = begin + family.m_number_of_listed_speed_grades;
    for (int i = 0; i < family.m_number_of_speed_grades; ++i) {
        const char* const name = family.m_speed_grades[i];
        const bool is_listed =
            std::any_of(begin, end, [&](const char* grade) { return std::string(grade) == name; });
        std::string* const list = is_listed ? &listed : &others;
        *list += (list->empty() ? "" : ", ") + std::string(name);
    }
    return "speed grades " + (listed.empty() ? std::string("none listed") : listed) +
           (others.empty() ? "" : "; not listed " + others);
}

std::string write_tables(const std::vector<const PLL_FAMILY_INFO*>& families)
{
    std::string text;
    for (const PLL_FAMILY_INFO* family : families) {
        std::set<std::string> parts;
        for (int i = 0; i < family->m_number_of_parts; ++i) {
            parts.insert(family->m_parts[i]->m_name);
        }
        text += std::string(text.empty() ? "" : "\n") + make_visible(family->m_name) + ": " +
                std::to_string(parts.size()) + (parts.size() == 1 ? " part, " : " parts, ") +
                make_visible(describe_speed_grades(*family)) + "\n";
        for (const std::string_view type : list_types(*family)) {
            append_type(*family, std::string(type), &text);
        }
    }
    return text;
}

RECORD_LIST list_records(const std::vector<const PLL_FAMILY_INFO*>& families)
{
    RECORD_LIST records({"family", "type", "part", "speed_grade", "listed", "vco_from_mhz",
                         "vco_to_mhz", "pfd_from_mhz", "pfd_to_mhz", "input_from_mhz",
                         "input_to_mhz"});
    for (const PLL_FAMILY_INFO* family : families) {
        for (int i = 0; i < family->m_number_of_parts; ++i) {
            const PLL_PART_INFO& part = *family->m_parts[i];
            std::vector<RECORD_VALUE> values = {
                RECORD_VALUE::text(family->m_name), RECORD_VALUE::text(name_of_type(part.m_type)),
                RECORD_VALUE::text(part.m_name), RECORD_VALUE::text(part.m_speed_grade),
                RECORD_VALUE::truth(!part.m_not_listed)};
            for (const PERIOD_RANGE& range : ranges_of(part)) {
                values.push_back(record_end(range.m_longest));
                values.push_back(record_end(range.m_shortest));
            }
            records.add(values);
        }
    }
    return records;
}

}  // namespace

std::string report_devices(const DEVICE_WORDS& words, LIST_FORM form,
                           std::vector<std::string>* failures)
{
    DATABASE database(require_database(words), words.m_is_confined);
    std::vector<const PLL_FAMILY_INFO*> families;
    if (words.m_family) {
        families.push_back(&database.find_family("--family", words.m_family));
    } else {
        for (const std::string_view name : database.list_families()) {
            try {
                families.push_back(&database.find_family("--family", std::string(name)));
            } catch (const INPUT_ERROR& error) {
                failures->push_back(error.what());
            }
        }
    }
    if (form == LIST_FORM::TABLE) {
        return write_tables(families);
    }
    return list_records(families).write(form);
}
