// Reports of broken promises inside the library.
#pragma once

#include "msg_internal_error.h"

namespace pll_internal {

// Reports `condition` word for word and returns; the caller goes on with its next step.
inline void report_error(const char* condition, const char* source, int line = __builtin_LINE())
{
    MSG_INTERNAL_ERROR::report(condition, "PLL", source, line);
}

// Reports `condition` unless it holds. Returns whether it holds.
inline bool check(bool holds, const char* condition, const char* source,
                  int line = __builtin_LINE())
{
    if (!holds) {
        report_error(condition, source, line);
    }
    return holds;
}

}  // namespace pll_internal
