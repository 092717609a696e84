// What a synthesis writes to "debug.log" while debugging is on.
#include "search/debug_log.h"

namespace pll_internal {

void SYNTHESIS_TRACE::request(const SEARCH_LIMITS& limits, const PLL_PROP& request)
{
    const TRACE_RECORD record(&m_file);
    m_file.get() << "Need to synthesize PLL with the following properties:" << std::endl;
    m_file.get() << "M limit " << limits.m_m_max << " N limit " << limits.m_n_max << std::endl;
    request.dump(m_file.get(), true, false);
}

void SYNTHESIS_TRACE::candidate(const PLL& candidate)
{
    const TRACE_RECORD record(&m_file);
    candidate.dump(m_file.get(), true, false);
}

void SYNTHESIS_TRACE::new_best()
{
    m_file.get() << "^-- new best configutation" << std::endl;
}

void SYNTHESIS_TRACE::user_view(const PLL& candidate, const PLL_PROP& request)
{
    const TRACE_RECORD record(&m_file);
    m_file.get() << "Best Candidate - user view:" << std::endl;
    PLL_PROP view(candidate.m_user_taps_count);
    view.set_properties_from_internals(candidate);
    view.m_fin_period = request.m_fin_period;
    view.dump(m_file.get(), false, false);
}

void SYNTHESIS_TRACE::best(const PLL& pll)
{
    const TRACE_RECORD record(&m_file);
    m_file.get() << "----------Best Candidate --------------------\n";
    pll.dump(m_file.get(), true, false);
}

}  // namespace pll_internal
