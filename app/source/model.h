// What the text of a family file says: families, speed grades, parts, and each value with the
// place of the statement that set it, those that a later one overwrote included. Records are known
// by numbers and hold no more than the text does, so that any text fits.
#pragma once

#include "app/source/keyword_table.h"
#include "app/source/name_index.h"
#include "app/source/place.h"

#include "pll_manager.h"
#include "pll_observer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>
#include <vector>

// What a statement has for a value.
enum class VALUE_STATE : unsigned char
{
    GIVEN,
    DOUBTFUL,  // a value that a message tells of already
    MALFORMED  // no value, likewise
};

struct SET_VALUE
{
    double m_value = 0.0;                  // a flag: 0 or 1; a list or name: none
    SOURCE_PLACE m_place;                  // of the keyword
    std::uint32_t m_order = 0;             // of all statements of the model
    std::uint32_t m_previous = NO_RECORD;  // of the same record
    std::uint32_t m_first = 0;  // of a list in the numbers of the model, of a name in its texts
    std::uint32_t m_count = 0;
    std::uint8_t m_keyword = 0;
    std::uint8_t m_post_scale = 0;  // 0: the keyword takes none
    VALUE_STATE m_state = VALUE_STATE::GIVEN;
};

// The values of a PLL type or of a part.
struct VALUE_RECORD
{
    std::uint32_t m_last = NO_RECORD;                 // of its values
    std::array<std::uint32_t, 3> m_seen = {0, 0, 0};  // a bit for each keyword that has a value
    bool m_is_spoiled = false;                        // a statement on it could not be understood
};

struct SOURCE_FAMILY
{
    std::string_view m_name;
    SOURCE_PLACE m_place;                             // of the name
    std::array<std::uint32_t, PLL_TYPE_MAX> m_types;  // records; NO_RECORD: nothing is said
    std::array<SOURCE_PLACE, PLL_TYPE_MAX> m_pll_places;
    std::array<std::uint32_t, PLL_TYPE_MAX> m_part_counts;
    bool m_is_foreign = false;  // has a file of its own, which says the rest
};

struct SOURCE_GRADE
{
    std::uint32_t m_family;
    std::string_view m_name;
    SOURCE_PLACE m_place;
    bool m_has_part;
};

struct SOURCE_PART
{
    std::uint32_t m_family;
    std::uint32_t m_grade;
    std::uint32_t m_record;
    PLL_TYPE_ENUM m_type;
    std::string_view m_name;
    SOURCE_PLACE m_place;
};

class SOURCE_MODEL
{
public:
    // Each finds a record by name, or adds one; `is_new` tells which. Names are kept.
    std::uint32_t add_family(std::string_view name, const SOURCE_PLACE& place, bool* is_new);
    std::uint32_t add_grade(std::uint32_t family, std::string_view name, const SOURCE_PLACE& place,
                            bool* is_new);
    std::uint32_t add_part(const SOURCE_PART& part, bool* is_new);

    // The values of a type, which `place` selects first.
    std::uint32_t add_type(std::uint32_t family, PLL_TYPE_ENUM type, const SOURCE_PLACE& place);

    void add_value(std::uint32_t record, SET_VALUE value);
    void set_foreign(std::uint32_t family) { m_families[family].m_is_foreign = true; }
    void spoil(std::uint32_t record) { m_records[record].m_is_spoiled = true; }

    // Appends to the numbers of lists, or to the texts of names; gives where it stands.
    std::uint32_t add_number(int number);
    std::uint32_t add_text(std::string_view text);

    const std::deque<SOURCE_FAMILY>& families() const { return m_families; }
    const std::deque<SOURCE_GRADE>& grades() const { return m_grades; }
    const std::deque<SOURCE_PART>& parts() const { return m_parts; }
    const VALUE_RECORD& record(std::uint32_t index) const { return m_records[index]; }
    const SET_VALUE& value(std::uint32_t index) const { return m_values[index]; }

    // The latest value of the keywords for which `is_it` holds; null when none was set.
    template <class IS_IT>
    const SET_VALUE* find_latest(std::uint32_t record, const IS_IT& is_it) const
    {
        std::uint32_t i = m_records[record].m_last;
        while (i != NO_RECORD && !is_it(m_values[i])) {
            i = m_values[i].m_previous;
        }
        return i == NO_RECORD ? nullptr : &m_values[i];
    }

    // False: no statement on the record has the keyword.
    bool has_value(std::uint32_t record, std::size_t keyword) const;

    std::vector<int> list_of(const SET_VALUE& value) const;
    std::string_view text_of(const SET_VALUE& value) const { return m_texts[value.m_first]; }

private:
    NAME_KEEPER m_names;
    NAME_INDEX m_family_index;
    NAME_INDEX m_grade_index;
    NAME_INDEX m_part_index;
    std::deque<SOURCE_FAMILY> m_families;
    std::deque<SOURCE_GRADE> m_grades;
    std::deque<SOURCE_PART> m_parts;
    std::deque<VALUE_RECORD> m_records;
    std::deque<SET_VALUE> m_values;
    std::deque<int> m_numbers;
    std::deque<std::string_view> m_texts;
};
