// The counters and components of a PLL type: what is missing, and what does not fit together.
#pragma once

#include "app/lint/messages.h"
#include "app/lint/record_view.h"

#include <limits>
#include <optional>
#include <string>

// The largest M of a PLL type; none when it is not known.
std::optional<double> largest_m(const RECORD_VIEW& type);

// Of two keywords that give the same, the later statement; null: neither is there.
const SET_VALUE* find_later(const RECORD_VIEW& type, std::size_t one, std::size_t other);

// The statement that gives the largest M; null: none.
const SET_VALUE* find_largest_m(const RECORD_VIEW& type);

// The typical bandwidths of the rows of a table; crossed when it gives none.
struct TABLE_BANDWIDTHS
{
    double m_min = std::numeric_limits<double>::max();  // Hz
    double m_max = 0.0;
    double m_fast_min = std::numeric_limits<double>::max();
    bool m_has_medium = false;  // a row between the low and the high preset

    bool are_given() const { return m_min <= m_max; }
};

// `place` is where the type is selected first. A type with a table has no use for some presets.
void check_type(const RECORD_VIEW& type, const std::string& name, const SOURCE_PLACE& place,
                bool has_table, LINT_MESSAGES* messages);

// Whether rows of the table reach what the presets ask for. `fastest_pfd` is the shortest PFD
// period of any part, in ps; 0: none is known.
void check_presets(const RECORD_VIEW& type, const TABLE_BANDWIDTHS& table, double fastest_pfd,
                   LINT_MESSAGES* messages);
