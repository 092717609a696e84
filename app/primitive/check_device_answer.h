// The check of an answer of `synth --device` in JSON: its wishes, the limits of its device, and
// every figure that it states.
#pragma once

#include "advice/primitive/judge.h"
#include "app/json/compare.h"
#include "app/json/place.h"

#include <string>
#include <vector>

struct CHECKED_DEVICE_ANSWER
{
    bool m_has_setting = false;                  // the answer holds one
    std::vector<JSON_DIFFERENCE> m_differences;  // what is broken or untrue; none: it is clean
    std::string m_description;                   // what the setting does, for people
};

// Whether a document is such an answer.
bool is_device_answer(const JSON& document);

// Checks an answer for a device. `is_other`: it takes the place of the one that the answer names.
// Throws a USAGE_ERROR for what is no answer.
CHECKED_DEVICE_ANSWER check_device_answer(const PLACE& answer,
                                          const advice::CANDIDATE_DEVICE& device, bool is_other);
