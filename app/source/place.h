// Where something stands in the files of a database.
#pragma once

#include <cstdint>

struct SOURCE_PLACE
{
    std::uint32_t m_reading = 0;  // of READINGS
    std::uint32_t m_line = 1;     // from 1
    std::uint32_t m_column = 1;   // from 1, in characters
    std::uint32_t m_length = 1;   // likewise, at least 1
};
