// The files that were opened, and what had each of them opened: one file can be read several times,
// included from different places.
#pragma once

#include "app/source/place.h"

#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>
#include <vector>

// What a file is read for.
enum class READING_KIND : unsigned char
{
    TOP,
    INCLUDED,
    TABLE
};

class READINGS
{
public:
    static constexpr std::uint32_t NONE = std::numeric_limits<std::uint32_t>::max();

    // Notes that a file is read; gives the number of the reading.
    std::uint32_t add(const std::string& file);

    // Likewise for a file that the statement at `namer` names.
    std::uint32_t add_named(const std::string& file, READING_KIND kind, const SOURCE_PLACE& namer);

    // The number of the file of a reading: files are numbered as they are met.
    std::uint32_t file_of(std::uint32_t reading) const { return m_readings[reading].m_file; }
    const std::string& name_of(std::uint32_t reading) const;

    READING_KIND kind_of(std::uint32_t reading) const { return m_readings[reading].m_kind; }
    bool is_included(std::uint32_t reading) const;
    // Where a file that is not a TOP is named.
    const SOURCE_PLACE& namer_of(std::uint32_t reading) const;

    bool has_file(const std::string& file) const { return m_numbers.count(file) != 0; }
    std::size_t count_files() const { return m_files.size(); }

private:
    struct READING
    {
        std::uint32_t m_file;
        READING_KIND m_kind;
        SOURCE_PLACE m_namer;
    };

    std::vector<READING> m_readings;
    std::vector<std::string> m_files;
    std::unordered_map<std::string, std::uint32_t> m_numbers;  // of m_files
};

// The place in `reading` that led to `place`: where a file is included from there, or the place
// itself when no such file lies between.
SOURCE_PLACE seen_from(const READINGS& readings, std::uint32_t reading, const SOURCE_PLACE& place);

// How many files are open while a reading goes on: 1 of a file that is not included.
std::size_t depth_of(const READINGS& readings, std::uint32_t reading);
