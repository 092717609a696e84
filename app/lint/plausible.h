// What values of a keyword can be meant, in words.
#pragma once

#include "app/source/keyword_table.h"

#include <string>

// "1 to 10", "1 and up".
std::string describe_range(const KEYWORD& keyword);

// The message on a value that cannot be meant in the unit of its keyword, with what it would be in
// another one.
std::string doubt_unit(const KEYWORD& keyword, double value);

// A number without zeros at its end: "0.005", "2000".
std::string short_number(double value);
