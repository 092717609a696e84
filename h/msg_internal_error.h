// Reporting of broken promises inside the library (never of bad input).
#pragma once

#include "pll_export.h"

class PLL_API MSG_INTERNAL_ERROR
{
public:
    // Hears of one internal error. The texts live as long as the process; `context` is what was
    // given to `set_handler`. The handler must return: the library goes on with its next step.
    typedef void (*HANDLER)(const char* condition, const char* component, const char* source,
                            int line, void* context);

    // Passes the four items to the host's handler and returns to the caller.
    static void report(const char* condition, const char* component, const char* source, int line);

    // Installs the host's handler; a null handler restores the default, which writes nothing
    // anywhere. `context` stays the host's.
    static void set_handler(HANDLER handler, void* context);

    // Reports since the process started, whatever the handler.
    static unsigned long get_report_count();
};
