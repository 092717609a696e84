#include "advice/numbers/text.h"
#include "advice/why/change_request.h"
#include "advice/why/offers_found.h"

#include <algorithm>
#include <cmath>

namespace advice {

namespace {

constexpr double FULL_TURN = 360.0;
constexpr double PERCENT = 100.0;
constexpr int PPM = 1000000;
constexpr int DECIMALS = 3;

// The achieved value of a missed wish takes the place of the wish. False when nothing does.
bool take_achieved(const JUDGED_WISH& missed, REQUEST* request)
{
    if (missed.m_output == NO_OUTPUT || !missed.m_achieved.is_exact()) {
        return false;
    }
    const auto index = static_cast<std::size_t>(missed.m_output);
    OUTPUT_WISH& wish = request->m_outputs[index];
    const RATIONAL achieved = missed.m_achieved.m_exact;
    switch (missed.m_kind) {
    case WISH_KIND::FREQUENCY:
        *request = with_frequency(std::move(*request), index, achieved);
        return achieved.is_valid();
    case WISH_KIND::PHASE:
        wish.m_phase = achieved - (achieved / RATIONAL(360)).floor() * RATIONAL(360);
        return true;
    case WISH_KIND::DUTY:
        wish.m_duty = achieved;
        return true;
    case WISH_KIND::EVEN:
        wish.m_even = false;
        return true;
    case WISH_KIND::EVEN_COUNT:
        wish.m_even_count = false;
        return true;
    case WISH_KIND::DELAY:
    case WISH_KIND::BANDWIDTH:
    case WISH_KIND::SPREAD:
    case WISH_KIND::SPREAD_RATE:
    case WISH_KIND::VCO_RATIO:
    case WISH_KIND::KIND_COUNT:
        break;
    }
    return false;
}

double change_of(const JUDGED_WISH& missed)
{
    const double miss = std::fabs(missed.m_miss.m_value);
    switch (missed.m_kind) {
    case WISH_KIND::PHASE:
        return miss / FULL_TURN;
    case WISH_KIND::DUTY:
        return miss / PERCENT;
    case WISH_KIND::FREQUENCY:
    case WISH_KIND::DELAY:
    case WISH_KIND::EVEN:
    case WISH_KIND::EVEN_COUNT:
    case WISH_KIND::BANDWIDTH:
    case WISH_KIND::SPREAD:
    case WISH_KIND::SPREAD_RATE:
    case WISH_KIND::VCO_RATIO:
    case WISH_KIND::KIND_COUNT:
        break;
    }
    return miss;
}

std::string name_wish(const REQUEST& request, const JUDGED_WISH& wish)
{
    return std::string(name_of(wish.m_kind)) + " of " +
           name_of_output(request, static_cast<std::size_t>(wish.m_output));
}

// A tolerance that just takes the miss of a frequency in, in whole ppm.
void offer_tolerance(const JUDGED_WISH& missed, OFFERS_FOUND* found)
{
    const auto index = static_cast<std::size_t>(missed.m_output);
    const RATIONAL ppm = (missed.m_miss.m_exact.magnitude() * RATIONAL(PPM)).ceil();
    REQUEST request = found->get_request();
    if (!ppm.is_valid() || max_frequency_tolerance() < ppm / RATIONAL(PPM)) {
        return;
    }
    request.m_outputs[index].m_tolerances.m_frequency = ppm / RATIONAL(PPM);
    found->add(std::move(request),
               "a tolerance of " + ppm.to_fraction() + " ppm for " +
                   name_of_output(found->get_request(), index),
               change_of(missed));
}

// The phases that a counter step makes on both sides of the one asked for.
void offer_phases(const JUDGED_WISH& missed, OFFERS_FOUND* found)
{
    const auto index = static_cast<std::size_t>(missed.m_output);
    const RATIONAL asked = missed.m_asked.m_exact;
    const RATIONAL step = missed.m_step.m_exact;
    const RATIONAL achieved = missed.m_achieved.m_exact;
    if (!step.is_positive() || !achieved.is_valid()) {
        return;
    }
    const RATIONAL below = achieved + ((asked - achieved) / step).floor() * step;
    for (const RATIONAL& phase : {below, below + step}) {
        REQUEST request = found->get_request();
        request.m_outputs[index].m_phase = phase;
        const double change = (phase - asked).magnitude().to_double();
        found->add(std::move(request),
                   name_of_output(found->get_request(), index) + " at " +
                       write_number(phase.to_double(), DECIMALS) + " deg in the place of " +
                       write_number(asked.to_double(), DECIMALS) + " deg",
                   change / FULL_TURN);
    }
}

RATIONAL limit_of(const LIMITS& limits, LIMIT_KIND kind, const RATIONAL& usual)
{
    const LIMIT* const limit = limits.find(kind);
    return limit == nullptr ? usual : limit->m_value.m_exact;
}

// Delays moved into what a chain can do, in its steps.
void offer_delays(OFFERS_FOUND* found)
{
    const REQUEST& asked = found->get_request();
    const LIMITS& limits = found->get_limits();
    const RATIONAL longest = limit_of(limits, LIMIT_KIND::DELAY_MAX, MAX_DELAY_CHAIN_VALUE);
    const RATIONAL step = limit_of(limits, LIMIT_KIND::DELAY_RESOLUTION, RATIONAL(1));
    REQUEST request = asked;
    int least = 0;
    for (const OUTPUT_WISH& wish : asked.m_outputs) {
        least = std::min(least, wish.m_delay);
    }
    std::string text;
    double change = 0.0;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        OUTPUT_WISH& wish = request.m_outputs[i];
        const RATIONAL above_least(WIDE_INT{wish.m_delay} - least);
        const RATIONAL kept = above_least < longest ? above_least : longest;
        const RATIONAL base = (RATIONAL(least) / step).rounded() * step;
        const RATIONAL delay = base + (kept / step).rounded() * step;
        if (!delay.is_integer() || delay == RATIONAL(wish.m_delay)) {
            continue;
        }
        change += (delay - RATIONAL(wish.m_delay)).magnitude().to_double() / MAX_DELAY_CHAIN_VALUE;
        text += (text.empty() ? "" : ", ") + std::string("delay of ") + name_of_output(asked, i) +
                " " + delay.to_fraction() + " ps in the place of " + std::to_string(wish.m_delay) +
                " ps";
        wish.m_delay = static_cast<int>(delay.numerator());
    }
    if (!text.empty()) {
        found->add(std::move(request), text, change);
    }
}

void drop_flag(bool OUTPUT_WISH::*flag, const char* name, OFFERS_FOUND* found)
{
    const REQUEST& asked = found->get_request();
    for (std::size_t i = 0; i < asked.m_outputs.size(); ++i) {
        if (asked.m_outputs[i].*flag) {
            REQUEST request = asked;
            request.m_outputs[i].*flag = false;
            found->add(std::move(request),
                       std::string("without '") + name + "' for " + name_of_output(asked, i), 1.0);
        }
    }
}

}  // namespace

