// The path file of a database, and the families that it names.
#pragma once

#include "app/lint/messages.h"
#include "app/source/name_index.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

// A family as the path file names it.
struct PATH_FAMILY
{
    std::string_view m_name;
    SOURCE_PLACE m_place;         // of the line that counts: the last
    SOURCE_PLACE m_folder_place;  // of its words, where they stand
    SOURCE_PLACE m_file_place;
    std::string_view m_folder;  // as it is written
    std::string_view m_file;    // empty: none
    bool m_has_file = false;
};

class PATH_FILE_READER
{
public:
    PATH_FILE_READER(READINGS* readings, LINT_MESSAGES* messages)
        : m_readings(readings), m_messages(messages)
    {
    }

    // Reads the path file of a directory; false when it cannot be opened.
    bool read(const std::string& directory);

    // In the order of the file.
    std::deque<PATH_FAMILY>& families() { return m_families; }

    // NO_RECORD: the path file does not name it.
    std::uint32_t find(std::string_view name);

private:
    void read_line(const TEXT_LINE& line);
    std::uint32_t find_or_add(std::string_view name, std::uint32_t next);

    READINGS* m_readings;
    LINT_MESSAGES* m_messages;
    std::uint32_t m_reading = 0;
    NAME_KEEPER m_names;
    NAME_INDEX m_index;
    std::deque<PATH_FAMILY> m_families;
};
