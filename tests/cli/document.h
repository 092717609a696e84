// What documents show.
#pragma once

#include <string>
#include <vector>

inline const std::string DOCUMENT_INDENT = "    ";  // of transcripts

// The indented lines from `first` on, without their indent and the empty lines behind them.
std::string block_from(const std::vector<std::string>& lines, std::size_t first);
