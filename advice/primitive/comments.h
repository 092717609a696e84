// What comments beside an instance claim about its clocks.
#pragma once

#include "advice/primitive/setting.h"

namespace advice {

// Notes the comments that name a frequency other than that of the output they stand beside, or one
// that is none of the instance's at all. A frequency is taken as exact as it is written.
void compare_comments(const INSTANCE& instance, const SHEET& sheet, PRIMITIVE_SETTING* setting);

}  // namespace advice
