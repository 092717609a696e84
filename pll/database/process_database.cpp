// The library's front door: the process-wide database, and the limits of one of its families as the
// defaults of every later PLL.
#include "pll.h"
#include "pll_manager.h"

#include "platform/host_state.h"
#include "platform/report_error.h"

using namespace pll_internal;

namespace {

const char SOURCE[] = "pll";

PLL_TYPE_ENUM type_of(PLL::PLL_TYPE type)
{
    switch (type) {
    case PLL::ENHANCED_PLL:
        return ENHANCED_PLL;
    case PLL::FAST_PLL:
        return FAST_PLL;
    case PLL::FAST_PLL_HIGH_SPEED:
        return FAST_PLL_HIGH_SPEED;
    case PLL::VESTRA_PLL:
        return VESTRA_PLL;
    case PLL::PLL_TYPE_MAX:
        break;
    }
    return PLL_TYPE_MAX;
}

// Entry 0 of the VCO limits belongs to no post-scale and keeps its default.
void make_default(const PLL& pll)
{
    PLL::m_default_m_counter_max_count = pll.m_m.m_max_count;
    PLL::m_default_n_counter_max_count = pll.m_n.m_max_count;
    PLL::m_default_tap_counter_max_count = pll.m_taps[0].m_max_count;
    for (int p = 1; p <= PLL_VCO_POST_SCALE_MAX; ++p) {
        PLL::m_default_vco_min_period[p] = pll.m_vco_min_period[p];
        PLL::m_default_vco_max_period[p] = pll.m_vco_max_period[p];
        PLL::m_default_vco_center_period[p] = pll.m_vco_center_period[p];
    }
    PLL::m_default_pfd_min_period = pll.m_pfd_min_period;
    PLL::m_default_pfd_max_period = pll.m_pfd_max_period;
    PLL::m_default_fin_min_period = pll.m_fin_min_period;
}

}  // namespace

bool PLL::init_family_info(const char* location)
{
    const HOST_STATE state;
    if (m_pll_manager != nullptr) {
        return true;
    }
    m_pll_manager = new PLL_MANAGER;
    return m_pll_manager != nullptr && m_pll_manager->read(location);
}

void PLL::delete_family_info()
{
    delete m_pll_manager;
    m_pll_manager = nullptr;
}

bool PLL::read_parameters(const char* family, PLL_TYPE type)
{
    const HOST_STATE state;
    PLL pll(1, PLL_MAX_TAPS);
    PLL_QUERY query;
    if (!check(m_pll_manager != nullptr, "m_pll_manager != NULL", SOURCE)) {
        return false;
    }
    query.m_family = family;
    query.m_part = nullptr;
    query.m_type = type_of(type);
    if (!m_pll_manager->init_pll(&pll, query)) {
        return false;
    }
    make_default(pll);
    return true;
}
