// An output of ratio r within a tolerance t is made by every VCO ratio M / N and count K with
//
//   r K (1 - t) <= M / N <= r K (1 + t),
//
// so for each N, and each K that puts the VCO into its range, a few neighbouring M are all that can
// be. The fastest output has the fewest K and is walked; the others follow from each M / N. Doubles
// sort out what is clearly wrong, fractions decide.
#include "advice/answer/further_search.h"

#include "pll.h"
#include "pll_prop.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace advice {

namespace {

constexpr std::int64_t MOST_STEPS = 2000000;  // of the walk over N, K and M
constexpr double SMALLEST_M = 2.0;            // of the library's search
constexpr double WIDER = 1e-9;                // what doubles may be wrong by
constexpr double INEXACT_COST = 8192.0;       // the library's, see docs/search.md
constexpr double COST_OF_ERROR = 1000.0;
constexpr double CASCADE_COST = 4096.0;

struct REAL_RANGE
{
    double m_least;
    double m_most;
};

// The exact range of a limit pair at any post-scale, widened by what the library allows.
REAL_RANGE range_of(const LIMITS& limits, LIMIT_KIND least, LIMIT_KIND most)
{
    REAL_RANGE range{HUGE_VAL, 0.0};
    bool has_least = false;
    bool has_most = false;
    for (const LIMIT& limit : limits.get_list()) {
        constexpr double SLACK = 1e-2;
        const double slack = limit.m_has_slack ? SLACK : WIDER;
        if (limit.m_kind == least) {
            range.m_least = std::min(range.m_least, limit.m_value.m_value * (1.0 - slack));
            has_least = true;
        } else if (limit.m_kind == most) {
            range.m_most = std::max(range.m_most, limit.m_value.m_value * (1.0 + slack));
            has_most = true;
        }
    }
    return {has_least ? range.m_least : 0.0, has_most ? range.m_most : HUGE_VAL};
}

class WALK
{
public:
    WALK(const REQUEST& request, const LIMITS& limits, const PLL& pll)
        : m_request(request),
          m_limits(limits),
          m_pll(pll),
          m_input(request.m_input.m_frequency.to_double()),
          m_vco(range_of(limits, LIMIT_KIND::VCO_MIN, LIMIT_KIND::VCO_MAX)),
          m_pfd(range_of(limits, LIMIT_KIND::PFD_MIN, LIMIT_KIND::PFD_MAX))
    {
        const LIMIT* const least_m = limits.find(LIMIT_KIND::M_MIN);
        // The counter M does not hold the whole multiplication when an output is fed back.
        if (least_m != nullptr && request.m_feedback == NO_OUTPUT) {
            m_least_m = std::max(m_least_m, least_m->m_value.m_value);
        }
        m_fastest = 0;
        for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
            const OUTPUT_WISH& wish = request.m_outputs[i];
            m_ratios.push_back(wish.m_ratio.to_double());
            m_tolerances.push_back(tolerances_of(request, i).m_frequency);
            m_fastest = m_ratios[i] > m_ratios[m_fastest] ? i : m_fastest;
        }
        m_candidate.m_counts.resize(request.m_outputs.size());
    }

    std::vector<VCO_CANDIDATE> list()
    {
        const std::int64_t last = std::min<std::int64_t>(
            m_pll.m_n.m_max_count,
            static_cast<std::int64_t>(std::min(m_input / std::max(m_pfd.m_least, 1.0), 1e9)));
        for (std::int64_t n = 1; n <= last && m_steps < MOST_STEPS; ++n) {
            walk_counts(n);
        }
        return std::move(m_candidates);
    }

private:
    int largest_count(std::size_t output) const
    {
        constexpr int LARGEST = 1 << 30;
        const std::int64_t whole = std::int64_t{2} * m_pll.m_taps[output].m_max_count;
        const std::int64_t all =
            m_pll.m_output_counter_cascade ? whole * std::min<std::int64_t>(whole, LARGEST) : whole;
        return static_cast<int>(std::clamp<std::int64_t>(all, 1, LARGEST));
    }

    void walk_counts(std::int64_t n)
    {
        const double ratio = m_ratios[m_fastest];
        const double tolerance = m_tolerances[m_fastest].to_double() + WIDER;
        const double clock = m_input * ratio;
        const double slowest = std::ceil(m_vco.m_least / clock / (1.0 + tolerance));
        if (!(slowest <= largest_count(m_fastest))) {
            return;
        }
        const auto first = static_cast<std::int64_t>(std::max(1.0, slowest));
        const auto last = static_cast<std::int64_t>(
            std::min<double>(largest_count(m_fastest), m_vco.m_most / clock / (1.0 - tolerance)));
        for (std::int64_t k = first; k <= last; ++k) {
            const double middle = ratio * double(k) * double(n);
            const double least = std::ceil(middle * (1.0 - tolerance));
            if (!(least <= largest_m())) {
                return;
            }
            const auto low = static_cast<std::int64_t>(least);
            const double high = std::min<double>(middle * (1.0 + tolerance), largest_m());
            for (std::int64_t m = std::max<std::int64_t>(low, 1); double(m) <= high; ++m) {
                if (++m_steps > MOST_STEPS) {
                    return;
                }
                try_ratio(m, n);
            }
            ++m_steps;
        }
    }

    double largest_m() const { return m_pll.m_m.m_max_count; }

