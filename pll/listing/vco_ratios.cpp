// All VCO ratios M / N that the counters can make from one input clock, reduced and in ascending
// order.
//
// A ratio m / n, reduced, is on the list when some multiple (k x m, k x n) of it is a legal pair.
// The VCO period fin x N / M is the same double for all its multiples, since fin x N is exact and
// the division is rounded correctly, and it falls when the ratio grows (or rises, for a negative
// input period). So the listed ratios are the fractions of the box M maximum x N maximum from a
// smallest to a largest one, less those without a multiple that the PFD allows. They are walked in
// ascending order, each once.
//
// Where the PFD allows only large N, most fractions on such a walk could be without a legal
// multiple. Then all legal pairs are gathered, reduced, sorted and made unique instead.
#include "pll.h"
#include "pll_prop.h"
#include "pll_util.h"

#include "listing/farey.h"
#include "platform/arith.h"
#include "platform/host_state.h"
#include "platform/report_error.h"
#include "search/region.h"
#include "search/window.h"

#include <limits>
#include <new>

using namespace pll_internal;

namespace {

constexpr const char* SOURCE = "pll";
constexpr int SMALLEST_M = 2;
constexpr int STEPS_PER_SORTED_PAIR = 8;  // what sorting a pair costs, in steps of a walk
constexpr double ANY_PERIOD = std::numeric_limits<double>::infinity();

struct RATIO
{
    int m_mult;
    int m_div;
};

typedef MEM_VECTOR<RATIO> RATIOS;

bool is_same(const RATIO& a, const RATIO& b)
{
    return a.m_mult == b.m_mult && a.m_div == b.m_div;
}

bool is_smaller(const RATIO& a, const RATIO& b)
{
    return std::int64_t{a.m_mult} * b.m_div < std::int64_t{b.m_mult} * a.m_div;
}

// The fractions of the box that a post-scale's VCO range allows, from the smallest to the largest.
struct RATIO_RANGE
{
    FAREY_FRACTION m_first;
    FAREY_FRACTION m_last;
};

N_RANGE legal_for_pfd(const PLL& pll, int fin_period)
{
    const N_RANGE counts{pll.m_n.m_min_count, pll.m_n.m_max_count};
    if (counts.is_empty()) {
        return counts;
    }
    const PERIOD_RANGE pfd{double(pll.m_pfd_min_period), double(pll.m_pfd_max_period)};
    return ROW_PERIODS(fin_period, 1.0, {-ANY_PERIOD, ANY_PERIOD}, pfd).legal_window(counts);
}

std::int64_t size_of(N_RANGE range)
{
    return range.is_empty() ? 0 : range.m_last - range.m_first + 1;
}

// At once, so that the number of allocations does not depend on that of ratios.
void reserve_for(std::int64_t count, RATIOS* ratios)
{
    if (std::uint64_t(count) > ratios->max_size()) {
        throw std::bad_alloc();
    }
    ratios->reserve(std::size_t(count));
}

// Where the legal pairs lie, and the ways to list their ratios. N below 1 make no fractions that
// could be walked or sorted.
class RATIO_BOX
{
public:
    RATIO_BOX(const PLL& pll, int fin_period);

    // Appends the ratios. Throws std::bad_alloc without memory for all legal pairs.
    void list(RATIOS* ratios) const;

private:
    void measure(int post_scale);
    void join_ranges();
    void walk(const RATIO_RANGE& range, RATIOS* ratios) const;
    bool has_legal_multiple(const FAREY_FRACTION& ratio) const;
    void gather(RATIOS* ratios) const;
    void gather_row(int m, N_RANGE window, RATIOS* ratios) const;
    static void insert(const RATIO& ratio, RATIOS* ratios);

    // Calls take(m, window) for every M of which some of the N in `counts` suit the VCO.
    template <class TAKE>
    void for_each_row(int post_scale, int first_m, N_RANGE counts, TAKE take) const;

