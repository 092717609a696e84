// A statement of a family file goes to a part or to a PLL type. The limit in force is that of the
// record whose value it has, so the last statement of its keyword there is its place.
#include "app/devices/limit_sources.h"

#include "app/devices/limits.h"
#include "app/output/input_error.h"
#include "app/output/input_file.h"
#include "app/words/letter_case.h"

#include "pll_observer.h"

#include <string>
#include <vector>

namespace {

// A statement that was stored, with the value that its record had afterwards.
struct PLACE
{
    std::string m_family;
    std::string m_part;  // empty: of the PLL type
    std::string m_keyword;
    std::string m_where;
    PLL_TIMING_INFO m_timing;
};

class GATHERER : public PLL_READ_OBSERVER
{
public:
    explicit GATHERER(PLL_TYPE_ENUM type) : m_type(type) {}

    void on_statement(const PLL_READ_STATEMENT& statement) override
    {
        const bool is_stored = statement.m_kind == PLL_READ_KIND::STATEMENT &&
                               statement.m_result == PLL_READ_RESULT::STORED;
        if (!is_stored || statement.m_family == nullptr || statement.m_type != m_type) {
            return;
        }
        PLACE place;
        place.m_family = statement.m_family->m_name;
        if (statement.m_part != nullptr) {
            place.m_part = statement.m_part->m_name;
            place.m_timing = statement.m_part->m_timing_info;
        }
        place.m_keyword = statement.m_keyword;
        place.m_where =
            std::string(statement.m_place.m_file) + ":" + std::to_string(statement.m_place.m_line);
        m_places.push_back(place);
    }

    void on_finding(const PLL_READ_FINDING& /*finding*/) override {}

    const std::vector<PLACE>& get_places() const { return m_places; }

private:
    PLL_TYPE_ENUM m_type;
    std::vector<PLACE> m_places;
};

// "vco_min_post_scale 1" is also set by the plain "vco_min".
bool sets(const std::string& keyword, const std::string& limit_keyword)
{
    const std::string suffix = "_post_scale";
    const std::string name = limit_keyword.substr(0, limit_keyword.find(' '));
    const bool is_scaled = name.size() > suffix.size() &&
                           name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0;
    if (keyword == name) {
        return true;
    }
    if (is_scaled) {
        return keyword == name.substr(0, name.size() - suffix.size());
    }
    // One counter limit sets another: its double, or its end.
    const std::string high_low = "_high_low_max";
    const std::size_t at = keyword.find(high_low);
    return at != std::string::npos && name == keyword.substr(0, at) + "_max";
}

bool is_of(const PLACE& place, const DEVICE_ENTRY& entry)
{
    const bool is_family = equal_but_for_case(place.m_family, entry.m_names.m_family);
    const bool is_part = place.m_part.empty() || entry.m_names.m_part == nullptr ||
                         equal_but_for_case(place.m_part, entry.m_names.m_part);
    return is_family && is_part;
}

const DEVICE_LIMIT* find_timing_limit(const std::string& keyword)
{
    for (const DEVICE_LIMIT& limit : list_limits()) {
        if (keyword == limit.m_keyword) {
            return &limit;
        }
    }
    return nullptr;
}

// Whether a statement left the value that is in force: of a part its own, of a PLL type that of the
// family which the library takes counters and components from.
bool is_in_force(const DEVICE& device, const DEVICE_ENTRY& entry, const PLACE& place,
                 const std::string& keyword)
{
    const DEVICE_LIMIT* const timing = find_timing_limit(keyword);
    if (timing != nullptr) {
        return !place.m_part.empty() &&
               timing->m_read(place.m_timing) == timing->m_read(device.get_info().m_timing_info);
    }
    return entry.m_info.m_basic_info == device.get_info().m_basic_info;
}

// The last statement that gives a limit the value that is in force; null when there is none.
const PLACE* find_place(const DEVICE& device, const std::vector<PLACE>& places,
                        const std::string& keyword)
{
    const PLACE* found = nullptr;
    for (const DEVICE_ENTRY& entry : device.get_entries()) {
        for (const PLACE& place : places) {
            if (is_of(place, entry) && sets(place.m_keyword, keyword) &&
                is_in_force(device, entry, place, keyword)) {
                found = &place;
            }
        }
        if (found != nullptr) {
            return found;
        }
    }
    return found;
}

}  // namespace

void name_sources(const DEVICE& device, advice::LIMITS* limits)
{
    GATHERER gatherer(device.get_type());
    PLL_MANAGER manager;
    manager.set_observer(&gatherer);
    bool is_read = manager.read(device.get_directory().c_str());
    for (const DEVICE_ENTRY& entry : device.get_entries()) {
        is_read = is_read && manager.read_family_info(entry.m_names.m_family) != nullptr;
    }
    if (!is_read) {
        throw INPUT_ERROR("cannot read the database " + device.get_directory() +
                          " once more: it has changed, or the system refuses to read it");
    }
    const std::vector<advice::LIMIT> list = limits->get_list();
    for (const advice::LIMIT& limit : list) {
        const PLACE* const place = limit.m_keyword.empty()
                                       ? nullptr
                                       : find_place(device, gatherer.get_places(), limit.m_keyword);
        if (place != nullptr) {
            limits->set_source(limit.m_keyword, tidy_path(place->m_where));
        }
    }
}
