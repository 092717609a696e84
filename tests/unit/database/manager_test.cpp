// The records of the database and their lookups.
#include "error_guard.h"
#include "manager_builders.h"
#include "mem_alloc_sys.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

const char SOURCE[] = "pll_manager";

std::vector<std::string> listed_speed_grades(const PLL_FAMILY_INFO& family)
{
    return {family.m_listed_speed_grades,
            family.m_listed_speed_grades + family.m_number_of_listed_speed_grades};
}

TEST(Families, StartEmpty)
{
    const PLL_MANAGER manager;
    EXPECT_EQ(0, manager.get_number_of_families());
    EXPECT_EQ(nullptr, manager.m_families);
}

TEST(Families, AreCreatedWithoutPathPartsAndSpeedGrades)
{
    PLL_MANAGER manager;
    const PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    ASSERT_NE(nullptr, family);
    EXPECT_STREQ("Alpha", family->m_name);
    EXPECT_EQ(nullptr, family->m_path);
    EXPECT_EQ(nullptr, family->m_file_name);
    EXPECT_EQ(0, family->m_number_of_parts);
    EXPECT_EQ(nullptr, family->m_parts);
    EXPECT_EQ(0, family->m_number_of_speed_grades);
    EXPECT_EQ(0, family->m_number_of_listed_speed_grades);
    for (const PLL_BASIC_INFO& basic : family->m_basic_infos) {
        EXPECT_EQ(PLL_MAX_TAPS, basic.m_number_of_output_counters);
        EXPECT_EQ(0, basic.m_m_counter_max);
    }
}

TEST(Families, CopyTheirName)
{
    PLL_MANAGER manager;
    std::string name = "Alpha";
    manager.create_family_info(name.c_str());
    name = "gone!";
    EXPECT_STREQ("Alpha", manager.get_family(0));
}

TEST(Families, ThatDifferInCaseAreOneUnderTheFirstForm)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    EXPECT_EQ(family, manager.create_family_info("aLPHA"));
    EXPECT_EQ(1, manager.get_number_of_families());
    EXPECT_STREQ("Alpha", manager.get_family(0));
}

TEST(Families, StandInCreationOrderAndStayWhereTheyAre)
{
    PLL_MANAGER manager;
    std::vector<PLL_FAMILY_INFO*> families;
    for (int i = 0; i < 100; ++i) {
        families.push_back(manager.create_family_info(std::to_string(99 - i).c_str()));
    }
    ASSERT_EQ(100, manager.get_number_of_families());
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(std::to_string(99 - i), manager.get_family(i));
        EXPECT_EQ(families[static_cast<std::size_t>(i)], manager.m_families[i]);
        EXPECT_EQ(families[static_cast<std::size_t>(i)],
                  manager.create_family_info(std::to_string(99 - i).c_str()));
    }
}

TEST(Families, WithoutANameAreNotCreated)
{
    PLL_MANAGER manager;
    EXPECT_EQ(nullptr, manager.create_family_info(nullptr));
    EXPECT_EQ(0, manager.get_number_of_families());
}

TEST(Families, MayHaveAnEmptyName)
{
    PLL_MANAGER manager;
    EXPECT_NE(nullptr, manager.create_family_info(""));
    EXPECT_STREQ("", manager.get_family(0));
}

TEST(Families, AtABadIndexReportAndReadTheNearest)
{
    const char* const CONDITION = "index >= 0 && index < get_number_of_families()";
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    EXPECT_EQ(nullptr, manager.get_family(0));
    reports.expect_only(CONDITION, SOURCE);
    manager.create_family_info("Alpha");
    manager.create_family_info("Beta");
    EXPECT_STREQ("Alpha", manager.get_family(-1));
    reports.expect_only(CONDITION, SOURCE);
    EXPECT_STREQ("Beta", manager.get_family(2));
    reports.expect_only(CONDITION, SOURCE);
}

