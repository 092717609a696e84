// A locale that writes 1,5 for one and a half.
#pragma once

#include "temp_dir.h"

#include <string>

// A numeric locale whose decimal point is a comma, compiled for the test. While the object lives it
// is that of the process and, by LC_NUMERIC, of the processes that it starts.
class COMMA_LOCALE
{
public:
    COMMA_LOCALE();
    ~COMMA_LOCALE();
    COMMA_LOCALE(const COMMA_LOCALE&) = delete;
    COMMA_LOCALE& operator=(const COMMA_LOCALE&) = delete;

    // Fails the test unless it is the locale of the process.
    static void expect_unchanged();

private:
    TEMP_DIR m_dir;
    std::string m_previous;
};
