// Spares candidates that cannot win the work of becoming one.
//
// An inexact candidate wins only with an error sum below the best one so far (which is 0 once an
// exact one is known) and leaves nothing behind when it does not. Its sum grows from output to
// output, never shrinks, so it may be given up as soon as it has reached the best.
#pragma once

#include "pll.h"
#include "pll_prop.h"
#include "pll_ratio_error.h"

class REJECTION
{
public:
    REJECTION(const PLL& pll, const PLL_PROP& request);

    // Whether (m, n) is inexact with an error sum that is not below `best_error`. False may also
    // mean that this cannot be told without assigning the counters.
    bool rejects(int m, int n, double best_error) const;

private:
    void add_impossible_counter_error(int index, int count, CANDIDATE_SCORE* score) const;

    const PLL& m_pll;
    const PLL_PROP& m_request;
    bool m_can_tell;
};
