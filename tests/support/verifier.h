// Judges a result of the synthesis from the definitions alone: what a success promises, computed
// from the counters themselves, with none of the library's operations.
#pragma once

#include "pll.h"
#include "pll_prop.h"

#include <string>
#include <vector>

struct VERDICT
{
    std::vector<std::string> m_objections;  // promises that are broken
    std::vector<std::string> m_remarks;     // wishes that are missed, which a success may do
};

// Holds `result` against the request and the limits of `before`, the PLL as it was before the
// synthesis. The component lists shared by all PLLs must still be those of the synthesis.
VERDICT verify_result(const PLL_PROP& request, const PLL& before, const PLL& result);
