// A host: from 25 MHz, a clock of 125 MHz and one of 25 MHz that is a quarter period late.
#include "pll.h"
#include "pll_prop.h"

#include <cstdio>

int main()
{
    PLL_PROP request(2);
    request.m_fin_period = 40000;  // ps
    request.m_taps[0].m_mult = 5;
    request.m_taps[1].m_phase = 90.0;

    PLL pll(2, PLL_MAX_TAPS);
    if (!pll.synthesize(request)) {
        std::puts(PLL::get_error_string(pll.m_error));
        return 1;
    }
    PLL_PROP result(2);
    result.m_fin_period = request.m_fin_period;
    result.set_properties_from_internals(pll);
    std::printf("N %d, M %d, VCO period %g ps\n", pll.get_n(), pll.get_m(), pll.get_vco_period());
    for (const PLL_USER_TAP& clock : {result.m_taps[0], result.m_taps[1]}) {
        std::printf("fin x %d / %d at %g degrees\n", clock.m_mult, clock.m_div, clock.m_phase);
    }
    return result.m_taps[1].m_phase == request.m_taps[1].m_phase ? 0 : 1;
}
