// What a JSON document says, held against what it should say.
#pragma once

#include "app/json/json.h"

#include <string>
#include <vector>

// A value that is not what it should be.
struct JSON_DIFFERENCE
{
    std::string m_place;  // "outputs[0].phase_deg"
    std::string m_text;   // "is 91.0; it should be 90.0"
};

// Appends a difference for every value of `said` that `right` has too and that differs. Numbers are
// the same when they agree to twelve digits. Keys that only one of them has are no difference,
// since later versions add keys; lists of different lengths are.
void compare_documents(const std::string& place, const JSON& said, const JSON& right,
                       std::vector<JSON_DIFFERENCE>* differences);
