// The records of the device database and their lookups. Lists stay in creation order and only ever
// grow, so pointers to what they hold live as long as the manager. A record is complete before its
// list counts it: exhausted memory leaves the lists as they were.
#include "gen_string.h"
#include "pll_manager.h"

#include "database/memory.h"
#include "database/name_index.h"
#include "database/records.h"
#include "platform/arith.h"
#include "platform/report_error.h"

using namespace pll_internal;

namespace {

PLL_NAME_INDEX* find_or_create_index(PLL_NAME_INDEX** index)
{
    if (*index == nullptr) {
        *index = manager_create<PLL_NAME_INDEX>();
    }
    return *index;
}

// Appends an entry that is complete to an indexed list; false, with the list as it was, when memory
// is exhausted.
template <class T>
bool append_entry(T** list, int* count, T entry, PLL_NAME_INDEX* index, std::uint64_t hash)
{
    if (!make_room_for_one(list, *count, index) || !index->add(hash, *count)) {
        return false;
    }
    (*list)[*count] = entry;
    ++*count;
    return true;
}

void destroy_part(PLL_PART_INFO* part)
{
    if (part != nullptr) {
        manager_release(part->m_name);
        manager_destroy(part);
    }
}

// The entry of a list at `index`, after a report the nearest one, null in an empty list.
const char* name_at(const char* const* names, int count, int index, const char* condition, int line)
{
    if (index < 0 || index >= count) {
        report_error(condition, PLL_MANAGER_SOURCE, line);
    }
    return names == nullptr || count <= 0 ? nullptr : names[nearest_index(index, count)];
}

}  // namespace

PLL_PART_INFO::PLL_PART_INFO()
    : m_name(nullptr), m_speed_grade(nullptr), m_not_listed(false), m_type(PLL_TYPE_MAX)
{
}

PLL_FAMILY_INFO::PLL_FAMILY_INFO()
    : m_name(nullptr),
      m_path(nullptr),
      m_file_name(nullptr),
      m_database(nullptr),
      m_number_of_parts(0),
      m_parts(nullptr),
      m_number_of_speed_grades(0),
      m_speed_grades(nullptr),
      m_number_of_listed_speed_grades(0),
      m_listed_speed_grades(nullptr),
      m_part_index(nullptr),
      m_speed_grade_index(nullptr)
{
}

PLL_FAMILY_INFO::~PLL_FAMILY_INFO()
{
    manager_release(m_name);
    manager_release(m_path);
    manager_release(m_file_name);
    manager_release(m_database);
    for (int i = 0; i < m_number_of_parts; ++i) {
        destroy_part(m_parts[i]);
    }
    for (int i = 0; i < m_number_of_speed_grades; ++i) {
        manager_release(m_speed_grades[i]);
    }
    manager_release(m_parts);
    manager_release(m_speed_grades);
    manager_release(m_listed_speed_grades);
    manager_destroy(m_part_index);
    manager_destroy(m_speed_grade_index);
}

PLL_MANAGER::PLL_MANAGER()
    : m_number_of_families(0), m_families(nullptr), m_family_index(nullptr), m_observer(nullptr)
{
}

PLL_MANAGER::~PLL_MANAGER()
{
    for (int i = 0; i < m_number_of_families; ++i) {
        manager_destroy(m_families[i]);
    }
    manager_release(m_families);
    manager_destroy(m_family_index);
}

void* PLL_MANAGER::operator new(std::size_t size) noexcept
{
    return manager_allocate(size);
}

void PLL_MANAGER::operator delete(void* pointer) noexcept
{
    manager_release(pointer);
}

PLL_FAMILY_INFO* PLL_MANAGER::create_family_info(const char* name)
{
    if (name == nullptr || find_or_create_index(&m_family_index) == nullptr) {
        return nullptr;
    }
    const auto hash_of = [this](int i) { return hash_name(m_families[i]->m_name); };
    if (!index_the_rest(m_family_index, m_number_of_families, hash_of)) {
        return nullptr;
    }
    const std::uint64_t hash = hash_name(name);
    const int place = m_family_index->find(
        hash, [this, name](int i) { return gen_stricmp(m_families[i]->m_name, name) == 0; });
    if (place >= 0) {
        return m_families[place];
    }
    PLL_FAMILY_INFO* const family = manager_create<PLL_FAMILY_INFO>();
    if (family == nullptr) {
        return nullptr;
    }
    family->m_name = manager_join(name);
    if (family->m_name != nullptr &&
        append_entry(&m_families, &m_number_of_families, family, m_family_index, hash)) {
        return family;
    }
    manager_destroy(family);
    return nullptr;
}

const char* PLL_MANAGER::create_speed_grade(PLL_FAMILY_INFO* family, const char* speed_grade)
{
    if (!check(family != nullptr && speed_grade != nullptr,
               "family_info != NULL && speed_grade != NULL", PLL_MANAGER_SOURCE) ||
        find_or_create_index(&family->m_speed_grade_index) == nullptr) {
        return nullptr;
    }
    PLL_NAME_INDEX* const index = family->m_speed_grade_index;
    const auto hash_of = [family](int i) { return hash_name(family->m_speed_grades[i]); };
    if (!index_the_rest(index, family->m_number_of_speed_grades, hash_of)) {
        return nullptr;
    }
    const std::uint64_t hash = hash_name(speed_grade);
    const int place = index->find(hash, [family, speed_grade](int i) {
        return gen_stricmp(family->m_speed_grades[i], speed_grade) == 0;
    });
    if (place >= 0) {
        return family->m_speed_grades[place];
    }
    char* const name = manager_join(speed_grade);
    if (name != nullptr && append_entry(&family->m_speed_grades, &family->m_number_of_speed_grades,
                                        name, index, hash)) {
        return name;
    }
    manager_release(name);
    return nullptr;
}

