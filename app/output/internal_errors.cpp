#include "app/output/internal_errors.h"

#include "msg_internal_error.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string_view>

namespace {

// The promises that the values of a database can break.
const std::string_view CONDITIONS_OF_DATABASES[] = {
    "bandwidth_setting->m_m < bandwidth_settings_table_size",
    "vco_post_scale <= PLL_VCO_POST_SCALE_MAX",
    "m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX",
};

bool has_written = false;
bool has_named_cause = false;

bool is_of_database(std::string_view condition)
{
    const auto* const end = std::end(CONDITIONS_OF_DATABASES);
    return std::find(std::begin(CONDITIONS_OF_DATABASES), end, condition) != end;
}

// The first report that a database causes is followed by who knows the place.
void write_report(const char* condition, const char* component, const char* source, int line, void*)
{
    has_written = true;
    std::fprintf(stderr, "pllcalc: internal error: %s (component %s, source %s, line %d)\n",
                 condition, component, source, line);
    if (is_of_database(condition) && !has_named_cause) {
        has_named_cause = true;
        std::fputs("pllcalc: a value of the database is the cause; see pllcalc lint\n", stderr);
    }
}

void write_other_report(const char* condition, const char* component, const char* source, int line,
                        void* context)
{
    if (!is_of_database(condition)) {
        write_report(condition, component, source, line, context);
    }
}

}  // namespace

void watch_internal_errors()
{
    MSG_INTERNAL_ERROR::set_handler(write_report, nullptr);
}

bool had_internal_errors()
{
    return has_written;
}

DATABASE_REPORTS::DATABASE_REPORTS()
{
    MSG_INTERNAL_ERROR::set_handler(write_other_report, nullptr);
}

DATABASE_REPORTS::~DATABASE_REPORTS()
{
    watch_internal_errors();
}
