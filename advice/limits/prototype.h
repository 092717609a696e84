// Limits on both sides of the library: as lists of exact values, and as what a PLL searches within.
#pragma once

#include "advice/limits/limits.h"

#include "pll.h"

#include <vector>

namespace advice {

// A PLL that looks like those of a device, and the components that loop filters are built of, which
// all PLLs of a process share.
struct LIMITS::PROTOTYPE
{
    PROTOTYPE();
    ~PROTOTYPE() = default;
    PROTOTYPE(const PROTOTYPE&) = delete;
    PROTOTYPE& operator=(const PROTOTYPE& other);

    void take_built_in();
    // False when the query finds nothing or memory is exhausted.
    bool take_device(PLL_MANAGER* manager, const PLL_QUERY& query);
    // Gives limits and components to a PLL.
    void give_to(PLL* pll) const;

    PLL m_pll;

private:
    void keep_components();

    std::vector<int> m_currents;
    std::vector<int> m_resistors;
    std::vector<int> m_capacitors;
};

// The limits that a fresh PLL has, and those that a device's records give.
std::vector<LIMIT> list_built_in(const PLL& pll);
std::vector<LIMIT> list_device(const PLL& pll);

// Makes a PLL search within a limit, no narrower than it is: periods in whole ps. A limit that the
// search does not know changes nothing.
void widen_to(const LIMIT& limit, PLL* pll);

}  // namespace advice
