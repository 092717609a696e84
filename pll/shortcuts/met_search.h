// The exact candidates of a search, all of them and in its order: post-scale, M, N, ascending.
#pragma once

#include "search/region.h"
#include "shortcuts/met_ratios.h"
#include "shortcuts/sifted_evaluation.h"

#include <cstdint>

namespace pll_internal {

class MET_SEARCH
{
public:
    MET_SEARCH(EVALUATION* evaluation, KEPT_CASCADES* cascades)
        : m_evaluation(*evaluation), m_sifted(evaluation, cascades), m_gathered(0)
    {
    }

    // To be called for each post-scale, in their order.
    void search(int post_scale, const REGION& region);

private:
    static constexpr int CAPACITY = 1024;

    struct WORK
    {
        const REGION& m_region;
        const MET_RATIOS& m_ratios;
        int m_post_scale;
        std::int64_t m_first_n;  // that can meet all outputs
    };

    void search_block(const WORK& work, M_RANGE block);
    void visit_rows(const WORK& work, M_RANGE block);
    bool gather(const WORK& work, M_RANGE block);
    bool add_column(M_RANGE column, std::int64_t n);
    void visit_gathered(const WORK& work);
    void visit_row(const WORK& work, std::int64_t m);
    void visit(const WORK& work, std::int64_t m, std::int64_t n);

    const EVALUATION& m_evaluation;
    SIFTED_EVALUATION m_sifted;
    int m_gathered;
    std::uint64_t m_fractions[CAPACITY];  // M in the upper half, N in the lower
};

}  // namespace pll_internal
