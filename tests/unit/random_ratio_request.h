// Requests and limits in small boxes for the tests of the search: exact, nearly exact and missed
// ones, with all that error sums are made of.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include <memory>
#include <random>

class RANDOM_RATIOS
{
public:
    explicit RANDOM_RATIOS(unsigned seed) : m_numbers(seed) {}

    // 1 to `largest`.
    int number(int largest) { return 1 + int(m_numbers() % unsigned(largest)); }
    bool chance(int percent) { return number(100) <= percent; }

    std::unique_ptr<PLL> pll(const PLL_PROP& request, int m_max, int n_max)
    {
        auto pll = std::make_unique<PLL>(request.m_taps_count, PLL_MAX_TAPS);
        pll->m_m.m_max_count = m_max;
        pll->m_n.m_max_count = n_max;
        pll->m_n.m_min_count = chance(20) ? number(3) : 1;
        pll->m_max_vco_post_scale = number(2);
        for (int post_scale = 1; post_scale <= PLL_VCO_POST_SCALE_MAX; ++post_scale) {
            const int shortest = chance(10) ? number(3) - 2 : 400 + number(1500);
            pll->m_vco_min_period[post_scale] = shortest;
            pll->m_vco_max_period[post_scale] = shortest + (chance(20) ? 0 : number(2500));
            pll->m_kvco[post_scale] *= chance(30) ? number(100) * 0.1 : 1.0;
        }
        pll->m_pfd_min_period = number(3000);
        pll->m_pfd_max_period = chance(20) ? pll->m_pfd_min_period : 100000;
        const int largest_count = chance(50) ? 512 : number(12);
        for (PLL_OUTPUT_TAP& tap : pll->m_taps) {
            tap.m_max_count = chance(20) ? number(6) - 1 : largest_count;
        }
        return pll;
    }

    PLL_PROP request()
    {
        PLL_PROP request(number(5) - 1);
        const int largest = chance(50) ? 40 : 6;
        request.m_fin_period = 300 + number(12000);
        request.m_fin2_period = chance(15) ? 300 + number(12000) : 0;
        request.m_bandwidth_type = chance(50) ? 3 : 4;
        request.m_bandwidth = 1e5 * number(20);
        for (int i = 0; i < request.m_taps_count; ++i) {
            request.m_taps[i].m_mult = number(largest);
            request.m_taps[i].m_div = number(largest);
            if (chance(30)) {  // about a thousandth beside it
                request.m_taps[i].m_mult *= 1000 + number(2);
                request.m_taps[i].m_div *= 1000;
            }
            request.m_taps[i].m_phase = chance(30) ? number(90) - 45 : 0;
            request.m_taps[i].m_duty = chance(30) ? number(99) : 50;
        }
        if (chance(15)) {
            request.m_vco_mult = number(20);
            request.m_vco_div = number(10);
        }
        if (chance(15) && request.m_taps_count > 0) {
            request.m_feedback_tap = number(request.m_taps_count) - 1;
        }
        return request;
    }

private:
    std::mt19937 m_numbers;
};
