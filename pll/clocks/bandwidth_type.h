// The kinds of bandwidth that a request can ask for: PLL_PROP::m_bandwidth_type.
#pragma once

namespace pll_internal {

// How a loop bandwidth is asked for, after presets have been turned into numbers.
//
// An int in the interface, since hosts store it: any other value can come in and is reported where
// it is used. The first three are presets, which a device gives a meaning in Hz.
enum BANDWIDTH_TYPE
{
    BANDWIDTH_HIGH,
    BANDWIDTH_MEDIUM,
    BANDWIDTH_LOW,
    // Takes whatever the counters make, and ends a search early.
    BANDWIDTH_AUTO,
    // In Hz, as the request says.
    BANDWIDTH_CUSTOM
};

}  // namespace pll_internal
