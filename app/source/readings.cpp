#include "app/source/readings.h"

std::uint32_t READINGS::add(const std::string& file)
{
    return add_named(file, READING_KIND::TOP, SOURCE_PLACE());
}

std::uint32_t READINGS::add_named(const std::string& file, READING_KIND kind,
                                  const SOURCE_PLACE& namer)
{
    const auto number = static_cast<std::uint32_t>(m_files.size());
    const auto [entry, is_new] = m_numbers.emplace(file, number);
    if (is_new) {
        m_files.push_back(file);
    }
    m_readings.push_back({entry->second, kind, namer});
    return static_cast<std::uint32_t>(m_readings.size() - 1);
}

bool READINGS::is_included(std::uint32_t reading) const
{
    return kind_of(reading) == READING_KIND::INCLUDED;
}

const std::string& READINGS::name_of(std::uint32_t reading) const
{
    return m_files[m_readings[reading].m_file];
}

const SOURCE_PLACE& READINGS::namer_of(std::uint32_t reading) const
{
    return m_readings[reading].m_namer;
}

SOURCE_PLACE seen_from(const READINGS& readings, std::uint32_t reading, const SOURCE_PLACE& place)
{
    SOURCE_PLACE seen = place;
    while (seen.m_reading != reading && readings.is_included(seen.m_reading)) {
        seen = readings.namer_of(seen.m_reading);
    }
    return seen.m_reading == reading ? seen : place;
}

std::size_t depth_of(const READINGS& readings, std::uint32_t reading)
{
    std::size_t depth = 1;
    for (; readings.is_included(reading); ++depth) {
        reading = readings.namer_of(reading).m_reading;
    }
    return depth;
}
