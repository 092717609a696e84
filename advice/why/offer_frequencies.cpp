// The frequencies nearest to one that cannot be had. VCO ratios that keep all other outputs are
// listed with a wide tolerance for this one; each count of it then makes a frequency. Where nothing
// is within that tolerance, the search starts again from the end of what counters and VCO reach.
//
// For the input, the VCO must be a common multiple of the outputs, and the input is VCO x N / M.
#include "advice/answer/further_search.h"
#include "advice/numbers/text.h"
#include "advice/why/change_request.h"
#include "advice/why/needs.h"
#include "advice/why/offers_found.h"

#include "pll.h"

#include <algorithm>
#include <numeric>

namespace advice {

namespace {

constexpr std::size_t MOST_CANDIDATES = 4096;
constexpr int TRIES_EACH_SIDE = 4;

std::string write_change(const RATIONAL& asked, const RATIONAL& offered)
{
    return " (" + write_part((offered / asked - RATIONAL(1)).to_double()) + ")";
}

// Frequencies that were found, nearest first on each side of the one asked for.
struct SIDES
{
    std::vector<RATIONAL> m_below;
    std::vector<RATIONAL> m_above;

    void add(const RATIONAL& asked, const RATIONAL& value)
    {
        if (value < asked) {
            m_below.push_back(value);
        } else if (value > asked) {
            m_above.push_back(value);
        }
    }

    void sort()
    {
        const auto sort_one = [](std::vector<RATIONAL>* values) {
            std::sort(values->begin(), values->end(),
                      [](const RATIONAL& a, const RATIONAL& b) { return a < b; });
            values->erase(std::unique(values->begin(), values->end()), values->end());
        };
        sort_one(&m_below);
        sort_one(&m_above);
        std::reverse(m_below.begin(), m_below.end());
    }
};

template <class OFFER_ONE>
void offer_nearest(const SIDES& sides, OFFER_ONE offer_one)
{
    for (const std::vector<RATIONAL>* const side : {&sides.m_below, &sides.m_above}) {
        int tries = 0;
        for (const RATIONAL& value : *side) {
            if (++tries > TRIES_EACH_SIDE || offer_one(value)) {
                break;
            }
        }
    }
}

RATIONAL largest_division(const PLL& pll, std::size_t output)
{
    const RATIONAL single(WIDE_INT{2} * pll.m_taps[output].m_max_count);
    return pll.m_output_counter_cascade ? single * single : single;
}

class NEAREST_OUTPUT
{
public:
    NEAREST_OUTPUT(OFFERS_FOUND* found, std::size_t output)
        : m_found(*found),
          m_request(found->get_request()),
          m_output(output),
          m_pll(static_cast<int>(m_request.m_outputs.size()), PLL_MAX_TAPS)
    {
        found->get_limits().give_to(&m_pll, m_request);
    }

    void offer()
    {
        const RATIONAL asked = m_request.m_outputs[m_output].m_frequency;
        list_around(asked);
        if (m_sides.m_below.empty() && m_sides.m_above.empty()) {
            list_around(nearest_reachable(asked));
        }
        m_sides.sort();
        offer_nearest(m_sides, [&](const RATIONAL& hertz) { return offer_one(asked, hertz); });
    }

private:
    // Within a twentieth of the end that is nearer.
    RATIONAL nearest_reachable(const RATIONAL& asked) const
    {
        const RATIONAL inside(21, 20);
        const LIMITS& limits = m_found.get_limits();
        const RATIONAL least =
            outermost(limits, LIMIT_KIND::VCO_MIN) / largest_division(m_pll, m_output) * inside;
        RATIONAL most = outermost(limits, LIMIT_KIND::VCO_MAX) / inside;
        const RATIONAL output_max = outermost(limits, LIMIT_KIND::OUTPUT_MAX) / inside;
        most = output_max.is_valid() && output_max < most ? output_max : most;
        return asked < least ? least : most < asked ? most : RATIONAL::invalid();
    }

    // Kept by the limits of output clocks, which the list does not know.
    bool is_legal(const RATIONAL& hertz) const
    {
        const bool is_pin = m_request.m_outputs[m_output].m_pin;
        for (const LIMIT& limit : m_found.get_limits().get_list()) {
            const bool is_least = limit.m_kind == LIMIT_KIND::OUTPUT_MIN ||
                                  (is_pin && limit.m_kind == LIMIT_KIND::PIN_MIN);
            const bool is_most = limit.m_kind == LIMIT_KIND::OUTPUT_MAX ||
                                 (is_pin && limit.m_kind == LIMIT_KIND::PIN_MAX);
            if ((is_least && hertz < limit.m_value.m_exact) ||
                (is_most && limit.m_value.m_exact < hertz)) {
                return false;
            }
        }
        return true;
    }

