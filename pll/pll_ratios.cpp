// All VCO ratios M / N that the counters can make from one input clock, reduced and in ascending
// order. Equal fractions are met several times (2/1, 4/2, ...), so all legal pairs are gathered
// first, then sorted, then made unique.
#include "pll_arith.h"
#include "pll_report_error.h"
#include "pll_search.h"
#include "pll_util.h"
#include "pll_window.h"

#include <limits>
#include <new>

namespace {

constexpr const char* SOURCE = "pll";

struct RATIO
{
    int m_mult;
    int m_div;
};

bool is_same(const RATIO& a, const RATIO& b)
{
    return a.m_mult == b.m_mult && a.m_div == b.m_div;
}

bool is_smaller(const RATIO& a, const RATIO& b)
{
    return std::int64_t{a.m_mult} * b.m_div < std::int64_t{b.m_mult} * a.m_div;
}

class RATIO_LIST
{
public:
    RATIO_LIST(const PLL& pll, int fin_period) : m_pll(pll), m_fin_period(fin_period) {}

    void collect(int post_scale);
    void sort_and_unite();
    const MEM_VECTOR<RATIO>& get_ratios() const { return m_ratios; }

private:
    N_RANGE legal_for_pfd(PERIOD_RANGE pfd, N_RANGE counts) const;
    void add(int m, N_RANGE window);
    void insert(const RATIO& ratio);

    const PLL& m_pll;
    int m_fin_period;  // ps
    MEM_VECTOR<RATIO> m_ratios{MEM_ALLOCATOR<RATIO>(SOURCE)};
};

void RATIO_LIST::collect(int post_scale)
{
    const PERIOD_RANGE vco{double(m_pll.get_vco_min_period(post_scale)),
                           double(m_pll.get_vco_max_period(post_scale))};
    const PERIOD_RANGE pfd{double(m_pll.m_pfd_min_period), double(m_pll.m_pfd_max_period)};
    const N_RANGE counts{m_pll.m_n.m_min_count, m_pll.m_n.m_max_count};
    const N_RANGE all = counts.is_empty() ? counts : legal_for_pfd(pfd, counts);
    if (all.is_empty() || vco.m_min > vco.m_max + 2 * PERIOD_TOLERANCE) {
        return;
    }
    for (std::int64_t m = 2; m <= m_pll.m_m.m_max_count; ++m) {
        const ROW_PERIODS periods(m_fin_period, double(m), vco, pfd);
        // The slowest VCO of a row gets faster from row to row.
        if (m_fin_period > 0 && periods.vco(all.m_last) >= 0.0 &&
            periods.is_vco_too_fast(all.m_last)) {
            return;
        }
        add(int(m), periods.legal_window(all));
    }
}

N_RANGE RATIO_LIST::legal_for_pfd(PERIOD_RANGE pfd, N_RANGE counts) const
{
    constexpr double ANY = std::numeric_limits<double>::infinity();
    return ROW_PERIODS(m_fin_period, 1.0, {-ANY, ANY}, pfd).legal_window(counts);
}

void RATIO_LIST::add(int m, N_RANGE window)
{
    for (std::int64_t n = window.m_first; n <= window.m_last; ++n) {
        RATIO ratio{};
        PLL_UTIL::normalize_fraction(&ratio.m_mult, &ratio.m_div, m, int(n));
        if (m_pll.m_n.m_min_count > 0) {
            m_ratios.push_back(ratio);
        } else {
            insert(ratio);
        }
    }
}

// With divisors below 1 the comparison orders nothing, so the place depends on what came before.
void RATIO_LIST::insert(const RATIO& ratio)
{
    for (const RATIO& listed : m_ratios) {
        if (is_same(listed, ratio)) {
            return;
        }
    }
    auto place = m_ratios.begin();
    while (place != m_ratios.end() && is_smaller(*place, ratio)) {
        ++place;
    }
    m_ratios.insert(place, ratio);
}

void RATIO_LIST::sort_and_unite()
{
    if (m_pll.m_n.m_min_count > 0) {
        std::sort(m_ratios.begin(), m_ratios.end(), is_smaller);
        m_ratios.erase(std::unique(m_ratios.begin(), m_ratios.end(), is_same), m_ratios.end());
    }
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
int publish(const MEM_VECTOR<RATIO>& ratios, PLL_IMPL* impl)
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
    RATIO_LIST list(pll, fin_period);
    const int last = std::min(pll.m_max_vco_post_scale, PLL_VCO_POST_SCALE_MAX);
    for (int post_scale = 1; post_scale <= last; ++post_scale) {
        list.collect(post_scale);
    }
    list.sort_and_unite();
    return publish(list.get_ratios(), PLL::m_impl);
}

}  // namespace

int PLL::find_vco_mult_div_values(int** mults, int** divs, int fin_period)
{
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
