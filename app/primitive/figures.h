// Judged figures of device sheets, for people and for programs.
#pragma once

#include "advice/primitive/judge.h"
#include "app/json/json.h"

#include <string>
#include <vector>

constexpr int HZ_PER_MHZ = 1000000;

// "148.5", at most six digits behind the point, "~" in front when that is rounded.
std::string format_megahertz(const advice::RATIONAL& value);

// "pfd 6 MHz: sources differ: refused by 10 to 400 (litex), allowed by 3.125 to 400 (ecppll)"
std::string describe_figure(const advice::JUDGED_FIGURE& figure);

// A record for each bound of each figure.
JSON write_json_figures(const std::vector<advice::JUDGED_FIGURE>& figures);
