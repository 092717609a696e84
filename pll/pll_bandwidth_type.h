// How a loop bandwidth is asked for: the values of PLL_PROP::m_bandwidth_type.
#pragma once

enum BANDWIDTH_TYPE
{
    BANDWIDTH_HIGH,
    BANDWIDTH_MEDIUM,
    BANDWIDTH_LOW,
    BANDWIDTH_AUTO,
    BANDWIDTH_CUSTOM
};
