// The choice of rows of the bandwidth settings table, for the candidates of one synthesis.
//
// What a row costs depends on the request, on the row and, through the limits of the PFD, on N. The
// candidates of one M come one after the other, so what does not depend on N is worked out once for
// the group of an M that has many: its rows by ascending fast bandwidth, and the cheapest of the
// first 1, 2, ... of them. The limits then allow some of the first rows and no others, and a row
// that they do not allow costs more than any that misses a wish by less than 64 MHz; so the
// cheapest of the allowed ones is the cheapest of all. In every other case the rows are walked.
#pragma once

#include "pll.h"
#include "pll_prop.h"

namespace pll_internal {

// What a candidate without a row costs, more than with any.
inline constexpr double NO_ROW_COST = 2147483647.0;

// The rows of an effective M; null when there are none.
const PLL_BANDWIDTH_SETTING_GROUP* find_row_group(const PLL& pll, int effective_m);

// What a row costs whatever the PFD allows: its typical bandwidth beside the one asked for. Reports
// an unknown type of the request.
double row_wish_penalty(const PLL& pll, const PLL_PROP& request, const PLL_BANDWIDTH_SETTING& row);

struct PLL_ROW_CHOICE
{
    const PLL_BANDWIDTH_SETTING* m_row;  // null: none
    double m_cost;
    bool m_within;  // inside the limits of the PFD
};

class PLL_BANDWIDTH_CHOOSER
{
public:
    // The request, and the table and bandwidth presets of all PLLs that `choose` is given, stay as
    // they are while the object lives.
    explicit PLL_BANDWIDTH_CHOOSER(const PLL_PROP& request)
        : m_request(request),
          m_group(nullptr),
          m_walked(0),
          m_row_count(NOT_SORTED),
          m_fast{},
          m_best{}
    {
    }

    // As PLL::synthesize_best_bandwidth_using_table, reports included.
    bool choose(PLL* candidate);

private:
    // A row's place in its group, and what it costs where the limits allow it.
    struct ROW_COST
    {
        const PLL_BANDWIDTH_SETTING* m_row;
        int m_place;
        double m_cost;
    };

    static constexpr int MOST_ROWS = 32;  // of a group that is sorted
    static constexpr int NOT_SORTED = -1;
    static constexpr int ROWS_BEFORE_SORTING = 24;  // rows looked at, about what sorting costs

    static bool is_better(const ROW_COST& a, const ROW_COST& b);

    PLL_ROW_CHOICE choose_row(const PLL& candidate, const PLL_BANDWIDTH_SETTING_GROUP& group);
    void sort_rows(const PLL& candidate);
    bool insert_row(double fast, const ROW_COST& row);

    const PLL_PROP& m_request;
    const PLL_BANDWIDTH_SETTING_GROUP* m_group;  // of the last candidate
    int m_walked;                                // rows of the group that were looked at
    int m_row_count;                             // sorted ones; NOT_SORTED: the group is walked
    double m_fast[MOST_ROWS];                    // ascending, Hz
    ROW_COST m_best[MOST_ROWS];                  // the cheapest of the rows up to here
};

}  // namespace pll_internal
