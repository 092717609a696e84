// Reports of broken promises inside the library.
#pragma once

#include "msg_internal_error.h"

namespace pll_internal {

// Reports `condition` word for word and returns; the caller goes on with its next step.
//
//   source  the name of the area, such as "pll_util": hosts filter by it
//   line    of the caller, who need not give it
inline void report_error(const char* condition, const char* source, int line = __builtin_LINE())
{
    MSG_INTERNAL_ERROR::report(condition, "PLL", source, line);
}

// Reports `condition` unless it holds. Returns whether it holds.
//
// The texts are part of the interface, since hosts know conditions by them. So a check is written
// with its condition twice, as code and as text, instead of by a macro that spells the code.
inline bool check(bool holds, const char* condition, const char* source,
                  int line = __builtin_LINE())
{
    if (!holds) {
        report_error(condition, source, line);
    }
    return holds;
}

}  // namespace pll_internal
