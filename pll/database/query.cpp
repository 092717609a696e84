// The query and the order of its migration parts.
#include "gen_string.h"
#include "pll_manager.h"

#include "database/memory.h"
#include "platform/report_error.h"

#include <exception>

using namespace pll_internal;

namespace {

typedef MEM_ALLOCATOR<PLL_MIGRATION_PART_INFO> PART_ALLOCATOR;

const char* text_or_empty(const char* text)
{
    return text == nullptr ? "" : text;
}

// The record of a query, made anew when memory was exhausted before; null when it still is.
PLL_MIGRATION_INFO* find_or_create_migration_info(PLL_QUERY* query)
{
    if (query->m_migration_info == nullptr) {
        query->m_migration_info = manager_create<PLL_MIGRATION_INFO>();
    }
    return query->m_migration_info;
}

// Replaces the migration parts; false, with nothing changed, when memory is exhausted.
bool copy_migration_parts(PLL_QUERY* target, const PLL_QUERY& source)
{
    PLL_MIGRATION_INFO* const info = find_or_create_migration_info(target);
    if (info == nullptr) {
        return false;
    }
    if (source.m_migration_info == nullptr) {
        info->m_parts.clear();
        return true;
    }
    try {
        MEM_VECTOR<PLL_MIGRATION_PART_INFO> parts(source.m_migration_info->m_parts,
                                                  PART_ALLOCATOR(PLL_MANAGER_SOURCE));
        info->m_parts.swap(parts);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

bool has_table(const PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type)
{
    return family != nullptr && family->m_basic_infos[type].m_use_bandwidth_settings_table;
}

// Below 0 when the table of `a` is smaller, above when it is larger, 0 when tables don't decide.
int compare_table_sizes(PLL_MANAGER* manager, PLL_TYPE_ENUM type, const char* a, const char* b)
{
    if (manager == nullptr) {
        return 0;
    }
    const PLL_FAMILY_INFO* const family_a = manager->read_family_info(a);
    const PLL_FAMILY_INFO* const family_b = manager->read_family_info(b);
    const bool is_type = type >= ENHANCED_PLL && type < PLL_TYPE_MAX;
    if (!is_type || !has_table(family_a, type) || !has_table(family_b, type)) {
        return 0;
    }
    const int size_a = family_a->m_basic_infos[type].m_bandwidth_settings_table_size;
    const int size_b = family_b->m_basic_infos[type].m_bandwidth_settings_table_size;
    return size_a < size_b ? -1 : (size_a > size_b ? 1 : 0);
}

// Names that are not given don't decide.
int compare_names(const char* a, const char* b)
{
    return a == nullptr || b == nullptr ? 0 : gen_stricmp(a, b);
}

}  // namespace

PLL_MIGRATION_INFO::PLL_MIGRATION_INFO() : m_parts(PART_ALLOCATOR(PLL_MANAGER_SOURCE)) {}

PLL_QUERY::PLL_QUERY()
    : m_family(nullptr),
      m_type(PLL_TYPE_MAX),
      m_part(nullptr),
      m_speed_grade(nullptr),
      m_migration_info(manager_create<PLL_MIGRATION_INFO>())
{
}

PLL_QUERY::~PLL_QUERY()
{
    manager_destroy(m_migration_info);
}

PLL_QUERY::PLL_QUERY(const PLL_QUERY& other) : PLL_QUERY()
{
    *this = other;
}

// Exhausted memory leaves the query as it was: one that selects fewer devices than it was given
// would promise too much.
// The parts are copied into m_migration_info, which stays.
// cppcheck-suppress operatorEqVarError
PLL_QUERY& PLL_QUERY::operator=(const PLL_QUERY& other)
{
    if (this != &other && copy_migration_parts(this, other)) {
        m_family = other.m_family;
        m_type = other.m_type;
        m_part = other.m_part;
        m_speed_grade = other.m_speed_grade;
    }
    return *this;
}

void PLL_QUERY::add_migration_part(const char* family, const char* part, const char* speed_grade)
{
    check(family != nullptr, "family != 0", PLL_MANAGER_SOURCE);
    PLL_MIGRATION_INFO* const info = find_or_create_migration_info(this);
    if (info == nullptr) {
        return;
    }
    try {
        info->m_parts.push_back({family, part, speed_grade});
    } catch (const std::exception&) {
        return;
    }
}

unsigned PLL_QUERY::get_number_of_migration_parts() const
{
    return m_migration_info == nullptr ? 0
                                       : static_cast<unsigned>(m_migration_info->m_parts.size());
}

void PLL_QUERY::get_migration_part_info(unsigned index, const char** family, const char** part,
                                        const char** speed_grade) const
{
    PLL_MIGRATION_PART_INFO info = {nullptr, nullptr, nullptr};
    if (check(index < get_number_of_migration_parts(),
              "index < this->m_migration_info->m_parts.size()", PLL_MANAGER_SOURCE)) {
        info = m_migration_info->m_parts[index];
    }
    if (family != nullptr) {
        *family = info.m_family;
    }
    if (part != nullptr) {
        *part = info.m_part;
    }
    if (speed_grade != nullptr) {
        *speed_grade = info.m_speed_grade;
    }
}

PLL_MIGRATION_PART_INFO_COMPARE::PLL_MIGRATION_PART_INFO_COMPARE(PLL_MANAGER* manager,
                                                                 PLL_TYPE_ENUM type)
    : m_manager(manager), m_type(type)
{
}

bool PLL_MIGRATION_PART_INFO_COMPARE::operator()(const PLL_MIGRATION_PART_INFO& a,
                                                 const PLL_MIGRATION_PART_INFO& b) const
{
    const char* const family_a = text_or_empty(a.m_family);
    const char* const family_b = text_or_empty(b.m_family);
    const int families = gen_stricmp(family_a, family_b);
    if (families != 0) {
        const int sizes = compare_table_sizes(m_manager, m_type, family_a, family_b);
        return sizes != 0 ? sizes < 0 : families < 0;
    }
    const int parts = compare_names(a.m_part, b.m_part);
    if (parts != 0) {
        return parts < 0;
    }
    const int speed_grades = compare_names(a.m_speed_grade, b.m_speed_grade);
    return speed_grades <= 0;  // equal entries each go before the other
}
