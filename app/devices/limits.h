// What the database says of a PLL, as rows: each with the keyword that sets it in a family file.
#pragma once

#include "pll_info.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

enum class LIMIT_KIND
{
    SMALLEST,  // a shortest period, so a highest frequency; of several devices the largest holds
    LARGEST,   // a longest period; of several devices the smallest holds
    AVERAGE    // over all records of all devices
};

// One limit of a part.
struct DEVICE_LIMIT
{
    const char* m_keyword;  // with its post-scale: "vco_min_post_scale 2"
    const char* m_unit;     // "ps", or of what is no period
    LIMIT_KIND m_kind;
    int (*m_read)(const PLL_TIMING_INFO& timing);
};

std::span<const DEVICE_LIMIT> list_limits();

// One value of a PLL type.
struct DEVICE_VALUE
{
    const char* m_section;
    std::string m_keyword;
    std::optional<std::string> m_value;  // none: the file leaves it at its default
    const char* m_unit;
};

// All values of a PLL type, section by section.
std::vector<DEVICE_VALUE> list_values(const PLL_BASIC_INFO& info);
