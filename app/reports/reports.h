// What the commands print, as texts of at most 100 columns.
#pragma once

#include "app/devices/device.h"
#include "app/output/record_list.h"
#include "app/request/request.h"

#include <optional>
#include <string>
#include <vector>

enum class DUMP_FORM
{
    FULL,
    COMPACT
};
// The answer to a request: whether it is met, settings, and what they achieve.
std::string report_synthesis(const REQUEST& request, const ANSWER& answer);

// "MET" or "NOT MET" with the reasons.
std::string report_verdict(const REQUEST& request, const ANSWER& answer);

// One line for scripts: "MET n=1 m=22 post_scale=1 vco=594MHz pix=148.5MHz,exact".
std::string report_summary(const REQUEST& request, const ANSWER& answer);

// How near an answer runs to each limit.
void append_margins(const REQUEST& request, const ANSWER& answer, std::string* text);

// The limits in force, with where each comes from.
std::string report_limits(const advice::LIMITS& limits, LIST_FORM form);

// The legal phase steps and duty cycles around the answer, for each output.
std::string report_steps(const REQUEST& request, const ANSWER& answer);

// The library's own reports of request, settings and achieved properties.
std::string report_dump(const REQUEST& request, const ANSWER& answer, DUMP_FORM form);

// All VCO ratios that the limits allow from an input clock; `count` receives how many.
std::string report_ratios(const INPUT_CLOCK& input, const advice::LIMITS& limits, LIST_FORM form,
                          int* count);

// The parts of a database, or of one family of it, with their ranges. Families that cannot be read
// are left out and told in `failures`; the one asked for by name throws as DATABASE does.
std::string report_devices(const DEVICE_WORDS& words, LIST_FORM form,
                           std::vector<std::string>* failures);

// The keywords of family files, or all about one of them. Throws a USAGE_ERROR for an unknown one.
std::string report_keywords(const std::string& word, LIST_FORM form);

// What two databases say differently, value by value; `count` receives how much.
std::string report_database_diff(const std::string& before, const std::string& after,
                                 LIST_FORM form, int* count);

// The statement that sets each value of a device in the files of `directory`, and what it
// overwrote; as JSON unless a table is wanted.
std::string report_value_origins(const DEVICE& device, const std::string& directory,
                                 LIST_FORM form);

// All that the database knows of a device.
std::string report_device(const DEVICE& device, LIST_FORM form);

// The bandwidth settings table of a device, or its rows for one effective M. `findings` receives
// the lines of the library's check.
std::string report_table(const DEVICE& device, std::optional<int> effective_m, LIST_FORM form,
                         std::vector<std::string>* findings);

// For each M of the table, which bandwidths its rows give and how fast the PFD must run for them.
std::string report_table_coverage(const DEVICE& device, LIST_FORM form);

// The rows that an answer could have taken, their costs, and which it took.
std::string report_choices(const REQUEST& request, const ANSWER& answer, LIST_FORM form);

// The devices of a request and, where they are several, which of them set the limits that the
// answer meets. Empty without a device.
std::string report_origins(const REQUEST& request, const ANSWER& answer);

// The error values of the library with their texts.
std::string report_errors();
