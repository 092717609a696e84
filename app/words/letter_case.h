// Names and units are the same in any case: the letters A to Z, whatever the locale.
#pragma once

#include <string>
#include <string_view>

std::string lower_case(std::string_view text);

bool equal_but_for_case(std::string_view a, std::string_view b);
