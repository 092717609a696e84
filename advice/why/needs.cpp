#include "advice/why/needs.h"

#include "advice/numbers/text.h"

#include "pll.h"

#include <algorithm>

namespace advice {

namespace {

class NEEDS
{
public:
    NEEDS(const REQUEST& request, const LIMITS& limits)
        : m_request(request),
          m_limits(limits),
          m_pll(static_cast<int>(request.m_outputs.size()), PLL_MAX_TAPS),
          m_vco_min(outermost(limits, LIMIT_KIND::VCO_MIN)),
          m_vco_max(outermost(limits, LIMIT_KIND::VCO_MAX))
    {
        limits.give_to(&m_pll, request);
    }

    void explain_output(std::size_t index)
    {
        const OUTPUT_WISH& wish = m_request.m_outputs[index];
        const RATIONAL tolerance = tolerances_of(m_request, index).m_frequency;
        const RATIONAL fastest = wish.m_frequency * (RATIONAL(1) + tolerance);
        const RATIONAL slowest = wish.m_frequency * (RATIONAL(1) - tolerance);
        const RATIONAL least = (m_vco_min / fastest).ceil();
        const RATIONAL most = (m_vco_max / slowest).floor();
        const RATIONAL largest = largest_division(index);
        const std::string name = name_of_output(m_request, index);
        if (largest < least) {
            say(name + " needs a division of the VCO by " + least.to_fraction() +
                " or more; the largest is " + largest.to_fraction());
        } else if (most < RATIONAL(1)) {
            say(name + " needs a VCO of " + write(wish.m_frequency, wish.m_unit) +
                " or more; the fastest is " + write(m_vco_max, wish.m_unit));
        } else if (most < least) {
            say(name + " needs a division of the VCO by more than " +
                (least - RATIONAL(1)).to_fraction() + " and less than " + least.to_fraction() +
                ", between " + write(m_vco_min, wish.m_unit) + " and " +
                write(m_vco_max, wish.m_unit) + "; there is no such count");
        }
    }

    void explain_loop()
    {
        const RATIONAL input = m_request.m_input.m_frequency;
        const FREQUENCY_UNIT unit = m_request.m_input.m_unit;
        const RATIONAL n_max(m_pll.m_n.m_max_count);
        const RATIONAL pfd_max = outermost(m_limits, LIMIT_KIND::PFD_MAX);
        const RATIONAL pfd_min = outermost(m_limits, LIMIT_KIND::PFD_MIN);
        const RATIONAL least_n = (input / pfd_max).ceil();
        if (n_max < least_n) {
            say("N needs to be " + least_n.to_fraction() + " or more (" + write(input, unit) +
                " over a PFD of at most " + write(pfd_max, unit) + "); the largest is " +
                n_max.to_fraction());
        }
        if (input < pfd_min) {
            say("the PFD needs " + write(pfd_min, unit) + " or more; the input gives it " +
                write(input, unit) + " at most");
        }
        explain_m(least_n > RATIONAL(1) ? least_n : RATIONAL(1));
    }

    std::vector<std::string> take() { return std::move(m_lines); }

private:
    void say(const std::string& line) { m_lines.push_back(line); }

    static std::string write(const RATIONAL& hertz, FREQUENCY_UNIT unit)
    {
        return write_frequency(hertz, unit);
    }

    // Feedback from an output multiplies M by that output's division.
    void explain_m(const RATIONAL& least_n)
    {
        const RATIONAL input = m_request.m_input.m_frequency;
        const RATIONAL largest(m_pll.m_m.m_max_count);
        const RATIONAL factor =
            m_request.m_feedback == NO_OUTPUT
                ? RATIONAL(1)
                : largest_division(static_cast<std::size_t>(m_request.m_feedback));
        const RATIONAL least = (m_vco_min * least_n / input).ceil();
        if (largest * factor < least) {
            say("M needs to be " + least.to_fraction() + " or more (a VCO of " +
                write(m_vco_min, m_request.m_input.m_unit) + " from " +
                write(input / least_n, m_request.m_input.m_unit) + "); the largest is " +
                (largest * factor).to_fraction());
        }
    }

    RATIONAL largest_division(std::size_t output) const
    {
        const int half = m_pll.m_taps[output].m_max_count;
        const RATIONAL single(half <= 1 ? WIDE_INT{1} : WIDE_INT{2} * half);
        return m_pll.m_output_counter_cascade ? single * single : single;
    }

    const REQUEST& m_request;
    const LIMITS& m_limits;
    PLL m_pll;
    RATIONAL m_vco_min;
    RATIONAL m_vco_max;
    std::vector<std::string> m_lines;
};

}  // namespace

std::vector<std::string> explain_needs(const REQUEST& request, const LIMITS& limits)
{
    NEEDS needs(request, limits);
    needs.explain_loop();
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        needs.explain_output(i);
    }
    return needs.take();
}

RATIONAL outermost(const LIMITS& limits, LIMIT_KIND kind)
{
    const bool is_least = facts_of(kind).m_side == LIMIT_SIDE::LEAST;
    RATIONAL outer = RATIONAL::invalid();
    for (const LIMIT& limit : limits.get_list()) {
        const RATIONAL value = limit.m_value.m_exact;
        const bool is_outer = !outer.is_valid() || (is_least ? value < outer : outer < value);
        if (limit.m_kind == kind && is_outer) {
            outer = value;
        }
    }
    return outer;
}

}  // namespace advice
