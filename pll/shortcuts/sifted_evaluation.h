// The evaluation of candidates, spared the settings whose evaluation would surely change nothing.
#pragma once

#include "search/evaluation.h"
#include "search/result.h"
#include "shortcuts/candidate_sieve.h"
#include "shortcuts/kept_cascades.h"
#include "shortcuts/row_bound.h"

namespace pll_internal {

class SIFTED_EVALUATION
{
public:
    SIFTED_EVALUATION(EVALUATION* evaluation, KEPT_CASCADES* cascades)
        : m_evaluation(*evaluation),
          m_cascades(*cascades),
          m_rows(evaluation),
          m_sieve(evaluation->pll(), evaluation->request(), evaluation->limits())
    {
    }

    // Whether offering the setting, if met, would surely change nothing. With a trace every
    // candidate changes it.
    bool is_idle(int post_scale, int m, int n) const
    {
        return !m_evaluation.is_traced() &&
               (m_cascades.is_short(m, n) ||
                m_sieve.retains(post_scale, m, n, m_evaluation.cut_off(), m_evaluation.result()));
    }

    // Offers a legal setting only when its error sum is 0.
    void evaluate_if_met(int post_scale, int m, int n);

private:
    EVALUATION& m_evaluation;
    KEPT_CASCADES& m_cascades;
    ROW_BOUND m_rows;
    CANDIDATE_SIEVE m_sieve;
};

}  // namespace pll_internal