void offer_achieved(OFFERS_FOUND* found)
{
    const VERDICT& verdict = found->get_answer().get_verdict();
    if (!verdict.m_has_setting) {
        return;
    }
    REQUEST request = found->get_request();
    std::string names;
    double change = 0.0;
    int taken = 0;
    for (const JUDGED_WISH& wish : verdict.m_wishes) {
        if (!wish.m_kept && take_achieved(wish, &request)) {
            names += (names.empty() ? "" : ", ") + name_wish(found->get_request(), wish);
            change += change_of(wish);
            ++taken;
        }
    }
    // One wish alone is offered with its value.
    if (taken > 1) {
        found->add(std::move(request), "what the nearest setting achieves: " + names, change);
    }
}

void offer_shapes(OFFERS_FOUND* found)
{
    for (const JUDGED_WISH& wish : found->get_answer().get_verdict().m_wishes) {
        if (wish.m_kept || wish.m_output == NO_OUTPUT) {
            continue;
        }
        if (wish.m_kind == WISH_KIND::FREQUENCY) {
            offer_tolerance(wish, found);
        } else if (wish.m_kind == WISH_KIND::PHASE) {
            offer_phases(wish, found);
        } else if (wish.m_kind == WISH_KIND::DUTY) {
            REQUEST request = found->get_request();
            if (take_achieved(wish, &request)) {
                found->add(std::move(request),
                           name_wish(found->get_request(), wish) + " " +
                               write_number(wish.m_achieved.m_value, DECIMALS) +
                               " % in the place of " +
                               write_number(wish.m_asked.m_value, DECIMALS) + " %",
                           change_of(wish));
            }
        }
    }
    offer_delays(found);
    drop_flag(&OUTPUT_WISH::m_even, "even", found);
    drop_flag(&OUTPUT_WISH::m_even_count, "even-count", found);
    drop_flag(&OUTPUT_WISH::m_pin, "pin", found);
}

}  // namespace advice