TEST(SpeedGrades, AreFoundWhateverTheirCaseOrAppended)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    const char* const grade = manager.create_speed_grade(family, "c6");
    EXPECT_STREQ("c6", grade);
    EXPECT_EQ(grade, manager.create_speed_grade(family, "C6"));
    EXPECT_STREQ("c7", manager.create_speed_grade(family, "c7"));
    ASSERT_EQ(2, family->m_number_of_speed_grades);
    EXPECT_EQ(grade, family->m_speed_grades[0]);
    EXPECT_STREQ("c7", family->m_speed_grades[1]);
}

TEST(SpeedGrades, WithoutFamilyOrNameAreReportedAndNull)
{
    const char* const CONDITION = "family_info != NULL && speed_grade != NULL";
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    EXPECT_EQ(nullptr, manager.create_speed_grade(nullptr, "6"));
    reports.expect_only(CONDITION, SOURCE);
    EXPECT_EQ(nullptr, manager.create_speed_grade(family, nullptr));
    reports.expect_only(CONDITION, SOURCE);
    EXPECT_EQ(0, family->m_number_of_speed_grades);
}

TEST(Parts, AreCreatedListedAndUnset)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    const PLL_PART_INFO* const part = manager.create_part_info(family, "P1", "6", FAST_PLL);
    ASSERT_NE(nullptr, part);
    EXPECT_STREQ("P1", part->m_name);
    ASSERT_EQ(1, family->m_number_of_speed_grades);
    EXPECT_EQ(family->m_speed_grades[0], part->m_speed_grade);
    EXPECT_FALSE(part->m_not_listed);
    EXPECT_EQ(FAST_PLL, part->m_type);
    EXPECT_EQ(PLL_UNSET_MINIMUM, part->m_timing_info.m_pfd_min);
}

TEST(Parts, OfOneNameAreOneRecordForEachType)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    PLL_PART_INFO* const part = manager.create_part_info(family, "P1", "6", FAST_PLL);
    EXPECT_EQ(part, manager.create_part_info(family, "p1", "6", FAST_PLL));
    EXPECT_NE(part, manager.create_part_info(family, "P1", "6", VESTRA_PLL));
    EXPECT_EQ(2, family->m_number_of_parts);
}

TEST(Parts, KeepTheirFirstSpeedGradeYetTheSecondIsAdded)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    PLL_PART_INFO* const part = manager.create_part_info(family, "P1", "6", FAST_PLL);
    EXPECT_EQ(part, manager.create_part_info(family, "P1", "7", FAST_PLL));
    EXPECT_STREQ("6", part->m_speed_grade);
    ASSERT_EQ(2, family->m_number_of_speed_grades);
    EXPECT_STREQ("7", family->m_speed_grades[1]);
}

TEST(Parts, WithANullArgumentAreReportedAndNotCreated)
{
    const char* const CONDITION =
        "family_info != NULL && part != NULL && speed_grade != NULL && pll_type != PLL_TYPE_MAX";
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    EXPECT_EQ(nullptr, manager.create_part_info(nullptr, "P1", "6", FAST_PLL));
    reports.expect_only(CONDITION, SOURCE);
    EXPECT_EQ(nullptr, manager.create_part_info(family, nullptr, "6", FAST_PLL));
    reports.expect_only(CONDITION, SOURCE);
    EXPECT_EQ(nullptr, manager.create_part_info(family, "P1", nullptr, FAST_PLL));
    reports.expect_only(CONDITION, SOURCE);
    EXPECT_EQ(0, family->m_number_of_parts);
    EXPECT_EQ(0, family->m_number_of_speed_grades);
}

TEST(Parts, WithoutATypeAreReportedAndCreated)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    const PLL_PART_INFO* const part = manager.create_part_info(family, "P1", "6", PLL_TYPE_MAX);
    reports.expect_only(
        "family_info != NULL && part != NULL && speed_grade != NULL && pll_type != PLL_TYPE_MAX",
        SOURCE);
    ASSERT_NE(nullptr, part);
    EXPECT_EQ(PLL_TYPE_MAX, part->m_type);
}

