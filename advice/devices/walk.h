// The walk over all settings of a plan.
#pragma once

#include "advice/devices/device_answer.h"
#include "advice/devices/plan.h"

#include <cmath>

namespace advice {

// What settings are compared by; the first that differs decides, the smaller is better.
struct RANK
{
    bool m_is_missed = true;  // some wish
    bool m_is_detour = true;
    double m_error = HUGE_VAL;  // of the objective
    double m_cost = HUGE_VAL;   // frequencies nearly met, phases and duty cycles
    int m_order = 0;
    double m_n = 0.0;
    bool m_has_large_m = false;
    bool m_has_even_m = false;  // worth EVEN_M_BONUS
    double m_vco_period = 0.0;  // ps

    bool operator<(const RANK& other) const;
};

// Replaces the best answer and its rank by those of a setting of the plan that ranks before it.
void walk_plan(const DEVICE_REQUEST& request, const PLAN& plan, DEVICE_ANSWER* best, RANK* rank);

// Describes one setting of the plan. False where the plan has no such setting: its outputs, its
// feedback or the steps of its counters differ. Limits are not looked at.
bool take_setting(const DEVICE_REQUEST& request, const PLAN& plan, const DEVICE_SETTING& setting,
                  DEVICE_ANSWER* answer);

}  // namespace advice
