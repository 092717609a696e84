// Input that cannot be read or used, such as a database; ends the program with exit status 4 and
// one line that says which and why.
#pragma once

#include <stdexcept>
#include <string>

class INPUT_ERROR : public std::runtime_error
{
public:
    explicit INPUT_ERROR(const std::string& text) : std::runtime_error(text) {}
};