TEST(Parts, AreFoundAmongManyAndStayWhereTheyAre)
{
    const int MANY = 3000;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    std::vector<PLL_PART_INFO*> parts;
    for (int i = 0; i < MANY; ++i) {
        const std::string name = "part" + std::to_string(i);
        const std::string grade = "grade" + std::to_string(i % 500);
        parts.push_back(manager.create_part_info(family, name.c_str(), grade.c_str(), FAST_PLL));
    }
    ASSERT_EQ(MANY, family->m_number_of_parts);
    ASSERT_EQ(500, family->m_number_of_speed_grades);
    for (int i = 0; i < MANY; ++i) {
        const std::string name = "PART" + std::to_string(i);
        PLL_PART_INFO* const part = parts[static_cast<std::size_t>(i)];
        EXPECT_EQ(part, family->m_parts[i]);
        EXPECT_EQ(part, manager.create_part_info(family, name.c_str(), "GRADE0", FAST_PLL));
        EXPECT_EQ("grade" + std::to_string(i % 500), part->m_speed_grade);
    }
    manager.create_listed_speed_grades(family);
    EXPECT_EQ(500, family->m_number_of_listed_speed_grades);
}

// A host may fill in the public lists itself; lookups find its entries and go on behind them.
TEST(Lists, ThatAHostFilledInAreFound)
{
    PLL_MANAGER manager;
    fill_by_hand(&manager, 20);
    PLL_FAMILY_INFO* const first = manager.m_families[0];
    EXPECT_EQ(first, manager.create_family_info("F0"));
    EXPECT_EQ(manager.m_families[19], manager.create_family_info("f19"));
    EXPECT_EQ(first->m_speed_grades[13], manager.create_speed_grade(first, "G13"));
    EXPECT_EQ(first->m_parts[17], manager.create_part_info(first, "P17", "g3", FAST_PLL));
    EXPECT_EQ(20, manager.m_number_of_families);
    EXPECT_EQ(20, first->m_number_of_speed_grades);
    EXPECT_EQ(20, first->m_number_of_parts);

    const PLL_FAMILY_INFO* const family = manager.create_family_info("new");
    const char* const grade = manager.create_speed_grade(first, "new");
    const PLL_PART_INFO* const part = manager.create_part_info(first, "p0", "g0", VESTRA_PLL);
    EXPECT_EQ(family, manager.m_families[20]);
    EXPECT_EQ(grade, first->m_speed_grades[20]);
    EXPECT_EQ(part, first->m_parts[20]);
    EXPECT_STREQ("f0", manager.get_family(0));
    EXPECT_STREQ("g19", first->m_speed_grades[19]);
    EXPECT_STREQ("p19", first->m_parts[19]->m_name);
}

TEST(ListedSpeedGrades, AreThoseOfListedPartsInTheOrderOfTheParts)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    manager.create_speed_grade(family, "8");
    manager.create_part_info(family, "P1", "6", FAST_PLL);
    manager.create_part_info(family, "P2", "7", FAST_PLL);
    manager.create_part_info(family, "P3", "6", FAST_PLL);
    manager.create_part_info(family, "P4", "5", FAST_PLL)->m_not_listed = true;
    manager.create_listed_speed_grades(family);
    EXPECT_EQ((std::vector<std::string>{"6", "7"}), listed_speed_grades(*family));
    EXPECT_EQ(family->m_parts[0]->m_speed_grade, family->m_listed_speed_grades[0]);
}

TEST(ListedSpeedGrades, AreNoneWhenNoPartIsListed)
{
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    PLL_PART_INFO* const part = manager.create_part_info(family, "P1", "6", FAST_PLL);
    manager.create_listed_speed_grades(family);
    EXPECT_EQ(1, family->m_number_of_listed_speed_grades);
    part->m_not_listed = true;
    manager.create_listed_speed_grades(family);
    EXPECT_EQ(0, family->m_number_of_listed_speed_grades);
    EXPECT_EQ(nullptr, family->m_listed_speed_grades);
}

