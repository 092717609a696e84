// What a row of the bandwidth table costs at least, and what passing over candidates must leave.
//
// A candidate that is passed over would have been given a row of the table: resistor, current,
// capacitor and two verdicts, which later candidates without a row, or with one that has no
// capacitor, keep. So the last ones that were passed over are remembered, and their rows given
// before the next evaluation.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "search/evaluation.h"
#include "search/limits.h"

namespace pll_internal {

class ROW_BOUND
{
public:
    explicit ROW_BOUND(EVALUATION* evaluation)
        : m_evaluation(*evaluation), m_asked(0), m_last_row{}, m_last_capacitor{}
    {
    }

    // A bound of what the row of M x post-scale adds to the cost; not a number where the candidate
    // must not be passed over. 0 without a table.
    double of(int post_scale, int m)
    {
        return m_evaluation.limits().m_wish.m_table_mode ? least_cost(post_scale, m) : 0.0;
    }

    // Takes note of a candidate that is passed over, after a bound of it was asked for.
    void pass_over(int post_scale, int m, int n)
    {
        if (m_group.m_has_rows) {
            m_last_row = {post_scale, m, n};
            m_last_capacitor = m_group.m_has_capacitors ? m_last_row : m_last_capacitor;
        }
    }

    // Gives the rows of those passed over.
    void catch_up()
    {
        if (m_last_row.m_post_scale != 0) {
            give_rows();
        }
    }

private:
    struct GROUP
    {
        int m_effective_m = -1;
        double m_least_cost = 0.0;
        bool m_has_rows = false;
        bool m_has_capacitors = false;
    };

    struct SETTING
    {
        int m_post_scale;  // 0: none
        int m_m;
        int m_n;
    };

    double least_cost(int post_scale, int m);
    GROUP read_group(int effective_m) const;
    void give_rows();

    static constexpr int FEW = 64;  // candidates that are not worth a look at whole groups

    EVALUATION& m_evaluation;
    int m_asked;
    GROUP m_group;
    SETTING m_last_row;
    SETTING m_last_capacitor;  // with a row that has one; comes before the other, or is it
};

}  // namespace pll_internal
