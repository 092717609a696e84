// Standard output, whose failures are told.
#pragma once

#include <string>

enum class WRITE_RESULT
{
    DONE,
    READER_GONE,
    FAILED
};

// Makes a closed pipe an error of the write instead of the end of the process.
void keep_running_without_reader();

// Writes all of the text. A reader that went away is no failure; for one, `reason` receives why.
WRITE_RESULT write_output(const std::string& text, std::string* reason);