    void list_around(const RATIONAL& hertz)
    {
        if (!hertz.is_valid() || !hertz.is_positive()) {
            return;
        }
        const RATIONAL asked = m_request.m_outputs[m_output].m_frequency;
        REQUEST wide = with_frequency(m_request, m_output, hertz);
        wide.m_outputs[m_output].m_tolerances.m_frequency = max_frequency_tolerance();
        if (!wide.m_outputs[m_output].m_ratio.is_valid()) {
            return;
        }
        for (const VCO_CANDIDATE& candidate :
             list_candidates(wide, m_found.get_limits(), m_pll, MOST_CANDIDATES)) {
            const RATIONAL ratio(candidate.m_mult,
                                 WIDE_INT{candidate.m_div} * candidate.m_counts[m_output]);
            const RATIONAL offered = m_request.m_input.m_frequency * ratio;
            if (is_legal(offered)) {
                m_sides.add(asked, offered);
            }
        }
    }

    bool offer_one(const RATIONAL& asked, const RATIONAL& hertz)
    {
        const FREQUENCY_UNIT unit = m_request.m_outputs[m_output].m_unit;
        return m_found.add(with_frequency(m_request, m_output, hertz),
                           name_of_output(m_request, m_output) + " at " +
                               write_frequency(hertz, unit) + " in the place of " +
                               write_frequency(asked, unit) + write_change(asked, hertz),
                           (hertz / asked - RATIONAL(1)).magnitude().to_double());
    }

    OFFERS_FOUND& m_found;
    const REQUEST& m_request;
    std::size_t m_output;
    PLL m_pll;
    SIDES m_sides;
};

// Whether the frequency of an output is missed, or nothing at all was found.
bool is_frequency_missed(const ANSWER& answer, std::size_t output)
{
    const std::vector<JUDGED_WISH>& wishes = answer.get_verdict().m_wishes;
    return !answer.is_met_by_library() ||
           std::any_of(wishes.begin(), wishes.end(),
                       [=](const JUDGED_WISH& wish) {
                           return wish.m_kind == WISH_KIND::FREQUENCY && !wish.m_kept &&
                                  wish.m_output == static_cast<int>(output);
                       }) ||
           std::any_of(answer.get_verdict().m_limits.begin(), answer.get_verdict().m_limits.end(),
                       [=](const JUDGED_LIMIT& limit) {
                           return !limit.m_kept && !limit.m_is_note &&
                                  limit.m_output == static_cast<int>(output);
                       });
}

RATIONAL least_common_multiple(const RATIONAL& a, const RATIONAL& b)
{
    if (!a.is_valid() || !b.is_valid()) {
        return RATIONAL::invalid();
    }
    const WIDE_INT divisor = std::gcd(a.numerator(), b.numerator());
    return {WIDE_INT{a.numerator()} / divisor * b.numerator(),
            std::gcd(a.denominator(), b.denominator())};
}

RATIONAL common_multiple(const REQUEST& request)
{
    RATIONAL multiple = request.m_outputs[0].m_frequency;
    for (const OUTPUT_WISH& wish : request.m_outputs) {
        multiple = least_common_multiple(multiple, wish.m_frequency);
    }
    return multiple;
}

void add_inputs_of(const RATIONAL& vco, const PLL& pll, const RATIONAL& asked, SIDES* sides)
{
    constexpr int MOST_N = 64;
    for (int n = 1; n <= std::min(MOST_N, pll.m_n.m_max_count); ++n) {
        const RATIONAL m = (vco * RATIONAL(n) / asked).rounded();
        if (m > RATIONAL(1) && m <= RATIONAL(pll.m_m.m_max_count)) {
            sides->add(asked, vco * RATIONAL(n) / m);
        }
    }
}

}  // namespace

void offer_frequencies(OFFERS_FOUND* found)
{
    for (std::size_t i = 0; i < found->get_request().m_outputs.size(); ++i) {
        if (is_frequency_missed(found->get_answer(), i)) {
            NEAREST_OUTPUT(found, i).offer();
        }
    }
}

void offer_inputs(OFFERS_FOUND* found)
{
    constexpr int MOST_MULTIPLES = 64;
    const REQUEST& request = found->get_request();
    const RATIONAL asked = request.m_input.m_frequency;
    const RATIONAL multiple = common_multiple(request);
    const RATIONAL least = outermost(found->get_limits(), LIMIT_KIND::VCO_MIN);
    const RATIONAL most = outermost(found->get_limits(), LIMIT_KIND::VCO_MAX);
    PLL pll(static_cast<int>(request.m_outputs.size()), PLL_MAX_TAPS);
    found->get_limits().give_to(&pll, request);
    SIDES sides;
    RATIONAL vco = multiple * (least / multiple).ceil();
    for (int i = 0; i < MOST_MULTIPLES && vco.is_valid() && vco <= most; ++i) {
        add_inputs_of(vco, pll, asked, &sides);
        vco = vco + multiple;
    }
    sides.sort();
    offer_nearest(sides, [&](const RATIONAL& hertz) {
        const FREQUENCY_UNIT unit = request.m_input.m_unit;
        return found->add(with_input(request, hertz),
                          "an input of " + write_frequency(hertz, unit) + " in the place of " +
                              write_frequency(asked, unit) + write_change(asked, hertz),
                          (hertz / asked - RATIONAL(1)).magnitude().to_double());
    });
}

}  // namespace advice