PLL_PART_INFO* PLL_MANAGER::create_part_info(PLL_FAMILY_INFO* family, const char* part,
                                             const char* speed_grade, PLL_TYPE_ENUM type)
{
    const bool names_are_given = family != nullptr && part != nullptr && speed_grade != nullptr;
    check(names_are_given && type != PLL_TYPE_MAX,
          "family_info != NULL && part != NULL && speed_grade != NULL && pll_type != PLL_TYPE_MAX",
          PLL_MANAGER_SOURCE);
    if (!names_are_given) {
        return nullptr;
    }
    const char* const stored_speed_grade = create_speed_grade(family, speed_grade);
    if (stored_speed_grade == nullptr || find_or_create_index(&family->m_part_index) == nullptr) {
        return nullptr;
    }
    PLL_NAME_INDEX* const index = family->m_part_index;
    const auto hash_of = [family](int i) {
        return hash_name(family->m_parts[i]->m_name, family->m_parts[i]->m_type);
    };
    if (!index_the_rest(index, family->m_number_of_parts, hash_of)) {
        return nullptr;
    }
    const std::uint64_t hash = hash_name(part, type);
    const int place = index->find(hash, [family, part, type](int i) {
        const PLL_PART_INFO& other = *family->m_parts[i];
        return other.m_type == type && gen_stricmp(other.m_name, part) == 0;
    });
    if (place >= 0) {
        return family->m_parts[place];
    }
    PLL_PART_INFO* const record = manager_create<PLL_PART_INFO>();
    if (record == nullptr) {
        return nullptr;
    }
    record->m_name = manager_join(part);
    record->m_speed_grade = stored_speed_grade;
    record->m_type = type;
    if (record->m_name != nullptr &&
        append_entry(&family->m_parts, &family->m_number_of_parts, record, index, hash)) {
        return record;
    }
    destroy_part(record);
    return nullptr;
}

void PLL_MANAGER::create_listed_speed_grades(PLL_FAMILY_INFO* family)
{
    if (check(family != nullptr, "family_info != NULL", PLL_MANAGER_SOURCE)) {
        rebuild_listed_speed_grades(family);
    }
}

namespace pll_internal {

bool rebuild_listed_speed_grades(PLL_FAMILY_INFO* family)
{
    manager_release(family->m_listed_speed_grades);
    family->m_listed_speed_grades = nullptr;
    family->m_number_of_listed_speed_grades = 0;

    PLL_NAME_INDEX listed;
    const char** names = nullptr;
    int count = 0;
    for (int i = 0; i < family->m_number_of_parts; ++i) {
        const PLL_PART_INFO& part = *family->m_parts[i];
        if (part.m_not_listed) {
            continue;
        }
        const std::uint64_t hash = hash_name(part.m_speed_grade);
        const int place = listed.find(
            hash, [names, &part](int j) { return gen_stricmp(names[j], part.m_speed_grade) == 0; });
        if (place >= 0) {
            continue;
        }
        check(count < family->m_number_of_speed_grades,
              "number_of_listed_speed_grades < family_info->m_number_of_speed_grades",
              PLL_MANAGER_SOURCE);
        if (!append_entry(&names, &count, part.m_speed_grade, &listed, hash)) {
            manager_release(names);
            return false;
        }
    }
    family->m_listed_speed_grades = names;
    family->m_number_of_listed_speed_grades = count;
    return true;
}

}  // namespace pll_internal

void PLL_MANAGER::set_observer(PLL_READ_OBSERVER* observer)
{
    m_observer = observer;
}

PLL_READ_OBSERVER* PLL_MANAGER::get_observer() const
{
    return m_observer;
}

void PLL_MANAGER::set_read_limits(const PLL_READ_LIMITS& limits)
{
    m_read_limits = limits;
}

const PLL_READ_LIMITS& PLL_MANAGER::get_read_limits() const
{
    return m_read_limits;
}

int PLL_MANAGER::get_number_of_families() const
{
    return m_number_of_families;
}

const char* PLL_MANAGER::get_family(int index) const
{
    if (!check(index >= 0 && index < get_number_of_families(),
               "index >= 0 && index < get_number_of_families()", PLL_MANAGER_SOURCE) &&
        m_number_of_families <= 0) {
        return nullptr;
    }
    return m_families[nearest_index(index, m_number_of_families)]->m_name;
}

int PLL_MANAGER::get_number_of_speed_grades(const char* family)
{
    const PLL_FAMILY_INFO* const record = read_family_info(family);
    return record == nullptr ? 0 : record->m_number_of_speed_grades;
}

const char* PLL_MANAGER::get_speed_grade(const char* family, int index)
{
    const PLL_FAMILY_INFO* const record = read_family_info(family);
    if (record == nullptr) {
        return nullptr;
    }
    return name_at(record->m_speed_grades, record->m_number_of_speed_grades, index,
                   "index >= 0 && index < family_info->m_number_of_speed_grades", __LINE__);
}

int PLL_MANAGER::get_number_of_listed_speed_grades(const char* family)
{
    const PLL_FAMILY_INFO* const record = read_family_info(family);
    return record == nullptr ? 0 : record->m_number_of_listed_speed_grades;
}

const char* PLL_MANAGER::get_listed_speed_grade(const char* family, int index)
{
    const PLL_FAMILY_INFO* const record = read_family_info(family);
    if (record == nullptr) {
        return nullptr;
    }
    return name_at(record->m_listed_speed_grades, record->m_number_of_listed_speed_grades, index,
                   "index >= 0 && index < family_info->m_number_of_listed_speed_grades", __LINE__);
}
