// Databases for tests.
#pragma once

#include "pll_manager.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <string>

// A directory with files of a family, and a manager that reads them.
class DATABASE
{
public:
    // Reads `text` as a family file.
    bool read(const std::string& text)
    {
        write("family.txt", text);
        return m_manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt");
    }

    void write(const std::string& name, const std::string& text)
    {
        write_file(m_dir.file(name), text);
    }

    // A family that `read` created; a new one fails the test.
    PLL_FAMILY_INFO& family(const char* name)
    {
        const int number_of_families = m_manager.get_number_of_families();
        PLL_FAMILY_INFO* const family = m_manager.create_family_info(name);
        EXPECT_EQ(number_of_families, m_manager.get_number_of_families()) << name;
        return *family;
    }

    PLL_BASIC_INFO& basic(const char* family_name = "Fam", PLL_TYPE_ENUM type = ENHANCED_PLL)
    {
        return family(family_name).m_basic_infos[type];
    }

    PLL_TIMING_INFO& timing(int part = 0) { return family("Fam").m_parts[part]->m_timing_info; }

    TEMP_DIR m_dir;
    PLL_MANAGER m_manager;
};

// What stands before statements on a PLL type and on a part.
inline const std::string TYPE_HEAD = "family Fam\npll ENHANCED_PLL\n";
inline const std::string PART_HEAD = TYPE_HEAD + "speed_grade 6\npart P1\n";
