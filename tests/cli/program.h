// Runs the program as a process of its own.
#pragma once

#include "temp_dir.h"
#include "text.h"

#include <string>
#include <vector>

// Where its standard output leads.
enum class OUTPUT_TO
{
    CAPTURED,
    READER_GONE,
    FULL_DEVICE,
    CLOSED
};

struct RUN
{
    int m_status;  // exit status; negative: ended by that signal
    std::string m_output;
    std::string m_errors;
};

// Runs `program` in an empty directory. A run that cannot be started fails the test and gives
// status 127.
RUN run_program(const char* program, const std::vector<std::string>& arguments,
                OUTPUT_TO output = OUTPUT_TO::CAPTURED);

// Runs pllcalc with the words of a line, separated by single blanks. @DATA@ in them stands for the
// folder data of the tree.
RUN run_pllcalc(const std::string& line);

// The words of an example that is written for the top of the tree, for any folder.
std::string from_anywhere(std::string words);

// The text with @DATA@ for that folder.
std::string hide_data_folder(const std::string& text);
