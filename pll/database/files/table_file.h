// The reader of bandwidth settings table files.
#pragma once

#include "pll_info.h"

class PLL_FAMILY_INFO;
class PLL_READ_OBSERVER;

// In the place of a file name: there is no table.
inline constexpr char UNUSED_TABLE_FILE[] = "unused";

// Reads the table file of every entry into the family; false when one of them fails. `observer`,
// which may be null, hears what the reader sees.
bool read_table_files(PLL_FAMILY_INFO* family, const PLL_TYPE_BANDWIDTH_FILE_LIST& files,
                      PLL_READ_OBSERVER* observer);
