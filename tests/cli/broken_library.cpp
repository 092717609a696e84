// A synthesis in the place of the library's that reports two internal errors. Requests of one
// output are met, others are not.

#include "msg_internal_error.h"
#include "pll.h"
#include "pll_prop.h"

bool PLL::synthesize(const PLL_PROP& request)
{
    MSG_INTERNAL_ERROR::report("first condition", "PLL", "pll", 11);
    MSG_INTERNAL_ERROR::report("second condition", "PLL", "pll_util", 22);
    m_taps[0].m_score = true;
    m_error = request.m_taps_count == 1 ? PLL_NO_ERROR : PLL_MULT_DIV_NOT_ACHIEVED;
    return request.m_taps_count == 1;
}
