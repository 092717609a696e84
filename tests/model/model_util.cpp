#include "model_util.h"

#include <climits>
#include <cmath>
#include <cstdint>

namespace {

int cut(std::int64_t value)
{
    return static_cast<int>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(value)));
}

void check_vco_tap(int vco_tap, MODEL_REPORTS& reports)
{
    if (vco_tap < 0 || vco_tap > 7) {
        reports.push_back("0 <= vco_tap && vco_tap <= PLL_VCO_TAPS_NUMBER - 1");
    }
}

}  // namespace

int model_truncate(double value)
{
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= 2147483647.0) {
        return INT_MAX;
    }
    if (value <= -2147483648.0) {
        return INT_MIN;
    }
    return static_cast<int>(value);
}

int model_add(int a, int b)
{
    return cut(std::int64_t{a} + b);
}

int model_subtract(int a, int b)
{
    return cut(std::int64_t{a} - b);
}

int model_multiply(int a, int b)
{
    return cut(std::int64_t{a} * b);
}

int model_divide(int a, int b)
{
    return b == 0 ? 0 : cut(std::int64_t{a} / b);
}

int model_remainder(int a, int b)
{
    return b == 0 ? 0 : cut(std::int64_t{a} % b);
}

double model_min(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) {
        return std::nan("");
    }
    return b < a ? b : a;
}

double model_max(double a, double b)
{
    if (std::isnan(a) || std::isnan(b)) {
        return std::nan("");
    }
    return b > a ? b : a;
}

int model_nearest_index(int index, int size)
{
    if (index < 0) {
        return 0;
    }
    return index < size ? index : size - 1;
}

int model_taps_to_walk(int taps_count)
{
    return taps_count < MODEL_MAX_TAPS ? taps_count : MODEL_MAX_TAPS;
}

int model_gcd(int x, int y, MODEL_REPORTS& reports)
{
    if (!(x > 0 && y > 0)) {
        reports.push_back("x > 0 && y > 0");
    }
    if (x > y) {
        return model_gcd(y, x, reports);
    }
    int a = x;
    int b = y;
    while (a > 1) {
        const int rest = b % a;
        b = a;
        a = rest;
    }
    return a == 1 ? a : b;
}

void model_normalize(int* numerator_out, int* denominator_out, int numerator, int denominator,
                     MODEL_REPORTS& reports)
{
    const int divisor = model_gcd(numerator, denominator, reports);
    *numerator_out = model_divide(numerator, divisor);
    *denominator_out = model_divide(denominator, divisor);
}

int model_phase_of(int vco_tap, int start)
{
    return cut(std::int64_t{360} * start + std::int64_t{45} * vco_tap - 360);
}

MODEL_PLACE model_place_phase(double phase, int max_start, MODEL_REPORTS& reports)
{
    MODEL_PLACE place;
    const double p = model_min(phase, 2147483647.0);
    const int wanted = model_truncate(p + 0.5) / 360 + 1;
    place.m_start = wanted < max_start ? wanted : max_start;
    const int before = model_subtract(model_multiply(360, place.m_start), 360);
    const int rest = model_truncate(p - before) % 360;
    place.m_vco_tap = model_truncate((rest + 22.5) / 45.0);
    if (place.m_vco_tap > 7) {
        if (place.m_start < max_start) {
            place.m_vco_tap -= 8;
            place.m_start += 1;
        } else {
            place.m_vco_tap = 7;
        }
    }
    check_vco_tap(place.m_vco_tap, reports);
    place.m_phase = model_phase_of(place.m_vco_tap, place.m_start);
    return place;
}

MODEL_PLACE model_place_start(double phase, int vco_tap, int max_start, MODEL_REPORTS& reports)
{
    check_vco_tap(vco_tap, reports);
    MODEL_PLACE place;
    place.m_vco_tap = vco_tap;
    const double p = model_min(phase, 2147483647.0);
    const int tap_phase = model_multiply(45, vco_tap);
    if (p - tap_phase < 0) {
        place.m_start = 1;
    } else {
        const int rounded = model_add(model_truncate(p - tap_phase + 0.5), 180);
        const int wanted = model_add(rounded / 360, 1);
        place.m_start = wanted < max_start ? wanted : max_start;
    }
    place.m_phase = model_phase_of(vco_tap, place.m_start);
    return place;
}

double model_user_phase(int numerator, int denominator, const MODEL_PLL& pll, int vco_tap,
                        int start)
{
    int reference_tap = pll.m_m.m_vco_tap;
    int reference_start = pll.m_m.m_initial;
    if (pll.m_feedback_tap >= 0) {
        const MODEL_TAP& feedback =
            pll.m_taps[model_nearest_index(pll.m_feedback_tap, MODEL_MAX_TAPS)];
        reference_start = model_subtract(model_add(feedback.m_initial, pll.m_m.m_initial), 1);
        reference_tap = feedback.m_vco_tap;
    }
    const int reference = model_phase_of(reference_tap, reference_start);
    const int difference = model_subtract(model_phase_of(vco_tap, start), reference);
    return static_cast<double>(numerator) * difference / static_cast<double>(denominator);
}

int model_cascade_factor(int count, int max_count, MODEL_REPORTS& reports)
{
    if (count <= max_count) {
        reports.push_back("count > max_count");
    }
    if (max_count < 2) {
        return 0;
    }
    for (std::int64_t factor = 2; factor <= max_count; ++factor) {
        if (count % factor == 0 && count / factor <= max_count) {
            return static_cast<int>(factor);
        }
    }
    return 0;
}

int model_output_count(const MODEL_TAP& tap)
{
    return tap.m_bypass ? 1 : model_add(tap.m_high, tap.m_low);
}

int model_tap_count(const MODEL_PLL& pll, int tap, MODEL_REPORTS& reports)
{
    if (tap < 0) {
        reports.push_back("tap >= 0");
    }
    if (tap >= pll.m_user_taps_count) {
        reports.push_back("tap < pll->m_user_taps_count");
    }
    return model_output_count(pll.m_taps[model_nearest_index(tap, MODEL_MAX_TAPS)]);
}

int model_current_post_scale(const MODEL_PLL& pll, MODEL_REPORTS& reports)
{
    const int scale = pll.m_vco_post_scale;
    if (scale < 0 || scale > MODEL_MAX_POST_SCALE) {
        reports.push_back("vco_post_scale >= 0 && vco_post_scale <= PLL_VCO_POST_SCALE_MAX");
    }
    return model_nearest_index(scale, MODEL_MAX_POST_SCALE + 1);
}

double model_m_over_n(const MODEL_PLL& pll)
{
    return static_cast<double>(pll.m_m.m_count) / static_cast<double>(pll.m_n.m_count);
}
