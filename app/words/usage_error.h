// A request that cannot be understood or lies outside what is legal; ends the program with exit
// status 2 and one line that names the argument and the legal range.
#pragma once

#include <stdexcept>
#include <string>

class USAGE_ERROR : public std::runtime_error
{
public:
    // "ARGUMENT: PROBLEM"
    USAGE_ERROR(const std::string& argument, const std::string& problem)
        : std::runtime_error(argument + ": " + problem)
    {
    }
};
