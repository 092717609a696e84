#include "app/devices/origin.h"

#include "app/output/characters.h"

std::string find_origin(const DEVICE& device, const DEVICE_LIMIT& limit)
{
    const std::vector<DEVICE_ENTRY>& entries = device.get_entries();
    const int combined = limit.m_read(device.get_info().m_timing_info);
    if (entries.size() < 2) {
        return "";
    }
    if (!is_given(combined)) {
        return "-";
    }
    if (limit.m_kind == LIMIT_KIND::AVERAGE) {
        return "average";
    }
    std::string numbers;
    std::size_t count = 0;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (limit.m_read(entries[i].m_info.m_timing_info) == combined) {
            numbers += (count == 0 ? "" : ", ") + std::to_string(i + 1);
            ++count;
        }
    }
    return count == entries.size() ? "all" : numbers;
}

namespace {

// A family without a table that comes first by name takes away the table of the others.
std::string tell_of_lost_table(const DEVICE& device)
{
    if (device.get_basic_info().m_use_bandwidth_settings_table) {
        return "";
    }
    for (const DEVICE_ENTRY& entry : device.get_entries()) {
        if (entry.m_info.m_basic_info->m_use_bandwidth_settings_table) {
            return std::string("  NOTE: the table of ") + make_visible(entry.m_names.m_family) +
                   " is not used: " + make_visible(device.get_basic_family()) +
                   " has none, and its components hold.\n";
        }
    }
    return "";
}

}  // namespace

std::string list_devices(const DEVICE& device)
{
    const std::string type = name_of_type(device.get_type());
    const std::vector<DEVICE_ENTRY>& entries = device.get_entries();
    if (entries.size() == 1) {
        return "device " + type + " of " + describe(entries.front()) + "\n";
    }
    std::string text = "devices to fit, by their " + type + "\n";
    bool is_one_family = true;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        text += "  " + std::to_string(i + 1) + "  " + describe(entries[i]) + "\n";
        is_one_family =
            is_one_family && entries[i].m_info.m_basic_info == entries.front().m_info.m_basic_info;
    }
    if (!is_one_family) {
        text += std::string("  Counters, components and table are those of ") +
                make_visible(device.get_basic_family()) + ".\n";
        text += tell_of_lost_table(device);
    }
    return text;
}
