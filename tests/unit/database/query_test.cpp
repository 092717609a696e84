// The query, and the order of its migration parts.
#include "error_guard.h"
#include "manager_builders.h"
#include "mem_alloc_sys.h"

#include <gtest/gtest.h>

namespace {

const char SOURCE[] = "pll_manager";

TEST(Query, StartsWithoutNamesAndType)
{
    const PLL_QUERY query;
    EXPECT_EQ(nullptr, query.m_family);
    EXPECT_EQ(PLL_TYPE_MAX, query.m_type);
    EXPECT_EQ(nullptr, query.m_part);
    EXPECT_EQ(nullptr, query.m_speed_grade);
    ASSERT_NE(nullptr, query.m_migration_info);
    EXPECT_EQ(0U, query.get_number_of_migration_parts());
}

TEST(Query, KeepsMigrationPartsInTheOrderAdded)
{
    PLL_QUERY query;
    query.add_migration_part("B", "b", "7");
    query.add_migration_part("A", nullptr, nullptr);
    EXPECT_EQ(2U, query.get_number_of_migration_parts());
    const char* family = nullptr;
    const char* part = nullptr;
    const char* grade = nullptr;
    query.get_migration_part_info(0, &family, &part, &grade);
    EXPECT_STREQ("B", family);
    EXPECT_STREQ("b", part);
    EXPECT_STREQ("7", grade);
    query.get_migration_part_info(1, &family, &part, &grade);
    EXPECT_STREQ("A", family);
    EXPECT_EQ(nullptr, part);
    EXPECT_EQ(nullptr, grade);
}

TEST(Query, ReportsAMigrationPartWithoutFamilyAndKeepsIt)
{
    EXPECTED_REPORTS reports;
    PLL_QUERY query;
    query.add_migration_part(nullptr, "p", "6");
    reports.expect_only("family != 0", SOURCE);
    EXPECT_EQ(1U, query.get_number_of_migration_parts());
}

TEST(Query, GivesNullsForABadIndexAfterAReport)
{
    EXPECTED_REPORTS reports;
    PLL_QUERY query;
    query.add_migration_part("A", "p", "6");
    const char* family = "x";
    const char* part = "x";
    const char* grade = "x";
    query.get_migration_part_info(1, &family, &part, &grade);
    reports.expect_only("index < this->m_migration_info->m_parts.size()", SOURCE);
    EXPECT_EQ(nullptr, family);
    EXPECT_EQ(nullptr, part);
    EXPECT_EQ(nullptr, grade);
}

TEST(Query, ToleratesNullOutputs)
{
    PLL_QUERY query;
    query.add_migration_part("A", "p", "6");
    const char* part = nullptr;
    query.get_migration_part_info(0, nullptr, &part, nullptr);
    EXPECT_STREQ("p", part);
}

TEST(QueryCopy, HasTheNamesAndItsOwnMigrationParts)
{
    PLL_QUERY query;
    query.m_family = "F";
    query.m_type = VESTRA_PLL;
    query.m_part = "p";
    query.m_speed_grade = "6";
    query.add_migration_part("A", "a", "7");
    PLL_QUERY copy(query);
    EXPECT_EQ(query.m_family, copy.m_family);
    EXPECT_EQ(VESTRA_PLL, copy.m_type);
    EXPECT_EQ(query.m_part, copy.m_part);
    EXPECT_EQ(query.m_speed_grade, copy.m_speed_grade);
    EXPECT_NE(query.m_migration_info, copy.m_migration_info);
    copy.add_migration_part("B", "b", "8");
    EXPECT_EQ(2U, copy.get_number_of_migration_parts());
    EXPECT_EQ(1U, query.get_number_of_migration_parts());
}

TEST(QueryAssignment, ReplacesTheMigrationParts)
{
    PLL_QUERY query;
    query.add_migration_part("A", "a", "7");
    PLL_QUERY target;
    target.add_migration_part("X", "x", "1");
    target.add_migration_part("Y", "y", "1");
    target = query;
    ASSERT_EQ(1U, target.get_number_of_migration_parts());
    const char* family = nullptr;
    target.get_migration_part_info(0, &family, nullptr, nullptr);
    EXPECT_STREQ("A", family);
}

TEST(QueryAssignment, ToItselfChangesNothing)
{
    PLL_QUERY query;
    query.m_family = "F";
    query.add_migration_part("A", "a", "7");
    const PLL_QUERY& same = query;
    query = same;
    EXPECT_STREQ("F", query.m_family);
    EXPECT_EQ(1U, query.get_number_of_migration_parts());
}

TEST(QueryAssignment, BooksThePartsOnTheDatabase)
{
    const std::size_t before = MEM_MANAGER::get_live_blocks(nullptr);
    const std::size_t before_here = MEM_MANAGER::get_live_blocks(SOURCE);
    PLL_QUERY query;
    query.add_migration_part("A", "a", "7");
    const PLL_QUERY copy(query);
    EXPECT_EQ(MEM_MANAGER::get_live_blocks(nullptr) - before,
              MEM_MANAGER::get_live_blocks(SOURCE) - before_here);
}

// ---- Order. Tables are given as sizes; below 0: none.

struct ORDER_CASE
{
    const char* m_name;
    PLL_MIGRATION_PART_INFO m_a;
    PLL_MIGRATION_PART_INFO m_b;
    bool m_a_first;
    bool m_b_first;
};

// A has a table of 5 groups, B of 3, C of 3, D none; all families are loaded.
void fill(PLL_MANAGER* manager)
{
    const struct
    {
        const char* m_name;
        int m_size;
    } FAMILIES[] = {{"A", 5}, {"B", 3}, {"C", 3}, {"D", -1}};
    for (const auto& row : FAMILIES) {
        PLL_FAMILY_INFO* const family = manager->create_family_info(row.m_name);
        manager->create_part_info(family, "p", "6", FAST_PLL);
        if (row.m_size >= 0) {
            PLL_BASIC_INFO& basic = family->m_basic_infos[FAST_PLL];
            basic.m_use_bandwidth_settings_table = true;
            basic.set_bandwidth_settings_table(
                row.m_size, new PLL_BANDWIDTH_SETTING_GROUP[static_cast<std::size_t>(row.m_size)]);
        }
    }
}

// clang-format off
const ORDER_CASE ORDER_CASES[] = {
    // name                                   a                        b                        a<b    b<a
    {"the smaller table goes first",          {"A", nullptr, nullptr}, {"B", nullptr, nullptr}, false, true},
    {"equal tables leave it to the names",    {"B", nullptr, nullptr}, {"C", nullptr, nullptr}, true,  false},
    {"one table alone does not decide",       {"A", nullptr, nullptr}, {"D", nullptr, nullptr}, true,  false},
    {"names count whatever their case",       {"b", nullptr, nullptr}, {"C", nullptr, nullptr}, true,  false},
    {"parts decide within a family",          {"A", "p", "7"},         {"a", "Q", "6"},         true,  false},
    {"speed grades decide within a part",     {"A", "p", "7"},         {"a", "P", "6"},         false, true},
    {"families decide before parts",          {"D", "a", "1"},         {"E", "b", "2"},         true,  false},
    {"equal entries each go first",           {"A", "p", "6"},         {"a", "P", "6"},         true,  true},
    {"a part that is not given is skipped",   {"A", nullptr, "7"},     {"A", "p", "6"},         false, true},
    {"nothing to decide by: each goes first", {"A", nullptr, nullptr}, {"A", "p", "6"},         true,  true},
    {"a null family counts as an empty name", {nullptr, "p", "6"},     {"D", "p", "6"},         true,  false},
    {"two null families are equal",           {nullptr, "q", "6"},     {"", "p", "6"},          false, true},
};
// clang-format on

TEST(MigrationOrder, IsByTableFamilyPartAndSpeedGrade)
{
    PLL_MANAGER manager;
    fill(&manager);
    const PLL_MIGRATION_PART_INFO_COMPARE is_before(&manager, FAST_PLL);
    for (const ORDER_CASE& c : ORDER_CASES) {
        SCOPED_TRACE(c.m_name);
        EXPECT_EQ(c.m_a_first, is_before(c.m_a, c.m_b));
        EXPECT_EQ(c.m_b_first, is_before(c.m_b, c.m_a));
    }
}

TEST(MigrationOrder, LooksAtTheTablesOfItsType)
{
    PLL_MANAGER manager;
    fill(&manager);
    const PLL_MIGRATION_PART_INFO_COMPARE is_before(&manager, VESTRA_PLL);
    EXPECT_TRUE(is_before({"A", nullptr, nullptr}, {"B", nullptr, nullptr}));
}

TEST(MigrationOrder, NeedsNoTypeAndNoManager)
{
    PLL_MANAGER manager;
    fill(&manager);
    const PLL_MIGRATION_PART_INFO_COMPARE without_type(&manager, PLL_TYPE_MAX);
    EXPECT_TRUE(without_type({"A", nullptr, nullptr}, {"B", nullptr, nullptr}));
    EXPECT_FALSE(without_type({"B", nullptr, nullptr}, {"A", nullptr, nullptr}));
    const PLL_MIGRATION_PART_INFO_COMPARE without_manager(nullptr, FAST_PLL);
    EXPECT_TRUE(without_manager({"A", nullptr, nullptr}, {"B", nullptr, nullptr}));
}

// A table that failed leaves its size and its flag; the family that it belongs to has not loaded.
TEST(MigrationOrder, DoesNotLookAtTheTableOfAFamilyThatDoesNotLoad)
{
    PLL_MANAGER manager;
    fill(&manager);
    PLL_FAMILY_INFO* const failed = manager.create_family_info("Z");
    failed->m_basic_infos[FAST_PLL].m_use_bandwidth_settings_table = true;
    const PLL_MIGRATION_PART_INFO_COMPARE is_before(&manager, FAST_PLL);
    EXPECT_TRUE(is_before({"B", nullptr, nullptr}, {"Z", nullptr, nullptr}));
    EXPECT_FALSE(is_before({"Z", nullptr, nullptr}, {"B", nullptr, nullptr}));
    manager.create_part_info(failed, "p", "6", FAST_PLL);
    EXPECT_TRUE(is_before({"Z", nullptr, nullptr}, {"B", nullptr, nullptr}));
}

TEST(MigrationOrder, LoadsBothFamiliesWhenTheirNamesDiffer)
{
    PLL_MANAGER manager;
    const PLL_MIGRATION_PART_INFO_COMPARE is_before(&manager, FAST_PLL);
    EXPECT_TRUE(is_before({"M", nullptr, nullptr}, {"m", nullptr, nullptr}));
    EXPECT_EQ(0, manager.get_number_of_families());
    EXPECT_FALSE(is_before({"N", nullptr, nullptr}, {"M", nullptr, nullptr}));
    ASSERT_EQ(2, manager.get_number_of_families());
    EXPECT_STREQ("N", manager.get_family(0));
    EXPECT_STREQ("M", manager.get_family(1));
}

}  // namespace
