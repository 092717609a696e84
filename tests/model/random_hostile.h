// Values that no sane host gives, put into a random case.
#pragma once

#include "random_request.h"

// Overwrites a few fields of the PLL, the request or the device. Counter maxima stay small enough
// for a search of every pair.
void make_hostile(RANDOM_CASE* random_case, RANDOM* random);
