// The kinds of bandwidth that a request can ask for: PLL_PROP::m_bandwidth_type.
#pragma once

namespace pll_internal {

// How a loop bandwidth is asked for, after presets have been turned into numbers.
enum BANDWIDTH_TYPE
{
    BANDWIDTH_HIGH,
    BANDWIDTH_MEDIUM,
    BANDWIDTH_LOW,
    BANDWIDTH_AUTO,
    BANDWIDTH_CUSTOM
};

}  // namespace pll_internal
