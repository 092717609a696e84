// The words that stand for values: names of types and counters, and flags.
#pragma once

#include "pll_info.h"

#include <cstddef>

namespace pll_internal {

// What a word counts as.
enum class PLL_FLAG
{
    IS_FALSE,
    IS_TRUE,
    UNKNOWN  // counts as false
};

// Whatever the case of its letters; a null word is an unknown one.
PLL_FLAG pll_find_flag(const char* word);
PLL_TYPE_ENUM pll_find_type(const char* name);
PLL_RECONFIG_TYPE_ENUM pll_find_reconfig_type(const char* name);
CDB_PLL_COUNTER_TYPE_ENUM pll_find_counter_type(const char* name);

}  // namespace pll_internal