    // Only the reduced fraction stands for all its multiples.
    void try_ratio(std::int64_t m, std::int64_t n)
    {
        const double vco = m_input * double(m) / double(n);
        if (std::gcd(m, n) != 1 || vco < m_vco.m_least || vco > m_vco.m_most) {
            return;
        }
        m_candidate.m_mult = static_cast<int>(m);
        m_candidate.m_div = static_cast<int>(n);
        m_candidate.m_error = 0.0;
        m_candidate.m_least_cost = 0.0;
        for (std::size_t i = 0; i < m_ratios.size(); ++i) {
            if (!fit_output(i, double(m) / double(n))) {
                return;
            }
        }
        if (find_least_n()) {
            if (m_candidate.m_error > 0.0) {
                m_candidate.m_least_cost += INEXACT_COST + m_candidate.m_error * COST_OF_ERROR;
            }
            m_candidates.push_back(m_candidate);
        }
    }

    // Of a device whose counters count to certain values only, or not to the smallest.
    bool is_legal_count(std::size_t output, int k) const
    {
        for (const LIMIT& limit : m_limits.get_list()) {
            const bool is_own =
                limit.m_output == NO_OUTPUT || limit.m_output == static_cast<int>(output);
            const bool is_illegal =
                (limit.m_kind == LIMIT_KIND::K_LEGAL &&
                 !std::binary_search(limit.m_legal.begin(), limit.m_legal.end(), k)) ||
                (limit.m_kind == LIMIT_KIND::K_MIN && RATIONAL(k) < limit.m_value.m_exact) ||
                (limit.m_kind == LIMIT_KIND::K_MAX && !m_pll.m_output_counter_cascade &&
                 RATIONAL(k) > limit.m_value.m_exact);
            if (is_own && is_illegal) {
                return false;
            }
        }
        return true;
    }

    bool fit_output(std::size_t output, double vco_ratio)
    {
        const double count = vco_ratio / m_ratios[output] + 0.5;
        if (!(count < double(largest_count(output)) + 1.0)) {
            return false;
        }
        const int k = std::max(1, static_cast<int>(count));
        if (!is_legal_count(output, k)) {
            return false;
        }
        const double error = vco_ratio / k / m_ratios[output] - 1.0;
        if (std::fabs(error) > m_tolerances[output].to_double() + WIDER) {
            return false;
        }
        const RATIONAL achieved = RATIONAL(m_candidate.m_mult, WIDE_INT{m_candidate.m_div} * k);
        const RATIONAL miss =
            (achieved / m_request.m_outputs[output].m_ratio - RATIONAL(1)).magnitude();
        if (miss.is_valid() && !(miss <= m_tolerances[output])) {
            return false;
        }
        m_candidate.m_counts[output] = k;
        m_candidate.m_error += miss.is_zero() ? 0.0 : std::fabs(error);
        if (k > 2 * m_pll.m_taps[output].m_max_count) {
            m_candidate.m_least_cost += CASCADE_COST;
        }
        return true;
    }

    // M and N are a common multiple of the ratio's, so that the PFD and the smallest counts hold.
    bool find_least_n()
    {
        const int div = m_candidate.m_div;
        const double fastest_pfd = m_input / m_pfd.m_most;
        const double least = std::max<double>(m_pll.m_n.m_min_count, std::ceil(fastest_pfd));
        const double multiple =
            std::max(std::ceil(least / div), std::ceil(m_least_m / m_candidate.m_mult));
        const double n = multiple * div;
        const bool fits =
            n <= m_pll.m_n.m_max_count && multiple * m_candidate.m_mult <= largest_m();
        m_candidate.m_least_n = fits ? static_cast<int>(n) : 0;
        return fits;
    }

    const REQUEST& m_request;
    const LIMITS& m_limits;
    const PLL& m_pll;
    double m_least_m = SMALLEST_M;
    double m_input;  // Hz
    REAL_RANGE m_vco;
    REAL_RANGE m_pfd;
    std::size_t m_fastest;
    std::vector<double> m_ratios;
    std::vector<RATIONAL> m_tolerances;
    std::int64_t m_steps = 0;
    VCO_CANDIDATE m_candidate;
    std::vector<VCO_CANDIDATE> m_candidates;
};

bool is_cheaper(const VCO_CANDIDATE& a, const VCO_CANDIDATE& b)
{
    if (a.m_least_cost != b.m_least_cost) {
        return a.m_least_cost < b.m_least_cost;
    }
    return a.m_div != b.m_div ? a.m_div < b.m_div : a.m_mult < b.m_mult;
}

}  // namespace

std::vector<VCO_CANDIDATE> list_candidates(const REQUEST& request, const LIMITS& limits,
                                           const PLL& pll, std::size_t most)
{
    if (request.m_outputs.empty()) {
        return {};
    }
    std::vector<VCO_CANDIDATE> candidates = WALK(request, limits, pll).list();
    if (request.m_vco_ratio) {
        std::erase_if(candidates, [&](const VCO_CANDIDATE& candidate) {
            return !(RATIONAL(candidate.m_mult, candidate.m_div) == *request.m_vco_ratio);
        });
    }
    const std::size_t kept = std::min(most, candidates.size());
    std::partial_sort(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(kept),
                      candidates.end(), is_cheaper);
    candidates.resize(kept);
    return candidates;
}

PLL_PROP to_prop(const REQUEST& request, const VCO_CANDIDATE& candidate)
{
    PLL_PROP prop = to_prop(request);
    prop.m_vco_mult = candidate.m_mult;
    prop.m_vco_div = candidate.m_div;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const RATIONAL ratio(candidate.m_mult, WIDE_INT{candidate.m_div} * candidate.m_counts[i]);
        PLL_USER_TAP& tap = prop.m_taps[i];
        const double degrees = phase_to_input(request, i).to_double();
        tap.m_mult = static_cast<int>(ratio.numerator());
        tap.m_div = static_cast<int>(ratio.denominator());
        tap.m_phase = degrees / ratio.to_double();
    }
    return prop;
}

}  // namespace advice
