#include "internal_errors.h"

#include "msg_internal_error.h"

#include <cstdio>

namespace {

void write_report(const char* condition, const char* component, const char* source, int line, void*)
{
    std::fprintf(stderr, "pllcalc: internal error: %s (component %s, source %s, line %d)\n",
                 condition, component, source, line);
}

}  // namespace

void watch_internal_errors()
{
    MSG_INTERNAL_ERROR::set_handler(write_report, nullptr);
}

bool had_internal_errors()
{
    return MSG_INTERNAL_ERROR::get_report_count() != 0;
}
