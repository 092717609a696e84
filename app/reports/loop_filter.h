// The loop filter of an answer.
#pragma once

#include "app/request/request.h"

#include <string>

// Its components and what they achieve: by the formulas, or by the row of the device's table that
// was taken.
void append_loop_filter(const REQUEST& request, const ANSWER& answer, std::string* text);