    const PLL& m_pll;
    int m_fin_period;  // ps
    int m_last_post_scale;
    bool m_has_fractions;
    N_RANGE m_pfd_counts;  // the N that the PFD allows
    int m_range_count;
    RATIO_RANGE m_ranges[PLL_VCO_POST_SCALE_MAX];  // ascending, without a fraction in common
    std::int64_t m_pairs;                          // legal ones
    std::int64_t m_steps;                          // pairs that suit the VCO: no walk is longer
};

RATIO_BOX::RATIO_BOX(const PLL& pll, int fin_period)
    : m_pll(pll),
      m_fin_period(fin_period),
      m_last_post_scale(std::min(pll.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX)),
      m_has_fractions(pll.m_n.m_min_count > 0),
      m_pfd_counts(legal_for_pfd(pll, fin_period)),
      m_range_count(0),
      m_pairs(0),
      m_steps(0)
{
    for (int post_scale = 1; post_scale <= m_last_post_scale; ++post_scale) {
        measure(post_scale);
    }
    join_ranges();
}

template <class TAKE>
void RATIO_BOX::for_each_row(int post_scale, int first_m, N_RANGE counts, TAKE take) const
{
    const PERIOD_RANGE vco{double(m_pll.get_vco_min_period(post_scale)),
                           double(m_pll.get_vco_max_period(post_scale))};
    if (m_pfd_counts.is_empty() || vco.m_min > vco.m_max + 2 * PERIOD_TOLERANCE) {
        return;
    }
    for (std::int64_t m = first_m; m <= m_pll.m_m.m_max_count; ++m) {
        const ROW_PERIODS periods(m_fin_period, double(m), vco, {-ANY_PERIOD, ANY_PERIOD});
        // The slowest VCO of a row gets faster from row to row.
        if (m_fin_period > 0 && periods.vco(counts.m_last) >= 0.0 &&
            periods.is_vco_too_fast(counts.m_last)) {
            return;
        }
        const N_RANGE window = periods.legal_window(counts);
        if (!window.is_empty()) {
            take(int(m), window);
        }
    }
}

// The smallest fraction of a row is that with its largest N. Rows come by ascending M, so the first
// of equal fractions is the reduced one.
void RATIO_BOX::measure(int post_scale)
{
    const N_RANGE counts = m_has_fractions ? N_RANGE{1, m_pfd_counts.m_last} : m_pfd_counts;
    const std::int64_t steps_before = m_steps;
    RATIO_RANGE range = {};
    for_each_row(post_scale, 1, counts, [&](int m, N_RANGE window) {
        if (m >= SMALLEST_M) {
            m_pairs += size_of({std::max(window.m_first, m_pfd_counts.m_first), window.m_last});
        }
        if (!m_has_fractions) {
            return;
        }
        const FAREY_FRACTION first = {std::uint32_t(m), std::uint32_t(window.m_last)};
        const FAREY_FRACTION last = {std::uint32_t(m), std::uint32_t(window.m_first)};
        const bool is_first_row = m_steps == steps_before;
        range.m_first = is_first_row || first < range.m_first ? first : range.m_first;
        range.m_last = is_first_row || range.m_last < last ? last : range.m_last;
        m_steps += size_of(window);
    });
    if (m_steps != steps_before) {
        m_ranges[m_range_count++] = range;
    }
}

void RATIO_BOX::join_ranges()
{
    if (m_range_count < 2) {
        return;
    }
    RATIO_RANGE& low = m_ranges[0];
    RATIO_RANGE& high = m_ranges[1];
    if (high.m_first < low.m_first) {
        std::swap(low, high);
    }
    if (!(low.m_last < high.m_first)) {
        low.m_last = std::max(low.m_last, high.m_last);
        m_range_count = 1;
    }
}

void RATIO_BOX::list(RATIOS* ratios) const
{
    if (m_has_fractions) {
        reserve_for(m_pairs, ratios);
    }
    if (!m_has_fractions || m_steps / STEPS_PER_SORTED_PAIR > m_pairs) {
        gather(ratios);
        return;
    }
    for (int i = 0; i < m_range_count; ++i) {
        walk(m_ranges[i], ratios);
    }
}

void RATIO_BOX::walk(const RATIO_RANGE& range, RATIOS* ratios) const
{
    const FAREY_FRACTION box = {std::uint32_t(m_pll.m_m.m_max_count),
                                std::uint32_t(m_pfd_counts.m_last)};
    FAREY_WALK walk(box, range.m_first);
    bool is_last = false;
    while (!is_last) {
        const FAREY_FRACTION ratio = walk.get();
        if (has_legal_multiple(ratio)) {
            ratios->push_back({int(ratio.m_mult), int(ratio.m_div)});
        }
        is_last = ratio == range.m_last || !walk.go_on();
    }
}

// Multiples with too small an M or an N too small for the PFD are passed over; the next one
// decides.
bool RATIO_BOX::has_legal_multiple(const FAREY_FRACTION& ratio) const
{
    const std::int64_t m = ratio.m_mult;
    const std::int64_t n = ratio.m_div;
    if (m >= SMALLEST_M && n >= m_pfd_counts.m_first) {
        return true;
    }
    const std::int64_t factor_for_m = m >= SMALLEST_M ? 1 : SMALLEST_M;
    const std::int64_t factor = std::max(factor_for_m, (m_pfd_counts.m_first + n - 1) / n);
    return factor * m <= m_pll.m_m.m_max_count && factor * n <= m_pfd_counts.m_last;
}

void RATIO_BOX::gather(RATIOS* ratios) const
{
    for (int post_scale = 1; post_scale <= m_last_post_scale; ++post_scale) {
        for_each_row(post_scale, SMALLEST_M, m_pfd_counts,
                     [&](int m, N_RANGE window) { gather_row(m, window, ratios); });
    }
    if (m_has_fractions) {
        std::sort(ratios->begin(), ratios->end(), is_smaller);
        ratios->erase(std::unique(ratios->begin(), ratios->end(), is_same), ratios->end());
    }
}

void RATIO_BOX::gather_row(int m, N_RANGE window, RATIOS* ratios) const
{
    for (std::int64_t n = window.m_first; n <= window.m_last; ++n) {
        RATIO ratio{};
        PLL_UTIL::normalize_fraction(&ratio.m_mult, &ratio.m_div, m, int(n));
        if (m_has_fractions) {
            ratios->push_back(ratio);
        } else {
            insert(ratio, ratios);
        }
    }
}

// With divisors below 1 the comparison orders nothing, so the place depends on what came before.
void RATIO_BOX::insert(const RATIO& ratio, RATIOS* ratios)
{
    for (const RATIO& listed : *ratios) {
        if (is_same(listed, ratio)) {
            return;
        }
    }
    auto place = ratios->begin();
    while (place != ratios->end() && is_smaller(*place, ratio)) {
        ++place;
    }
    ratios->insert(place, ratio);
}

void release_array(int** array)
{
    MEM_MANAGER::delete_wrapper(*array, SOURCE);
    *array = nullptr;
}

int* new_array(std::size_t count)
{
    return static_cast<int*>(
        MEM_MANAGER::new_wrapper(count * sizeof(int), MEM_TRACKER(__FILE__, __LINE__), SOURCE));
}

// Puts the list into the library's two arrays. Returns how long it is; 0 without memory for both.
int publish(const RATIOS& ratios, PLL_IMPL* impl)
{
    if (ratios.empty()) {
        return 0;
    }
    impl->m_mults = new_array(ratios.size());
    impl->m_divs = new_array(ratios.size());
    if (impl->m_mults == nullptr || impl->m_divs == nullptr) {
        release_array(&impl->m_mults);
        release_array(&impl->m_divs);
        return 0;
    }
    for (std::size_t i = 0; i < ratios.size(); ++i) {
        impl->m_mults[i] = ratios[i].m_mult;
        impl->m_divs[i] = ratios[i].m_div;
    }
    return int(ratios.size());
}

int list_ratios(const PLL& pll, int fin_period)
{
    const RATIO_BOX box(pll, fin_period);
    RATIOS ratios{MEM_ALLOCATOR<RATIO>(SOURCE)};
    box.list(&ratios);
    return publish(ratios, PLL::m_impl);
}

}  // namespace

int PLL::find_vco_mult_div_values(int** mults, int** divs, int fin_period)
{
    const HOST_STATE state;
    if (mults == nullptr || divs == nullptr) {
        return 0;
    }
    *mults = nullptr;
    *divs = nullptr;
    if (m_impl == nullptr) {
        return 0;  // the first PLL found no memory for what all share
    }
    release_array(&m_impl->m_mults);
    release_array(&m_impl->m_divs);
    check(m_m.m_min_count == 1, "m_m.m_min_count == 1", SOURCE);
    if (m_max_vco_post_scale < 1) {
        return 0;
    }
    try {
        const int count = list_ratios(*this, fin_period);
        *mults = m_impl->m_mults;
        *divs = m_impl->m_divs;
        return count;
    } catch (const std::bad_alloc&) {
        return 0;
    }
}
