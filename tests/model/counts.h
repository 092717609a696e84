// How often what came up in a comparison.
#pragma once

#include <cstdint>
#include <map>
#include <string>

typedef std::map<std::string, std::uint64_t> COUNTS;
