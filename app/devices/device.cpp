#include "app/devices/device.h"

#include "app/output/characters.h"
#include "app/output/input_error.h"
#include "app/words/letter_case.h"
#include "app/words/usage_error.h"

#include "pll.h"
#include "pll_observer.h"

#include <algorithm>
#include <filesystem>
#include <new>

namespace {

typedef std::vector<const PLL_PART_INFO*> RECORDS;

RECORDS all_records(const PLL_FAMILY_INFO& family)
{
    return {family.m_parts, family.m_parts + family.m_number_of_parts};
}

template <class CONDITION>
RECORDS select(const RECORDS& records, CONDITION condition)
{
    RECORDS selected;
    std::copy_if(records.begin(), records.end(), std::back_inserter(selected), condition);
    return selected;
}

// The names that the records have, each once, in their order.
template <class NAME>
std::vector<std::string_view> list_names(const RECORDS& records, NAME name_of)
{
    std::vector<std::string_view> names;
    for (const PLL_PART_INFO* record : records) {
        const char* const name = name_of(*record);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.emplace_back(name);
        }
    }
    return names;
}

std::vector<std::string_view> list_parts(const RECORDS& records)
{
    return list_names(records, [](const PLL_PART_INFO& record) { return record.m_name; });
}

std::vector<std::string_view> list_speed_grades(const RECORDS& records)
{
    return list_names(records, [](const PLL_PART_INFO& record) { return record.m_speed_grade; });
}

std::vector<std::string_view> list_types(const RECORDS& records)
{
    return list_names(records,
                      [](const PLL_PART_INFO& record) { return name_of_type(record.m_type); });
}

RECORDS records_of_type(const RECORDS& records, std::string_view type)
{
    return select(records, [&](const PLL_PART_INFO* r) { return type == name_of_type(r->m_type); });
}

RECORDS records_of_part(const RECORDS& records, std::string_view part)
{
    return select(records,
                  [&](const PLL_PART_INFO* r) { return equal_but_for_case(part, r->m_name); });
}

RECORDS records_of_speed_grade(const RECORDS& records, std::string_view speed_grade)
{
    return select(records, [&](const PLL_PART_INFO* r) {
        return equal_but_for_case(speed_grade, r->m_speed_grade);
    });
}

// A part or a speed grade that is the only one need not be asked for.
void name_what_is_single(const RECORDS& records, PLL_MIGRATION_PART_INFO* names)
{
    if (list_parts(records).size() == 1) {
        names->m_part = records.front()->m_name;
    }
    if (list_speed_grades(records).size() == 1) {
        names->m_speed_grade = records.front()->m_speed_grade;
    }
}

// Narrows the records to a part and a speed grade; `names` receives how the database spells them.
RECORDS narrow(const RECORDS& records, const std::optional<std::string>& part,
               const std::optional<std::string>& speed_grade, const std::string& argument,
               PLL_MIGRATION_PART_INFO* names)
{
    const std::string prefix = argument.empty() ? "--" : argument + " ";
    RECORDS rest = records;
    std::string place = std::string(" in ") + names->m_family;
    if (part) {
        names->m_part = find_name(prefix + "part", *part, place, list_parts(rest)).data();
        rest = records_of_part(rest, names->m_part);
        place = std::string(" for part ") + names->m_part;
    }
    if (speed_grade) {
        names->m_speed_grade =
            find_name(prefix + "speed-grade", *speed_grade, place, list_speed_grades(rest)).data();
        rest = records_of_speed_grade(rest, names->m_speed_grade);
    }
    name_what_is_single(rest, names);
    return rest;
}

PLL_TYPE_ENUM type_of_name(std::string_view name)
{
    int type = ENHANCED_PLL;
    while (type < PLL_TYPE_MAX && name != name_of_type(static_cast<PLL_TYPE_ENUM>(type))) {
        ++type;
    }
    return static_cast<PLL_TYPE_ENUM>(type);
}

