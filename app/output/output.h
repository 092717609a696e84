// Standard output, whose failures are told.
#pragma once

#include <string>
#include <string_view>

enum class WRITE_RESULT
{
    DONE,
    READER_GONE,
    FAILED
};

// Makes a closed pipe an error of the write instead of the end of the process.
void keep_running_without_reader();

// Text that is written while it comes, in large pieces.
class OUTPUT_STREAM
{
public:
    void append(std::string_view text);

    // Writes what is kept back. For a failure, now or before, `reason` receives why.
    WRITE_RESULT finish(std::string* reason);

private:
    void write();

    std::string m_text;
    WRITE_RESULT m_result = WRITE_RESULT::DONE;
    std::string m_reason;
};

// Writes all of the text. A reader that went away is no failure; for one, `reason` receives why.
WRITE_RESULT write_output(const std::string& text, std::string* reason);
