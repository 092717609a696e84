#include "shortcuts/sifted_evaluation.h"

namespace pll_internal {

void SIFTED_EVALUATION::evaluate_if_met(int post_scale, int m, int n)
{
    const auto look = m_evaluation.is_traced()
                          ? CANDIDATE_SIEVE::LOOK::UNSURE
                          : m_sieve.look_at(post_scale, m, n, m_evaluation.cut_off(), &m_rows,
                                            &m_evaluation.result());
    if (look == CANDIDATE_SIEVE::LOOK::TOLD) {
        m_rows.pass_over(post_scale, m, n);
    }
    if (look != CANDIDATE_SIEVE::LOOK::UNSURE) {
        return;
    }
    m_rows.catch_up();
    const SEARCH_POINT point = m_evaluation.point(post_scale, m, n);
    if (m_evaluation.evaluate_if_met(point)) {
        m_sieve.note_told(point, m_evaluation.candidate());
    }
}

}  // namespace pll_internal
