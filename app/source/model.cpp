#include "app/source/model.h"

#include "app/words/letter_case.h"

namespace {

constexpr std::size_t BITS_OF_WORD = 32;
static_assert(NUMBER_OF_KEYWORDS <= 3 * BITS_OF_WORD);

template <class T>
std::uint32_t count_of(const std::deque<T>& records)
{
    return static_cast<std::uint32_t>(records.size());
}

}  // namespace

std::uint32_t SOURCE_MODEL::add_family(std::string_view name, const SOURCE_PLACE& place,
                                       bool* is_new)
{
    const std::uint32_t next = count_of(m_families);
    const std::uint32_t family =
        m_family_index.find_or_add(0, name, next, [&](std::uint32_t candidate) {
            return equal_but_for_case(m_families[candidate].m_name, name);
        });
    *is_new = family == next;
    if (*is_new) {
        SOURCE_FAMILY& record = m_families.emplace_back();
        record.m_name = m_names.keep(name);
        record.m_place = place;
        record.m_types.fill(NO_RECORD);
        record.m_part_counts.fill(0);
    }
    return family;
}

std::uint32_t SOURCE_MODEL::add_grade(std::uint32_t family, std::string_view name,
                                      const SOURCE_PLACE& place, bool* is_new)
{
    const std::uint32_t next = count_of(m_grades);
    const std::uint32_t grade =
        m_grade_index.find_or_add(family, name, next, [&](std::uint32_t candidate) {
            const SOURCE_GRADE& record = m_grades[candidate];
            return record.m_family == family && equal_but_for_case(record.m_name, name);
        });
    *is_new = grade == next;
    if (*is_new) {
        m_grades.push_back({family, m_names.keep(name), place, false});
    }
    return grade;
}

std::uint32_t SOURCE_MODEL::add_part(const SOURCE_PART& part, bool* is_new)
{
    const std::uint32_t next = count_of(m_parts);
    const std::uint32_t owner =
        part.m_family * PLL_TYPE_MAX + static_cast<std::uint32_t>(part.m_type);
    const std::uint32_t index =
        m_part_index.find_or_add(owner, part.m_name, next, [&](std::uint32_t candidate) {
            const SOURCE_PART& record = m_parts[candidate];
            return record.m_family == part.m_family && record.m_type == part.m_type &&
                   equal_but_for_case(record.m_name, part.m_name);
        });
    *is_new = index == next;
    m_grades[part.m_grade].m_has_part = true;
    if (*is_new) {
        SOURCE_PART& record = m_parts.emplace_back(part);
        record.m_name = m_names.keep(part.m_name);
        record.m_record = count_of(m_records);
        m_records.emplace_back();
        ++m_families[part.m_family].m_part_counts[part.m_type];
    }
    return index;
}

std::uint32_t SOURCE_MODEL::add_type(std::uint32_t family, PLL_TYPE_ENUM type,
                                     const SOURCE_PLACE& place)
{
    SOURCE_FAMILY& owner = m_families[family];
    if (owner.m_types[type] == NO_RECORD) {
        owner.m_types[type] = count_of(m_records);
        owner.m_pll_places[type] = place;
        m_records.emplace_back();
    }
    return owner.m_types[type];
}

void SOURCE_MODEL::add_value(std::uint32_t record, SET_VALUE value)
{
    VALUE_RECORD& owner = m_records[record];
    value.m_previous = owner.m_last;
    owner.m_last = count_of(m_values);
    value.m_order = owner.m_last;
    owner.m_seen[value.m_keyword / BITS_OF_WORD] |= 1U << (value.m_keyword % BITS_OF_WORD);
    m_values.push_back(value);
}

std::uint32_t SOURCE_MODEL::add_number(int number)
{
    m_numbers.push_back(number);
    return count_of(m_numbers) - 1;
}

std::uint32_t SOURCE_MODEL::add_text(std::string_view text)
{
    m_texts.push_back(m_names.keep(text));
    return count_of(m_texts) - 1;
}

bool SOURCE_MODEL::has_value(std::uint32_t record, std::size_t keyword) const
{
    const std::uint32_t word = m_records[record].m_seen[keyword / BITS_OF_WORD];
    return (word >> (keyword % BITS_OF_WORD) & 1U) != 0;
}

std::vector<int> SOURCE_MODEL::list_of(const SET_VALUE& value) const
{
    const auto first = m_numbers.begin() + value.m_first;
    return std::vector<int>(first, first + value.m_count);
}
