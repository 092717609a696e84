// What a synthesis writes while debugging is on.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include "platform/append_file.h"
#include "search/limits.h"

namespace pll_internal {

// The trace of a synthesis; while closed, nothing is written.
class SYNTHESIS_TRACE
{
public:
    // Opens "debug.log" in the current directory for appending.
    void open() { m_file.open("debug.log"); }

    void request(const SEARCH_LIMITS& limits, const PLL_PROP& request);
    void candidate(const PLL& candidate);
    void new_best();
    void user_view(const PLL& candidate, const PLL_PROP& request);
    void best(const PLL& pll);

private:
    TRACE_STREAM m_file;
};

}  // namespace pll_internal