// The PLL type asked for, or the only one that the named parts have.
PLL_TYPE_ENUM choose_type(const PLL_FAMILY_INFO& family, const DEVICE_WORDS& words)
{
    const RECORDS records = all_records(family);
    if (records.empty()) {
        throw INPUT_ERROR(std::string("cannot use family ") + family.m_name +
                          ": the database gives it no part");
    }
    if (words.m_type) {
        return type_of_name(find_name("--type", *words.m_type, std::string(" in ") + family.m_name,
                                      list_types(records)));
    }
    PLL_MIGRATION_PART_INFO names = {family.m_name, nullptr, nullptr};
    const std::vector<std::string_view> types =
        list_types(narrow(records, words.m_part, words.m_speed_grade, "", &names));
    if (types.size() != 1) {
        throw USAGE_ERROR("--type", "needed; " + list_legal(types));
    }
    return type_of_name(types.front());
}

// The pieces of FAMILY:PART:GRADE; those that are left out or empty are none.
std::vector<std::optional<std::string>> split_migration(const std::string& words)
{
    constexpr std::size_t PIECES = 3;
    std::vector<std::optional<std::string>> pieces;
    std::size_t start = 0;
    while (start <= words.size()) {
        const std::size_t end = std::min(words.find(':', start), words.size());
        pieces.emplace_back(words.substr(start, end - start));
        if (pieces.back()->empty()) {
            pieces.back().reset();
        }
        start = end + 1;
    }
    if (pieces.size() > PIECES || !pieces.front()) {
        throw USAGE_ERROR("--migrate", "'" + words +
                                           "' is not legal; expected FAMILY:PART:GRADE, of which "
                                           "PART and GRADE may be left out");
    }
    pieces.resize(PIECES);
    return pieces;
}

bool names_device(const DEVICE_WORDS& words)
{
    return words.m_database || words.m_family || words.m_type || words.m_part ||
           words.m_speed_grade || !words.m_migrate.empty();
}

struct NEEDED_LIMIT
{
    const char* m_keyword;
    int m_limit;
};

// Without one of these no setting is legal.
void require_limits(const PLL_INFO& info, const char* family, const char* type)
{
    const PLL_TIMING_INFO& timing = info.m_timing_info;
    const NEEDED_LIMIT limits[] = {
        {"vco_min", timing.get_vco_min_period(1)},
        {"vco_max", timing.get_vco_max_period(1)},
        {"pfd_min", timing.m_pfd_min},
        {"pfd_max", timing.m_pfd_max},
        {"input_min", timing.m_input_min},
    };
    std::string missing = info.m_basic_info->is_output_counter_high_low()
                              ? std::string()
                              : std::string("output_counter_high_low_max");
    for (const NEEDED_LIMIT& limit : limits) {
        if (!is_given(limit.m_limit)) {
            missing += (missing.empty() ? "" : ", ") + std::string(limit.m_keyword);
        }
    }
    if (!missing.empty()) {
        throw INPUT_ERROR(std::string("cannot set the ") + type + " of " + family +
                          ": the database does not give " + missing);
    }
}

}  // namespace

const char* name_of_type(PLL_TYPE_ENUM type)
{
    const char* const name = pll_get_word(PLL_VOCABULARY::PLL_TYPES, type);
    return name == nullptr ? "" : name;
}

std::vector<std::string_view> list_types(const PLL_FAMILY_INFO& family)
{
    return list_types(all_records(family));
}

bool is_given(int limit)
{
    return limit != PLL_UNSET_MINIMUM && limit != PLL_UNSET_MAXIMUM;
}

DEVICE::DEVICE(const std::string& directory, const DEVICE_WORDS& words)
    : m_database(directory, words.m_is_confined), m_type(PLL_TYPE_MAX)
{
    const PLL_FAMILY_INFO& family = m_database.find_family("--family", words.m_family);
    m_type = choose_type(family, words);
    add_entry(family, words.m_part, words.m_speed_grade, "");
    for (std::size_t i = 0; i < words.m_migrate.size(); ++i) {
        add_migration("--migrate " + std::to_string(i + 1), words.m_migrate[i]);
    }
    if (!m_database.get_manager()->init_pll_info(&m_info, query())) {
        throw std::bad_alloc();
    }
}

void DEVICE::add_migration(const std::string& argument, const std::string& words)
{
    const std::vector<std::optional<std::string>> pieces = split_migration(words);
    const PLL_FAMILY_INFO& family = m_database.find_family(argument + " family", pieces[0]);
    add_entry(family, pieces[1], pieces[2], argument);
}

