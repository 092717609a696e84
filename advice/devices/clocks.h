// Phase and duty cycle of one clock on a counter of a device.
#pragma once

#include "advice/devices/device_answer.h"
#include "advice/devices/plan.h"

namespace advice {

// Fills phase, step, delay and duty cycle of a clock whose counts are known. The one that is fed
// back stays in phase with the input, wherever its counter starts.
void place_clock(const OUTPUT_WISH& wish, const SHEET& sheet, const PLAN_CLOCK& plan,
                 const std::string& primitive, bool is_fed_back, DEVICE_CLOCK* clock);

// The distance between two phases in degrees, at most half a turn.
RATIONAL phase_distance(const RATIONAL& a, const RATIONAL& b);

}  // namespace advice
