// Whole files as texts.
#pragma once

#include <optional>
#include <string>

// The name that stands for the standard input.
inline constexpr char STANDARD_INPUT[] = "-";

// The text of a regular file, or of the standard input; none when it cannot be read, with the
// system's reason.
std::optional<std::string> read_text(const std::string& file, std::string* reason);
