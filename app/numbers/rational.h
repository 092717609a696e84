// The fractions of advice/, under their short names.
#pragma once

#include "advice/numbers/rational.h"

using advice::power_of_ten;
using advice::RATIONAL;
using advice::WIDE_INT;
