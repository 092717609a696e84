// Where the settings of one post-scale can be legal.
//
// PFD limits bind N alone. VCO limits bind the ratio M / N: fin x N / M within vmin..vmax is
// M / N within fin / vmax..fin / vmin. So the legal settings of a post-scale are the fractions of a
// range of ratios whose M and N lie in ranges of their own.
#pragma once

#include "search/window.h"

#include <cstdint>

class PLL;

namespace pll_internal {

struct SEARCH_LIMITS;

// A closed range of ratios M / N; empty when m_low is above m_high.
struct RATIO_RANGE
{
    double m_low;
    double m_high;

    bool is_empty() const { return !(m_low <= m_high); }
};

// A closed range of M; empty when m_first is above m_last.
struct M_RANGE
{
    std::int64_t m_first;
    std::int64_t m_last;

    bool is_empty() const { return m_first > m_last; }
};

// Whole numbers at the ends of a range of ratios; for values from 0 to far below 2^63.
inline std::int64_t floor_to_count(double value)
{
    return std::int64_t(value);
}

inline std::int64_t ceil_to_count(double value)
{
    const std::int64_t count = std::int64_t(value);
    return count + (double(count) < value ? 1 : 0);
}

// The smallest M of a search: down spread must be able to change it by a whole count.
std::int64_t first_m_of(const SEARCH_LIMITS& limits);

// What the limits leave of one post-scale, where it can be told. Every legal setting has its M, N
// and ratio in the ranges; what is in the ranges is legal when is_legal says so.
class REGION
{
public:
    // Whether input period and minimum of N are positive, and the products that a custom bandwidth
    // asks for grow with M.
    static bool can_tell(const PLL& pll, const SEARCH_LIMITS& limits);

    REGION(const PLL& pll, const SEARCH_LIMITS& limits, int post_scale);

    bool is_empty() const { return m_m.is_empty() || m_n.is_empty() || m_ratios.is_empty(); }
    M_RANGE m_range() const { return m_m; }
    N_RANGE n_range() const { return m_n; }
    RATIO_RANGE ratios() const { return m_ratios; }

    // Whether every M that the bandwidth allows in `other` is allowed here.
    bool allows_m(const REGION& other) const
    {
        return m_allowed_m.m_first <= other.m_allowed_m.m_first &&
               other.m_allowed_m.m_last <= m_allowed_m.m_last;
    }

    bool is_legal(std::int64_t m, std::int64_t n) const;

    // The range of M whose ratios to `n` lie in `ratios`, and the range of N to `m`: never too
    // narrow as long as `ratios` is wider than it need be by more than rounding.
    M_RANGE m_between(RATIO_RANGE ratios, std::int64_t n) const;
    N_RANGE n_between(RATIO_RANGE ratios, std::int64_t m) const;

    // About how many settings have a ratio in `ratios`.
    double count_about(RATIO_RANGE ratios) const;

private:
    ROW_PERIODS periods(double fin, std::int64_t m) const
    {
        return ROW_PERIODS(fin, double(m), m_vco, m_pfd);
    }
    void narrow_n_to_pfd(double fin);
    void narrow_ratios_to_vco(double fin);
    void narrow_m_to_bandwidth(const SEARCH_LIMITS& limits, double vco_gain);
    void narrow_counters_to_ratios();

    double m_fin;
    double m_fin2;  // 0: none
    PERIOD_RANGE m_vco;
    PERIOD_RANGE m_pfd;
    M_RANGE m_allowed_m;  // by the bandwidth and the spread
    M_RANGE m_m;
    N_RANGE m_n;
    RATIO_RANGE m_ratios;
};

}  // namespace pll_internal
