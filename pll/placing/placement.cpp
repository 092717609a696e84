#include "placing/placement.h"

#include "loop/taps.h"
#include "platform/host_state.h"

#include <algorithm>
#include <iterator>

using namespace pll_internal;

namespace {

// True for what is not a number, too.
bool may_be_below_zero(double phase)
{
    return !(phase >= 0.0);
}

}  // namespace

namespace pll_internal {

PLACEMENT::PLACEMENT(const PLL& pll, const PLL_PROP& request)
    : m_request(request),
      m_taps(clamp_taps(request.m_taps_count)),
      m_may_be_negative(false),
      m_duties(pll, request)
{
    for (int i = 0; i < m_taps; ++i) {
        const PLL_USER_TAP& wish = request.m_taps[i];
        m_may_be_negative =
            m_may_be_negative ||
            may_be_below_zero(wish.m_has_sclkout_phase ? wish.m_sclkout_phase : wish.m_phase);
    }
}

void PLACEMENT::place(PLL* pll, NEIGHBOURS (&neighbours)[PLL_MAX_TAPS])
{
    PHASE_PLACING phases(m_request, m_may_be_negative, pll);
    for (int i = 0; i < m_taps; ++i) {
        phases.place(i, &neighbours[i]);
        m_duties.place(i, pll, &neighbours[i]);
    }
}

}  // namespace pll_internal

bool PLL::synthesize_best_phase_and_duty_cycle(PLL* pll, const PLL_PROP& request)
{
    const HOST_STATE state;
    if (pll == nullptr) {
        return false;
    }
    NEIGHBOURS neighbours[PLL_MAX_TAPS];
    std::transform(std::begin(pll->m_taps), std::end(pll->m_taps), neighbours, read_neighbours);
    PLACEMENT(*pll, request).place(pll, neighbours);
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        write_neighbours(neighbours[i], &pll->m_taps[i]);
    }
    set_output_counts_from_high_low();
    return true;
}