void DEVICE::add_entry(const PLL_FAMILY_INFO& family, const std::optional<std::string>& part,
                       const std::optional<std::string>& speed_grade, const std::string& argument)
{
    DEVICE_ENTRY entry{{family.m_name, nullptr, nullptr}, 0, PLL_INFO()};
    const RECORDS records = records_of_type(all_records(family), name_of_type(m_type));
    if (records.empty()) {
        throw USAGE_ERROR(argument, std::string(family.m_name) + " has no " + name_of_type(m_type) +
                                        "; " + list_legal(list_types(family)));
    }
    entry.m_records =
        static_cast<int>(narrow(records, part, speed_grade, argument, &entry.m_names).size());
    PLL_QUERY alone;
    alone.m_family = entry.m_names.m_family;
    alone.m_type = m_type;
    alone.m_part = entry.m_names.m_part;
    alone.m_speed_grade = entry.m_names.m_speed_grade;
    if (!m_database.get_manager()->init_pll_info(&entry.m_info, alone)) {
        throw std::bad_alloc();
    }
    m_entries.push_back(entry);
}

PLL_QUERY DEVICE::query() const
{
    PLL_QUERY query;
    const PLL_MIGRATION_PART_INFO& names = m_entries.front().m_names;
    query.m_family = names.m_family;
    query.m_type = m_type;
    query.m_part = names.m_part;
    query.m_speed_grade = names.m_speed_grade;
    for (std::size_t i = 1; i < m_entries.size(); ++i) {
        const PLL_MIGRATION_PART_INFO& other = m_entries[i].m_names;
        query.add_migration_part(other.m_family, other.m_part, other.m_speed_grade);
    }
    return query;
}

const char* DEVICE::get_basic_family() const
{
    for (const DEVICE_ENTRY& entry : m_entries) {
        if (entry.m_info.m_basic_info == m_info.m_basic_info) {
            return entry.m_names.m_family;
        }
    }
    return m_entries.front().m_names.m_family;
}

int DEVICE::get_max_outputs() const
{
    const int count = get_basic_info().m_number_of_output_counters;
    if (count < 1) {
        throw INPUT_ERROR(std::string("cannot set the ") + name_of_type(m_type) + " of " +
                          get_basic_family() + ": the database gives it no output counter");
    }
    return std::min(count, PLL_MAX_TAPS);
}

void DEVICE::give_to(advice::LIMITS* limits) const
{
    require_limits(m_info, get_basic_family(), name_of_type(m_type));
    if (!limits->take_device(m_database.get_manager(), query())) {
        throw std::bad_alloc();
    }
}

std::unique_ptr<DEVICE> open_device(const DEVICE_WORDS& words)
{
    if (!names_device(words)) {
        return nullptr;
    }
    return require_device(words);
}

std::optional<std::string> find_unused_database(const DEVICE_WORDS& words)
{
    const std::optional<std::string> directory = find_database(std::nullopt);
    if (!directory || names_device(words)) {
        return std::nullopt;
    }
    std::error_code error;
    const bool is_there = std::filesystem::is_directory(*directory, error);
    return std::string(DATABASE_VARIABLE) + " is set to " + *directory +
           (is_there ? ", which is not used: no option names a device" : ", which does not exist");
}

std::string require_database(const DEVICE_WORDS& words)
{
    const std::optional<std::string> directory = find_database(words.m_database);
    if (!directory) {
        throw USAGE_ERROR("--database", std::string("needed; the directory of a database, here or "
                                                    "in the environment variable ") +
                                            DATABASE_VARIABLE);
    }
    return *directory;
}

std::unique_ptr<DEVICE> require_device(const DEVICE_WORDS& words)
{
    return std::make_unique<DEVICE>(require_database(words), words);
}

std::string describe(const DEVICE_ENTRY& entry)
{
    const PLL_MIGRATION_PART_INFO& names = entry.m_names;
    std::string text = names.m_family;
    text += names.m_part == nullptr ? ", all parts" : std::string(", part ") + names.m_part;
    text += names.m_speed_grade == nullptr ? ", all speed grades"
                                           : std::string(", speed grade ") + names.m_speed_grade;
    if (entry.m_records != 1) {
        text += " (the widest limits of " + std::to_string(entry.m_records) + " records)";
    }
    return make_visible(text);
}
