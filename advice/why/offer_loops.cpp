// Wishes about the loop: the nearest bandwidth and spread that are met, or none of them.
#include "advice/numbers/text.h"
#include "advice/why/offers_found.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace advice {

namespace {

constexpr double HZ_PER_KHZ = 1e3;
constexpr int DECIMALS = 3;
constexpr int PERCENT = 100;
constexpr double DROPPED = 1.0;

// Steps away from a value, as parts of it: the first that is met is the nearest offer.
constexpr std::array<int, 14> STEPS_PERMILLE = {50,  100, 150, 200, 300,  400,  500,
                                                600, 700, 800, 900, 1500, 3000, 9000};
constexpr int PERMILLE = 1000;

std::string write_khz(const RATIONAL& hertz)
{
    return write_number(hertz.to_double() / HZ_PER_KHZ, DECIMALS) + " kHz";
}

// A bandwidth of three digits, as an engineer writes it.
RATIONAL round_to_kilohertz(const RATIONAL& hertz)
{
    const RATIONAL kilo(1000);
    const RATIONAL rounded = (hertz / kilo).rounded() * kilo;
    return rounded.is_positive() ? rounded : hertz;
}

void offer_custom_bandwidth(OFFERS_FOUND* found)
{
    const RATIONAL asked = found->get_request().m_bandwidth;
    for (const int sign : {-1, 1}) {
        for (const int step : STEPS_PERMILLE) {
            const RATIONAL factor(PERMILLE + sign * step, PERMILLE);
            if (!factor.is_positive()) {
                break;
            }
            REQUEST request = found->get_request();
            request.m_bandwidth = round_to_kilohertz(asked * factor);
            const double change =
                (request.m_bandwidth / asked - RATIONAL(1)).magnitude().to_double();
            const std::string text = "a bandwidth of " + write_khz(request.m_bandwidth) +
                                     " in the place of " + write_khz(asked);
            if (found->add(std::move(request), text, change)) {
                break;
            }
        }
    }
}

void offer_bandwidth(OFFERS_FOUND* found)
{
    const BANDWIDTH_KIND asked = found->get_request().m_bandwidth_kind;
    if (asked == BANDWIDTH_KIND::AUTO) {
        return;
    }
    if (asked == BANDWIDTH_KIND::CUSTOM) {
        offer_custom_bandwidth(found);
    }
    REQUEST request = found->get_request();
    request.m_bandwidth_kind = BANDWIDTH_KIND::AUTO;
    found->add(std::move(request), "without a wish for the bandwidth", DROPPED);
}

// In hundredths of a percent: from what was asked for down, then up.
void offer_spread(OFFERS_FOUND* found)
{
    constexpr int UNITS = 10000;  // of a hundredth of a percent in one
    constexpr int MOST = 60;      // 0.6 %, the library's largest
    const REQUEST& asked = found->get_request();
    if (asked.m_spread.is_zero()) {
        return;
    }
    const double units = asked.m_spread.to_double() * UNITS;
    const auto try_units = [&](int value) {
        REQUEST request = asked;
        request.m_spread = RATIONAL(value, UNITS);
        const RATIONAL percent(PERCENT);
        const std::string text =
            "a spread of " + write_number((request.m_spread * percent).to_double(), DECIMALS) +
            " % in the place of " + write_number((asked.m_spread * percent).to_double(), DECIMALS) +
            " %";
        return found->add(std::move(request), text, std::fabs(value / units - 1.0));
    };
    for (int value = std::min(static_cast<int>(std::ceil(units)) - 1, MOST); value >= 1; --value) {
        if (try_units(value)) {
            break;
        }
    }
    for (int value = static_cast<int>(std::floor(units)) + 1; value <= MOST; ++value) {
        if (try_units(value)) {
            break;
        }
    }
    REQUEST without = asked;
    without.m_spread = RATIONAL();
    without.m_spread_rate.reset();
    found->add(std::move(without), "without spread", DROPPED);
}

}  // namespace

void offer_loops(OFFERS_FOUND* found)
{
    offer_bandwidth(found);
    offer_spread(found);
    const REQUEST& asked = found->get_request();
    if (asked.m_input2) {
        REQUEST request = asked;
        request.m_input2.reset();
        found->add(std::move(request), "without the second input", DROPPED);
    }
    if (asked.m_vco_ratio) {
        REQUEST request = asked;
        request.m_vco_ratio.reset();
        found->add(std::move(request), "without a wish for the VCO ratio", DROPPED);
    }
    if (asked.m_feedback != NO_OUTPUT) {
        REQUEST request = asked;
        request.m_feedback = NO_OUTPUT;
        found->add(std::move(request), "with counter M as the feedback", DROPPED);
    }
}

}  // namespace advice
