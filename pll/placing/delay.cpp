// Delay chains.
//
// Every chain (N, M, one per output) delays by 0 to MAX_DELAY_CHAIN_VALUE ps. A chain on N delays
// all outputs, a chain on M in the feedback path advances them, so a common part of the requested
// delays moves there and the outputs keep the rest:  requested = N - M + output.
#include "pll.h"
#include "pll_prop.h"

#include "loop/taps.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <algorithm>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll";
// Beyond any delay that a chain could make, so that the first output replaces them.
constexpr int BELOW_ALL_DELAYS = -9999;
constexpr int ABOVE_ALL_DELAYS = 9999;

struct DELAY_RANGE
{
    int m_min = ABOVE_ALL_DELAYS;
    int m_max = BELOW_ALL_DELAYS;
};

DELAY_RANGE requested_range(const PLL_PROP& request)
{
    DELAY_RANGE range;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        range.m_min = std::min(range.m_min, request.m_taps[i].m_delay);
        range.m_max = std::max(range.m_max, request.m_taps[i].m_delay);
    }
    return range;
}

bool fits_a_chain(int delay)
{
    return 0 <= delay && delay <= MAX_DELAY_CHAIN_VALUE;
}

// M delays the feedback. With an output in the feedback its own chain does: it gets what it asks
// for as an output, and M only what is below 0.
void set_feedback_delay(const PLL_PROP& request, int shift, PLL* pll)
{
    if (pll->m_feedback_tap < 0) {
        pll->m_m.m_delay = shift;
        return;
    }
    check(pll->m_feedback_tap <= pll->m_user_taps_count,
          "this->m_feedback_tap <= this->m_user_taps_count", SOURCE);
    const int delay = request.m_taps[nearest_index(pll->m_feedback_tap, PLL_MAX_TAPS)].m_delay;
    if (delay < 0) {
        pll->m_m.m_delay = wrap_sub(0, delay);
    }
}

void check_loop_delays(const PLL& pll)
{
    check(fits_a_chain(pll.m_m.m_delay),
          "0 <= this->m_m.m_delay && this->m_m.m_delay <= MAX_DELAY_CHAIN_VALUE", SOURCE);
    check(fits_a_chain(pll.m_n.m_delay),
          "0 <= this->m_n.m_delay && this->m_n.m_delay <= MAX_DELAY_CHAIN_VALUE", SOURCE);
}

// Returns whether every output got what it asked for.
bool set_output_delays(const PLL_PROP& request, int base, PLL* pll)
{
    bool fits = true;
    for (int i = 0; i < clamp_taps(request.m_taps_count); ++i) {
        int delay = wrap_sub(request.m_taps[i].m_delay, base);
        check(0 <= delay, "0 <= this->m_taps[i].m_delay", SOURCE);
        if (delay > MAX_DELAY_CHAIN_VALUE) {
            delay = MAX_DELAY_CHAIN_VALUE;
            fits = false;
        }
        pll->m_taps[i].m_delay = delay;
    }
    return fits;
}

}  // namespace

bool PLL::synthesize_delay_chains(const PLL_PROP& request)
{
    const HOST_STATE state;
    if (request.m_taps_count <= 0) {
        return true;
    }
    const DELAY_RANGE range = requested_range(request);
    if (wrap_sub(range.m_max, range.m_min) > MAX_DELAY_CHAIN_VALUE) {
        m_error = PLL_DELAY_RANGE_TOO_WIDE;
        return false;
    }
    // What all outputs have in common goes to N, so that the rest of each fits into its own chain.
    // It is as much as leaves the largest rest within one chain.
    const int max_delay = std::min(range.m_max, MAX_DELAY_CHAIN_VALUE);
    const int excess = wrap_sub(range.m_max, max_delay);
    const int common =
        std::max({range.m_min, -MAX_DELAY_CHAIN_VALUE, wrap_sub(max_delay, MAX_DELAY_CHAIN_VALUE)});
    const int shift = common < 0 ? wrap_sub(0, common) : 0;
    if (common < 0) {
        m_n.m_delay = 0;
    } else {
        // A device that is set anew while it runs keeps the chains of its outputs for that, so N
        // takes only what they cannot.
        m_n.m_delay = request.m_use_reconfig ? excess : common;
    }
    set_feedback_delay(request, shift, this);
    m_n.m_delay = std::min(m_n.m_delay, MAX_DELAY_CHAIN_VALUE);
    check_loop_delays(*this);
    if (!set_output_delays(request, wrap_sub(m_n.m_delay, shift), this)) {
        m_error = PLL_DELAY_RANGE_TOO_WIDE;
        return false;
    }
    return true;
}
