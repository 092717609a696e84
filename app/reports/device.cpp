#include "app/devices/limits.h"
#include "app/devices/origin.h"
#include "app/output/format.h"
#include "app/output/record_list.h"
#include "app/output/text_table.h"
#include "app/reports/reports.h"

#include <cstring>

namespace {

constexpr std::size_t MOST_DEVICE_COLUMNS = 4;
constexpr std::size_t VALUE_WIDTH = 50;  // beyond it, a list goes on in the next line

bool is_period(const DEVICE_LIMIT& limit)
{
    return std::strcmp(limit.m_unit, "ps") == 0;
}

std::string format_limit(int limit)
{
    return is_given(limit) ? std::to_string(limit) : "-";
}

// In MHz, or as it is when it is no period.
std::string format_frequency(const DEVICE_LIMIT& limit, int value)
{
    return is_given(value) && is_period(limit) ? format_period_as_mhz(value) : "-";
}

void append_limits(const DEVICE& device, std::string* text)
{
    const std::vector<DEVICE_ENTRY>& entries = device.get_entries();
    const bool is_combined = entries.size() > 1;
    const bool shows_each = is_combined && entries.size() <= MOST_DEVICE_COLUMNS;
    std::vector<std::string> heads;
    std::vector<TABLE_COLUMN> columns = {{"limits", "", ALIGN::LEFT},
                                         {is_combined ? "combined" : "value", "", ALIGN::RIGHT},
                                         {"unit", "", ALIGN::LEFT},
                                         {"frequency", "MHz", ALIGN::RIGHT}};
    if (is_combined) {
        columns.push_back({"set by", "", ALIGN::LEFT});
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        heads.push_back("device " + std::to_string(i + 1));
    }
    for (std::size_t i = 0; shows_each && i < entries.size(); ++i) {
        columns.push_back({heads[i].c_str(), "", ALIGN::RIGHT});
    }
    TEXT_TABLE table(columns);
    for (const DEVICE_LIMIT& limit : list_limits()) {
        const int value = limit.m_read(device.get_info().m_timing_info);
        std::vector<std::string> cells = {limit.m_keyword, format_limit(value), limit.m_unit,
                                          format_frequency(limit, value)};
        if (is_combined) {
            cells.push_back(find_origin(device, limit));
        }
        for (std::size_t i = 0; shows_each && i < entries.size(); ++i) {
            cells.push_back(format_limit(limit.m_read(entries[i].m_info.m_timing_info)));
        }
        table.add_row(cells);
    }
    table.append_to(text);
}

// The words of a value on as many lines as it needs.
std::vector<std::string> wrap(const std::string& value)
{
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (value.size() - start > VALUE_WIDTH) {
        const std::size_t blank = value.rfind(' ', start + VALUE_WIDTH);
        if (blank == std::string::npos || blank <= start) {
            break;
        }
        lines.push_back(value.substr(start, blank - start));
        start = blank + 1;
    }
    lines.push_back(value.substr(start));
    return lines;
}

void append_values(const DEVICE& device, std::string* text)
{
    TEXT_TABLE table(
        {{"keyword", "", ALIGN::LEFT}, {"value", "", ALIGN::LEFT}, {"unit", "", ALIGN::LEFT}});
    const char* section = "";
    for (const DEVICE_VALUE& value : list_values(device.get_basic_info())) {
        if (std::strcmp(section, value.m_section) != 0) {
            section = value.m_section;
            table.add_row({"", "", ""});
            table.add_row({section, "", ""});
        }
        std::string keyword = "  " + value.m_keyword;
        const char* unit = value.m_value ? value.m_unit : "";
        for (const std::string& line : wrap(value.m_value.value_or("-"))) {
            table.add_row({keyword, line, unit});
            keyword.clear();
            unit = "";
        }
    }
    table.append_to(text);
}

RECORD_VALUE record_name(const char* name)
{
    return name == nullptr ? RECORD_VALUE::none() : RECORD_VALUE::text(name);
}

// A number when it is one.
RECORD_VALUE record_value(const std::optional<std::string>& value)
{
    if (!value) {
        return RECORD_VALUE::none();
    }
    const bool is_number = value->find_first_not_of("0123456789.-+e") == std::string::npos;
    return is_number ? RECORD_VALUE::number(*value) : RECORD_VALUE::text(*value);
}

RECORD_LIST list_records(const DEVICE& device)
{
    RECORD_LIST records({"section", "keyword", "value", "unit", "set_by"});
    const std::vector<DEVICE_ENTRY>& entries = device.get_entries();
    const auto add_name = [&](const std::string& section, const char* keyword,
                              const RECORD_VALUE& value) {
        records.add({RECORD_VALUE::text(section), RECORD_VALUE::text(keyword), value,
                     RECORD_VALUE::text(""), RECORD_VALUE::none()});
    };
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string section = "device " + std::to_string(i + 1);
        add_name(section, "family", record_name(entries[i].m_names.m_family));
        add_name(section, "pll", RECORD_VALUE::text(name_of_type(device.get_type())));
        add_name(section, "part", record_name(entries[i].m_names.m_part));
        add_name(section, "speed_grade", record_name(entries[i].m_names.m_speed_grade));
    }
    for (const DEVICE_LIMIT& limit : list_limits()) {
        const int value = limit.m_read(device.get_info().m_timing_info);
        const std::string origin = find_origin(device, limit);
        records.add(
            {RECORD_VALUE::text("limits"), RECORD_VALUE::text(limit.m_keyword),
             is_given(value) ? RECORD_VALUE::number(value) : RECORD_VALUE::none(),
             RECORD_VALUE::text(limit.m_unit),
             origin.empty() || origin == "-" ? RECORD_VALUE::none() : RECORD_VALUE::text(origin)});
    }
    for (const DEVICE_VALUE& value : list_values(device.get_basic_info())) {
        records.add({RECORD_VALUE::text(value.m_section), RECORD_VALUE::text(value.m_keyword),
                     record_value(value.m_value), RECORD_VALUE::text(value.m_unit),
                     RECORD_VALUE::none()});
    }
    return records;
}

}  // namespace

std::string report_device(const DEVICE& device, LIST_FORM form)
{
    if (form != LIST_FORM::TABLE) {
        return list_records(device).write(form);
    }
    std::string text = list_devices(device);
    text += "\n";
    append_limits(device, &text);
    text += "\n";
    append_values(device, &text);
    text += "\n-  not given by the database, or given as the default\n";
    return text;
}
