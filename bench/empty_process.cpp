// What a process costs that links as pllcalc does and does nothing.
#include "pll.h"

int main()
{
    return PLL::m_id_count;
}
