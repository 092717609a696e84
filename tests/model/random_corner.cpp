#include "random_corner.h"

#include <algorithm>
#include <climits>
#include <iterator>

namespace {

constexpr int CUT_OFF_RATIO = 4;

int period_at(const RANDOM_CASE& made, int m, int n)
{
    return static_cast<int>(static_cast<double>(made.m_request.m_fin_period) * n / m);
}

// Limits of a post-scale that leave the VCO of (m, n) and little else, or just miss it.
void limit_vco_to(RANDOM_CASE* made, int post_scale, int period, RANDOM* random)
{
    MODEL_PLL& pll = made->m_pll;
    const int reach = random->chance(50) ? 0 : random->between(0, period / 4 + 1);
    pll.m_vco_min_period[post_scale] = period + random->between(-1, 1);
    pll.m_vco_max_period[post_scale] = pll.m_vco_min_period[post_scale] + reach;
    pll.m_vco_center_period[post_scale] = period + random->between(-reach - 1, reach + 1);
}

// An output of which the setting (m, n) makes a count at, or next to, the end of its counter.
void ask_for_border_count(RANDOM_CASE* made, int tap, int m, int n, RANDOM* random)
{
    MODEL_CLOCK& clock = made->m_request.m_taps[tap];
    const int max_count = made->m_pll.m_taps[tap].m_max_count;
    const int count = random->chance(60) ? random->between(1, 3)
                                         : std::max(1, 2 * max_count + random->between(-1, 1));
    clock.m_mult = m;
    clock.m_div = n * count;
    clock.m_use_even_counter_value = random->chance(50);
    if (random->chance(30)) {  // a thousandth beside it
        const int scale = random->between(999, 1001);
        clock.m_mult = m * scale + (random->chance(50) ? m : -m);
        clock.m_div *= scale;
    }
}

// Post-scales that have nothing to do with each other, each about one setting; the second's M is
// often next to where the first's cuts the search off.
void make_border(RANDOM_CASE* made, RANDOM* random)
{
    MODEL_PLL& pll = made->m_pll;
    MODEL_PROP& request = made->m_request;
    const int first_m = random->between(2, std::max(2, pll.m_m.m_max_count / CUT_OFF_RATIO));
    const int first_n = random->between(1, std::max(1, pll.m_n.m_max_count));
    const int second_m = random->chance(60) ? CUT_OFF_RATIO * first_m + random->between(-2, 2)
                                            : random->between(2, std::max(2, pll.m_m.m_max_count));
    pll.m_m.m_max_count = std::max(pll.m_m.m_max_count, second_m + random->between(-1, 5));
    pll.m_max_vco_post_scale = 2;
    request.m_bandwidth_type = random->chance(70) ? 3 : request.m_bandwidth_type;
    limit_vco_to(made, 1, period_at(*made, first_m, first_n), random);
    const int second_n = random->chance(70) ? first_n : random->between(1, pll.m_n.m_max_count);
    limit_vco_to(made, 2, period_at(*made, std::max(2, second_m), second_n), random);
    if (random->chance(30)) {
        pll.m_pfd_max_period = request.m_fin_period * first_n + random->between(-2, 2);
    }
    for (int i = 0; i < request.m_taps_count; ++i) {
        ask_for_border_count(made, i, first_m, first_n, random);
    }
}

// Two settings whose ratios differ by one or two times what counts as rounding, and wishes that
// both come near, one of them often by just that.
void make_hair(RANDOM_CASE* made, RANDOM* random)
{
    constexpr double ROUNDING_OF_RATIOS = 1e-12;
    MODEL_PLL& pll = made->m_pll;
    MODEL_PROP& request = made->m_request;
    const int n = random->between(707000, 999000);
    const int m = n + (random->chance(50) ? 1 : -1);
    pll.m_n.m_min_count = n;
    pll.m_n.m_max_count = n + 1;
    pll.m_m.m_max_count = std::max(m, n) + random->between(0, 1);
    request.m_fin_period = random->between(1800, 2000);
    request.m_fin2_period = 0;
    request.m_down_spread = 0.0;
    request.m_bandwidth_type = 3;
    pll.m_fin_min_period = 1;
    pll.m_pfd_min_period = 1;
    pll.m_pfd_max_period = INT_MAX - 10000;
    for (int scale = 1; scale <= MODEL_MAX_POST_SCALE; ++scale) {
        pll.m_vco_min_period[scale] = request.m_fin_period - 1;
        pll.m_vco_max_period[scale] = request.m_fin_period;
    }
    const double apart = 1.0 / (static_cast<double>(n) * (n + 1));
    const int parts = random->between(500, 2000);
    const double share = random->chance(70)
                             ? ROUNDING_OF_RATIOS * (0.995 + 0.02 * random->fraction()) / apart
                             : random->fraction();
    const int of_second = std::clamp(static_cast<int>(share * parts), 0, parts);
    const bool turned = random->chance(50);
    request.m_vco_mult = parts * m + (turned ? of_second : parts - of_second);
    request.m_vco_div = parts * n + (turned ? of_second : parts - of_second);
    for (int i = 0; i < request.m_taps_count; ++i) {
        MODEL_CLOCK& clock = request.m_taps[i];
        const bool is_wish = random->chance(30);
        clock.m_mult = is_wish ? request.m_vco_mult : m;
        clock.m_div = is_wish ? request.m_vco_div : n * random->between(1, 3);
        clock.m_phase = random->chance(80) ? random->between(0, 359) : 0;
    }
    if (random->chance(20)) {
        request.m_vco_mult = 0;
    }
}

// Feedback from a counter that no clock of the request uses, whose halves may be anything.
void make_beyond(RANDOM_CASE* made, RANDOM* random)
{
    constexpr int HALVES[] = {0, 0, 0, 1, 1, 2, 3, -1, 1 << 30, INT_MAX, INT_MIN};
    const int last_of_halves = static_cast<int>(std::size(HALVES)) - 1;
    MODEL_PLL& pll = made->m_pll;
    MODEL_PROP& request = made->m_request;
    const int taps = request.m_taps_count;
    pll.m_user_taps_count = random->between(taps, MODEL_MAX_TAPS);
    pll.m_total_taps_count = pll.m_user_taps_count;
    pll.m_max_taps_count = random->between(pll.m_user_taps_count, MODEL_MAX_TAPS);
    if (random->chance(85)) {
        request.m_feedback_tap = random->between(taps, std::max(taps, pll.m_max_taps_count));
    }
    for (MODEL_TAP& tap : pll.m_taps) {
        tap.m_high = HALVES[random->between(0, last_of_halves)];
        tap.m_low = HALVES[random->between(0, last_of_halves)];
        tap.m_bypass = random->chance(20);
        tap.m_initial = random->between(0, 4);
        if (random->chance(10)) {
            tap.m_max_count = random->between(0, 1);
        }
    }
    for (int i = 0; i < taps; ++i) {
        request.m_taps[i].m_phase = random->chance(60) ? random->between(-90, 360) : 0;
    }
}

using SPOIL = void (*)(RANDOM_CASE* made, MODEL_CLOCK* clock, RANDOM* random);

// Each leaves a request to the walk, with nothing else amiss.
constexpr SPOIL SPOILS[] = {
    [](RANDOM_CASE*, MODEL_CLOCK* clock, RANDOM*) { clock->m_sclkout_phase = 2e9; },
    [](RANDOM_CASE*, MODEL_CLOCK* clock, RANDOM* random) {
        clock->m_phase = random->chance(50) ? 2e9 : -2e9;
    },
    [](RANDOM_CASE*, MODEL_CLOCK* clock, RANDOM* random) {
        clock->m_mult = 1;
        clock->m_div = INT_MAX - random->between(0, 1000000);
    },
    [](RANDOM_CASE* made, MODEL_CLOCK*, RANDOM* random) {
        made->m_has_device = true;
        made->m_device.m_spe_ratio_constant_x = random->fraction();
        made->m_pll.m_i = 0.0;
    },
    [](RANDOM_CASE* made, MODEL_CLOCK*, RANDOM* random) {
        made->m_pll.m_n.m_min_count = random->between(-2, 0);
    },
    [](RANDOM_CASE*, MODEL_CLOCK* clock, RANDOM* random) {
        clock->m_mult = random->between(-3, 0);
    },
    [](RANDOM_CASE* made, MODEL_CLOCK*, RANDOM* random) {
        made->m_pll.m_taps[0].m_max_count = random->between(-2, -1);
    },
};

void make_walked(RANDOM_CASE* made, RANDOM* random)
{
    if (random->chance(60)) {
        make_border(made, random);
    }
    const int last_clock = std::max(0, made->m_request.m_taps_count - 1);
    const int last_spoil = static_cast<int>(std::size(SPOILS)) - 1;
    SPOILS[random->between(0, last_spoil)](
        made, &made->m_request.m_taps[random->between(0, last_clock)], random);
}

}  // namespace

void make_corner(RANDOM_CASE* random_case, RANDOM* random)
{
    const CASE_KIND kind = random_case->m_kind;
    if (kind == CASE_KIND::BORDER) {
        make_border(random_case, random);
    } else if (kind == CASE_KIND::HAIR) {
        make_hair(random_case, random);
    } else if (kind == CASE_KIND::BEYOND) {
        make_beyond(random_case, random);
    } else if (kind == CASE_KIND::WALKED) {
        make_walked(random_case, random);
    }
}
