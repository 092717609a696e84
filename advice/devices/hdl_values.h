// Values of the parameters of a primitive.
#pragma once

#include "advice/devices/device_answer.h"

#include <string>

namespace advice {

// The value that a parameter has for an answer: digits, in binary for bits, a text for strings.
std::string hdl_value(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer,
                      const PARAMETER& parameter);

// Decimals where six are enough, none more than needed; else a fraction.
std::string format_decimal(const RATIONAL& value);

// To the Hz, for what takes decimals only.
RATIONAL rounded_megahertz(const RATIONAL& value);

}  // namespace advice
