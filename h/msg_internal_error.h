// Reporting of broken promises inside the library (never of bad input).
#pragma once

#include "pll_export.h"

//
// A promise can be broken by the library itself, or by a host that sets a member to what it cannot
// be. The operation that finds it goes on with something harmless, so a report is all that shows
// it: tests install a handler that fails, hosts one that logs.
//
//   MSG_INTERNAL_ERROR::set_handler(log_to_file, &file);
//
// One handler serves the whole process. Single-threaded, like the whole library.
class PLL_API MSG_INTERNAL_ERROR
{
public:
    // Hears of one internal error. The texts live as long as the process; `context` is what was
    // given to `set_handler`. The handler must return: the library goes on with its next step.
    typedef void (*HANDLER)(const char* condition, const char* component, const char* source,
                            int line, void* context);

    // Passes the four items to the host's handler and returns to the caller. `condition` is what
    // did not hold, word for word; `component` is "PLL"; `source` the area, such as "pll_util";
    // `line` where in its sources, which changes from version to version.
    static void report(const char* condition, const char* component, const char* source, int line);

    // Installs the host's handler; a null handler restores the default, which writes nothing
    // anywhere. `context` stays the host's.
    static void set_handler(HANDLER handler, void* context);

    // Reports since the process started, whatever the handler.
    static unsigned long get_report_count();
};
