// A host outside the tree: asks for two clocks and says whether they are met.
#include "pll.h"
#include "pll_prop.h"

#include <iostream>

int main()
{
    PLL_PROP request(2);
    request.m_fin_period = 37037;  // ps, 27 MHz
    request.m_taps[0].m_mult = 11;
    request.m_taps[0].m_div = 2;
    request.m_taps[1].m_mult = 11;
    request.m_taps[1].m_div = 4;

    PLL pll(2, PLL_MAX_TAPS);
    const bool met = pll.synthesize(request);

    PLL_PROP achieved(2);
    achieved.set_properties_from_internals(pll);
    const bool same = achieved.m_taps[0].m_mult == 11 && achieved.m_taps[0].m_div == 2 &&
                      achieved.m_taps[1].m_mult == 11 && achieved.m_taps[1].m_div == 4;

    std::cout << "27 MHz in, 148.5 MHz and 74.25 MHz out: "
              << (met && same ? "met" : PLL::get_error_string(pll.m_error)) << '\n';
    return met && same ? 0 : 1;
}
