// Files that are read.
#pragma once

#include <optional>
#include <string>

// Why a file cannot be read: the reason of the system, or that it is no regular file; none when it
// can be.
std::optional<std::string> why_unreadable(const std::string& file);

// A file name without what only leads back to itself, such as "a/./b".
std::string tidy_path(const std::string& path);

// Why the system refused: the error number of a read finding.
std::string describe_system_error(int error);
