// The loop filter: what a bandwidth asks of its components, and their choice.
#pragma once

#include "pll.h"

namespace pll_internal {

// The charge-pump current times resistor that `bandwidth` asks for at `m` and a VCO gain.
int current_resistor_product(int m, double bandwidth, double vco_gain);

// Chooses resistor and charge-pump current for a custom bandwidth, raising M and N by a common
// factor when the current would be too small.
void synthesize_loop_filter(PLL* pll, int fin_period, double bandwidth, bool spread);

}  // namespace pll_internal
