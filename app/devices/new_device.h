// A device family to start from.
#pragma once

#include <optional>
#include <string>

// What the command line holds, unread.
struct NEW_DEVICE_WORDS
{
    std::string m_name;
    std::optional<std::string> m_directory;
};

// Writes a family file with comments and the path file of a database beside it, into a directory
// that is made for them. Returns what to say of it. Throws a USAGE_ERROR for a name that no path
// file can hold and for a directory that holds a database already, an INPUT_ERROR when a file
// cannot be written.
std::string write_new_device(const NEW_DEVICE_WORDS& words);
