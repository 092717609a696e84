// Databases for tests.
#pragma once

#include "mem_alloc_sys.h"
#include "pll_manager.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <new>
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

// ---- Lists that a host fills in by hand

template <class T>
T* allocate_for_database(std::size_t count)
{
    return static_cast<T*>(
        MEM_MANAGER::new_wrapper(count * sizeof(T), MEM_TRACKER(), "pll_manager"));
}

inline char* name_for_database(const std::string& name)
{
    return std::strcpy(allocate_for_database<char>(name.size() + 1), name.c_str());
}

// Gives an empty database the families "f0", "f1", ... and the first of them the speed grades "g0",
// "g1", ... and the parts "p0", "p1", ... of the type FAST_PLL.
inline void fill_by_hand(PLL_MANAGER* manager, int count)
{
    const auto size = static_cast<std::size_t>(count);
    manager->m_families = allocate_for_database<PLL_FAMILY_INFO*>(size);
    for (int i = 0; i < count; ++i) {
        PLL_FAMILY_INFO* const family =
            new (allocate_for_database<PLL_FAMILY_INFO>(1)) PLL_FAMILY_INFO;
        family->m_name = name_for_database("f" + std::to_string(i));
        manager->m_families[manager->m_number_of_families++] = family;
    }
    PLL_FAMILY_INFO* const first = manager->m_families[0];
    first->m_speed_grades = allocate_for_database<char*>(size);
    first->m_parts = allocate_for_database<PLL_PART_INFO*>(size);
    for (int i = 0; i < count; ++i) {
        first->m_speed_grades[i] = name_for_database("g" + std::to_string(i));
        first->m_parts[i] = new (allocate_for_database<PLL_PART_INFO>(1)) PLL_PART_INFO;
        first->m_parts[i]->m_name = name_for_database("p" + std::to_string(i));
        first->m_parts[i]->m_speed_grade = first->m_speed_grades[i];
        first->m_parts[i]->m_type = FAST_PLL;
    }
    first->m_number_of_speed_grades = count;
    first->m_number_of_parts = count;
}