TEST(ListedSpeedGrades, OfNoFamilyAreReported)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    manager.create_listed_speed_grades(nullptr);
    reports.expect_only("family_info != NULL", SOURCE);
}

TEST(ListedSpeedGrades, ThatTheFamilyDoesNotHaveAreReported)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    manager.create_part_info(family, "P1", "6", FAST_PLL);
    manager.create_part_info(family, "P2", "6", FAST_PLL)->m_speed_grade = "foreign";
    manager.create_listed_speed_grades(family);
    reports.expect_only("number_of_listed_speed_grades < family_info->m_number_of_speed_grades",
                        SOURCE);
    EXPECT_EQ((std::vector<std::string>{"6", "foreign"}), listed_speed_grades(*family));
}

TEST(SpeedGradeQueries, LoadTheFamily)
{
    DATABASE database;
    database.write("ddb_pll_path.txt", "Fam sub family.txt\n");
    database.write("family.txt", "");
    database.m_manager.read(database.m_dir.path().c_str());
    EXPECT_EQ(0, database.m_manager.get_number_of_speed_grades("Fam"));
    EXPECT_EQ(nullptr, database.m_manager.get_speed_grade("Fam", 0));
    EXPECT_EQ(0, database.m_manager.get_number_of_listed_speed_grades("Fam"));
    EXPECT_EQ(nullptr, database.m_manager.get_listed_speed_grade("Fam", 0));

    database.write("ddb_pll_path.txt", "Fam . family.txt\n");
    database.write("family.txt", PART_HEAD + "speed_grade 7\npart P2\nnot_listed yes\n");
    database.m_manager.read(database.m_dir.path().c_str());
    EXPECT_EQ(2, database.m_manager.get_number_of_speed_grades("fam"));
    EXPECT_STREQ("7", database.m_manager.get_speed_grade("Fam", 1));
    EXPECT_EQ(1, database.m_manager.get_number_of_listed_speed_grades("fam"));
    EXPECT_STREQ("6", database.m_manager.get_listed_speed_grade("Fam", 0));
}

TEST(SpeedGradeQueries, AtABadIndexReportAndReadTheNearest)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    PLL_FAMILY_INFO* const family = manager.create_family_info("Alpha");
    manager.create_part_info(family, "P1", "6", FAST_PLL);
    manager.create_part_info(family, "P2", "7", FAST_PLL);
    EXPECT_STREQ("6", manager.get_speed_grade("Alpha", -1));
    EXPECT_STREQ("7", manager.get_speed_grade("Alpha", 2));
    reports.expect_only("index >= 0 && index < family_info->m_number_of_speed_grades", SOURCE, 2);
    EXPECT_EQ(nullptr, manager.get_listed_speed_grade("Alpha", 0));
    manager.create_listed_speed_grades(family);
    EXPECT_STREQ("6", manager.get_listed_speed_grade("Alpha", -7));
    EXPECT_STREQ("7", manager.get_listed_speed_grade("Alpha", 99));
    reports.expect_only("index >= 0 && index < family_info->m_number_of_listed_speed_grades",
                        SOURCE, 3);
}

TEST(DatabaseMemory, OfADatabaseIsBookedOnItsAccountAndGivenBack)
{
    const std::size_t before = MEM_MANAGER::get_live_blocks(nullptr);
    {
        std::unique_ptr<PLL_MANAGER> manager(new PLL_MANAGER);
        EXPECT_LT(0U, MEM_MANAGER::get_live_blocks(SOURCE));
        PLL_FAMILY_INFO* const family = manager->create_family_info("Alpha");
        manager->create_part_info(family, "P1", "6", FAST_PLL);
        manager->create_listed_speed_grades(family);
        EXPECT_LT(before + 5, MEM_MANAGER::get_live_blocks(nullptr));
    }
    EXPECT_EQ(before, MEM_MANAGER::get_live_blocks(nullptr));
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks(SOURCE));
}

}  // namespace
