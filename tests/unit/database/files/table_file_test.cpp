// Bandwidth settings table files.
#include "error_guard.h"
#include "manager_builders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <memory>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

const char SOURCE[] = "pll_manager";
const char GROUP_CONDITION[] = "bandwidth_setting->m_m < bandwidth_settings_table_size";

// A family whose tables have 11 groups, and a directory for their files.
struct TABLE_FIXTURE
{
    TABLE_FIXTURE()
    {
        basic().m_vco_post_scale_counter_max = 2;
        basic().m_m_counter_max = 5;
    }

    PLL_BASIC_INFO& basic() { return m_family.m_basic_infos[FAST_PLL]; }

    bool read(const std::string& text)
    {
        write_file(m_dir.file("table.txt"), text);
        return read_name(m_dir.file("table.txt").c_str());
    }

    bool read_name(const char* name)
    {
        return pll_read_bandwidth_settings_table_file(&m_family, FAST_PLL, name);
    }

    std::size_t rows(int m) { return basic().m_bandwidth_settings_table[m].m_settings.size(); }

    PLL_BANDWIDTH_SETTING& row(int m, std::size_t i = 0)
    {
        return *basic().m_bandwidth_settings_table[m].m_settings.at(i);
    }

    std::size_t all_rows()
    {
        std::size_t count = 0;
        for (int m = 0; m < basic().m_bandwidth_settings_table_size; ++m) {
            count += rows(m);
        }
        return count;
    }

    TEMP_DIR m_dir;
    PLL_FAMILY_INFO m_family;
};

std::vector<double> results(const PLL_BANDWIDTH_SETTING& row)
{
    return {row.m_typical_phase_margin, row.m_typical_bandwidth, row.m_typical_jitter_peaking,
            row.m_fast_phase_margin,    row.m_fast_bandwidth,    row.m_fast_jitter_peaking,
            row.m_slow_phase_margin,    row.m_slow_bandwidth,    row.m_slow_jitter_peaking};
}

std::vector<int> components(const PLL_BANDWIDTH_SETTING& row)
{
    return {row.m_loop_filter_capacitor, row.m_m, row.m_charge_pump_current,
            row.m_loop_filter_resistor};
}

// ---- Formats

TEST(TableFile, InTheSimpleFormatHasThreeColumns)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \ntitles\n3 20 10000\n"));
    EXPECT_TRUE(table.basic().m_use_bandwidth_settings_table);
    EXPECT_EQ(11, table.basic().m_bandwidth_settings_table_size);
    ASSERT_EQ(1U, table.rows(3));
    EXPECT_EQ((std::vector<int>{-1, 3, 20, 10000}), components(table.row(3)));
    EXPECT_EQ(std::vector<double>(9, -1.0), results(table.row(3)));
}

TEST(TableFile, InTheSecondFormatHasCapacitorAndResults)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("V2 table of a device\nC M I R results\n"
                           "5 3 20 10000 60 1.2 0.1 55 1.5 0.2 65 0.9 0.05 # note\n"));
    ASSERT_EQ(1U, table.rows(3));
    EXPECT_EQ((std::vector<int>{5, 3, 20, 10000}), components(table.row(3)));
    EXPECT_EQ((std::vector<double>{60, 1.2 * 1000000.0, 0.1, 55, 1.5 * 1000000.0, 0.2, 65,
                                   0.9 * 1000000.0, 0.05}),
              results(table.row(3)));
}

TEST(TableFile, WithAnyOtherWordHasResultsWithoutCapacitor)
{
    for (const std::string word : {"V1 ", "V22 ", "SIMPLE_V1\t ", "SIMPLE_V1\n ", "V2\n ", " "}) {
        SCOPED_TRACE(word);
        TABLE_FIXTURE table;
        EXPECT_TRUE(table.read(word + "\ntitles\n3 20 10000 1 2 3 4 5 6 7 8 9\n"));
        ASSERT_EQ(1U, table.rows(3));
        EXPECT_EQ((std::vector<int>{-1, 3, 20, 10000}), components(table.row(3)));
        EXPECT_EQ((std::vector<double>{1, 2e6, 3, 4, 5e6, 6, 7, 8e6, 9}), results(table.row(3)));
    }
}

TEST(TableFile, TakesItsFormatWordInAnyCase)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("simple_v1 x\n\n3 20 10000\n"));
    EXPECT_TRUE(table.read("v2 x\n\n9 3 20 10000 1 2 3 4 5 6 7 8 9\n"));
    EXPECT_EQ(9, table.row(3).m_loop_filter_capacitor);
}

TEST(TableFile, TakesAFormatWordOf1023CharactersAndNoLongerOne)
{
    const std::string rest = " \ntitles\n3 20 10000 1 2 3 4 5 6 7 8 9\n";
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read(std::string(1023, 'x') + rest));
    EXPECT_EQ(1U, table.all_rows());
    EXPECT_FALSE(table.read(std::string(1024, 'x') + rest));
    EXPECT_EQ(0U, table.all_rows());
    EXPECT_EQ(11, table.basic().m_bandwidth_settings_table_size);
}

// ---- Rows

TEST(TableFile, KeepsTheRowsOfAnMInFileOrder)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n10 5 5\n3 10 2 a comment 7\n3 30 3\n0 1 1\n"));
    ASSERT_EQ(3U, table.rows(3));
    EXPECT_EQ(1, table.row(3, 0).m_loop_filter_resistor);
    EXPECT_EQ(2, table.row(3, 1).m_loop_filter_resistor);
    EXPECT_EQ(3, table.row(3, 2).m_loop_filter_resistor);
    EXPECT_EQ(1U, table.rows(10));
    EXPECT_EQ(1U, table.rows(0));
}

TEST(TableFile, EndsAtAnEmptyLine)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n\n4 5 5\nrubbish\n"));
    EXPECT_EQ(1U, table.all_rows());
    EXPECT_FALSE(table.read("SIMPLE_V1 \n\n\n4 5 5\n"));
    EXPECT_EQ(0U, table.all_rows());
}

TEST(TableFile, DoesNotEndAtALineOfBlanksOrACarriageReturn)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \r\n\r\n3 20 1\r\n\r\n4 5 5\r\n"));
    EXPECT_EQ(2U, table.all_rows());
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n \t\n4 5 5\n"));
    EXPECT_EQ(2U, table.all_rows());
}

TEST(TableFile, MayBreakARowAcrossLines)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3\n20\n\n10000\n4 5 6\n"));
    EXPECT_EQ((std::vector<int>{-1, 3, 20, 10000}), components(table.row(3)));
    EXPECT_EQ(1U, table.rows(4));
}

TEST(TableFile, FailsWithoutAFinalLineBreakYetKeepsTheRow)
{
    TABLE_FIXTURE table;
    EXPECT_FALSE(table.read("SIMPLE_V1 \n\n3 20 1\n4 5 6"));
    EXPECT_EQ(2U, table.all_rows());
    EXPECT_EQ(6, table.row(4).m_loop_filter_resistor);
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n4 5 6 ends in a comment"));
    EXPECT_EQ(2U, table.all_rows());
}

TEST(TableFile, KeepsARowThatFailedAsFarAsItWasRead)
{
    TABLE_FIXTURE table;
    EXPECT_FALSE(table.read("V1 \n\n3 20 x 1 2 3\n4 5 6 1 2 3 4 5 6 7 8 9\n"));
    EXPECT_EQ(1U, table.all_rows());
    EXPECT_EQ((std::vector<int>{-1, 3, 20, 0}), components(table.row(3)));
    EXPECT_EQ(std::vector<double>(9, 0.0), results(table.row(3)));

    EXPECT_FALSE(table.read("V1 \n\n3 20 7 1 2 word\n"));
    EXPECT_EQ((std::vector<double>{1, 2e6, 0, 0, 0, 0, 0, 0, 0}), results(table.row(3)));

    EXPECT_FALSE(table.read("SIMPLE_V1 \n\n3 2147483648 7\n"));
    EXPECT_EQ((std::vector<int>{-1, 3, std::numeric_limits<int>::max(), 0}),
              components(table.row(3)));
    EXPECT_EQ(std::vector<double>(9, -1.0), results(table.row(3)));

    EXPECT_FALSE(table.read("V2 \n\nword\n"));
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0}), components(table.row(0)));
}

TEST(TableFile, WithoutRowsFails)
{
    for (const char* text : {"", "V2", "V2 ", "V2 \n", "V2 \n\n", "V2 \ntitles"}) {
        SCOPED_TRACE(text);
        TABLE_FIXTURE table;
        EXPECT_FALSE(table.read(text));
        EXPECT_TRUE(table.basic().m_use_bandwidth_settings_table);
        EXPECT_EQ(11, table.basic().m_bandwidth_settings_table_size);
        EXPECT_EQ(0U, table.all_rows());
    }
}

TEST(TableFile, ReportsARowWithoutAGroupAndGoesOn)
{
    EXPECTED_REPORTS reports;
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n11 1 1\n10 2 2\n-1 3 3\n"));
    reports.expect_only(GROUP_CONDITION, SOURCE, 2);
    EXPECT_EQ(1U, table.all_rows());
    EXPECT_FALSE(table.read("SIMPLE_V1 \n\n11 1 1\n"));
    reports.expect_only(GROUP_CONDITION, SOURCE);
    EXPECT_EQ(0U, table.all_rows());
}

TEST(TableFile, ReportsARowWithoutAGroupThatFailedToo)
{
    EXPECTED_REPORTS reports;
    TABLE_FIXTURE table;
    EXPECT_FALSE(table.read("SIMPLE_V1 \n\n3 1 1\n99 word\n4 1 1\n"));
    reports.expect_only(GROUP_CONDITION, SOURCE);
    EXPECT_EQ(1U, table.all_rows());
}

// ---- Files and sizes

TEST(TableFile, ThatIsUnusedIsNoTable)
{
    TABLE_FIXTURE table;
    EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n"));
    EXPECT_TRUE(table.read_name("unUSED"));
    EXPECT_FALSE(table.basic().m_use_bandwidth_settings_table);
    EXPECT_EQ(nullptr, table.basic().m_bandwidth_settings_table);
    EXPECT_EQ(0, table.basic().m_bandwidth_settings_table_size);
}

TEST(TableFile, ThatCannotBeOpenedLeavesEmptyGroups)
{
    TABLE_FIXTURE table;
    ASSERT_EQ(0, mkfifo(table.m_dir.file("pipe").c_str(), 0600));
    for (const std::string& name : {table.m_dir.file("nowhere"), table.m_dir.path(),
                                    table.m_dir.file("pipe"), std::string()}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n"));
        EXPECT_FALSE(table.read_name(name.c_str()));
        EXPECT_TRUE(table.basic().m_use_bandwidth_settings_table);
        EXPECT_EQ(11, table.basic().m_bandwidth_settings_table_size);
        EXPECT_EQ(0U, table.all_rows());
    }
}

struct SIZE_CASE
{
    const char* m_name;
    int m_post_scale;
    int m_m_max;
    int m_size;  // -1: no table
};

// clang-format off
const SIZE_CASE SIZE_CASES[] = {
    // name                           post-scale  M max        size
    {"no counters",                            0, 0,           1},
    {"no group",                              -1, 1,           0},
    {"below none",                            -1, 2,           -1},
    {"the most groups",                        1, 4194303,     4194304},
    {"one more",                               1, 4194304,     -1},
    {"more than 32 bits count",       2147483647, 2147483647,  -1},
    {"a size that 32 bits cut to 1",       65536, 65536,       -1},
    {"both negative",                         -1, -4,          5},
};
// clang-format on

TEST(TableFile, HasOneGroupForEachMWithinItsBounds)
{
    EXPECTED_REPORTS reports;
    reports.accept_all();
    for (const SIZE_CASE& c : SIZE_CASES) {
        SCOPED_TRACE(c.m_name);
        TABLE_FIXTURE table;
        EXPECT_TRUE(table.read("SIMPLE_V1 \n\n3 20 1\n"));
        table.basic().m_vco_post_scale_counter_max = c.m_post_scale;
        table.basic().m_m_counter_max = c.m_m_max;
        EXPECT_EQ(c.m_size > 0, table.read("SIMPLE_V1 \n\n0 20 1\n"));
        EXPECT_TRUE(table.basic().m_use_bandwidth_settings_table);
        EXPECT_EQ(c.m_size < 0 ? 0 : c.m_size, table.basic().m_bandwidth_settings_table_size);
        EXPECT_EQ(c.m_size < 0, table.basic().m_bandwidth_settings_table == nullptr);
    }
}

TEST(TableFile, WithoutFamilyOrNameIsReported)
{
    EXPECTED_REPORTS reports;
    TABLE_FIXTURE table;
    EXPECT_FALSE(pll_read_bandwidth_settings_table_file(nullptr, FAST_PLL, "unused"));
    reports.expect_only("family_info != 0", SOURCE);
    EXPECT_FALSE(table.read_name(nullptr));
    reports.expect_only("bandwidth_settings_table_file_name != 0", SOURCE);
    EXPECT_FALSE(table.basic().m_use_bandwidth_settings_table);
}

TEST(TableFile, WithoutATypeIsFalseInSilence)
{
    TABLE_FIXTURE table;
    EXPECT_FALSE(pll_read_bandwidth_settings_table_file(&table.m_family, PLL_TYPE_MAX, "unused"));
}

// ---- Lists of files

struct FILE_LIST
{
    void add(PLL_TYPE_ENUM type, const std::string& name)
    {
        m_entries.push_back(std::make_unique<PLL_TYPE_BANDWIDTH_FILE_NAME>(
            PLL_TYPE_BANDWIDTH_FILE_NAME{type, MEM_STRING(name.begin(), name.end())}));
        m_list.push_back(m_entries.back().get());
    }

    std::vector<std::unique_ptr<PLL_TYPE_BANDWIDTH_FILE_NAME>> m_entries;
    PLL_TYPE_BANDWIDTH_FILE_LIST m_list;
};

TEST(TableFiles, AreAllReadEvenAfterOneFailed)
{
    TABLE_FIXTURE table;
    write_file(table.m_dir.file("t"), "SIMPLE_V1 \n\n0 20 1\n");
    FILE_LIST files;
    EXPECT_TRUE(pll_read_bandwidth_settings_table_files(&table.m_family, &files.m_list));
    files.add(FAST_PLL, table.m_dir.file("t"));
    files.add(VESTRA_PLL, "Unused");
    EXPECT_TRUE(pll_read_bandwidth_settings_table_files(&table.m_family, &files.m_list));
    files.add(ENHANCED_PLL, table.m_dir.file("nowhere"));
    files.add(FAST_PLL_HIGH_SPEED, table.m_dir.file("t"));
    EXPECT_FALSE(pll_read_bandwidth_settings_table_files(&table.m_family, &files.m_list));
    for (const PLL_BASIC_INFO& basic : table.m_family.m_basic_infos) {
        const bool is_unused = &basic == &table.m_family.m_basic_infos[VESTRA_PLL];
        EXPECT_EQ(!is_unused, basic.m_use_bandwidth_settings_table);
    }
    EXPECT_EQ(1, table.m_family.m_basic_infos[FAST_PLL_HIGH_SPEED].m_bandwidth_settings_table_size);
}

TEST(TableFiles, ThatAreNullAreReportedAndFail)
{
    EXPECTED_REPORTS reports;
    TABLE_FIXTURE table;
    EXPECT_FALSE(pll_read_bandwidth_settings_table_files(&table.m_family, nullptr));
    reports.expect_only("pll_type_bandwidth_file_list != 0", SOURCE);
    write_file(table.m_dir.file("t"), "SIMPLE_V1 \n\n0 20 1\n");
    FILE_LIST files;
    files.m_list.push_back(nullptr);
    files.add(FAST_PLL, table.m_dir.file("t"));
    EXPECT_FALSE(pll_read_bandwidth_settings_table_files(&table.m_family, &files.m_list));
    reports.expect_only("pll_type_bandwidth_file != 0", SOURCE);
    EXPECT_EQ(1U, table.all_rows());
    files.m_list.erase(files.m_list.begin());
    EXPECT_FALSE(pll_read_bandwidth_settings_table_files(nullptr, &files.m_list));
    reports.expect_only("family_info != 0", SOURCE);
}

// ---- Fields

TEST(Fields, AreReadAsStreamsReadNumbers)
{
    std::istringstream stream(" \n -7 +8 2.5e1 x");
    int number = 0;
    double real = 0.0;
    EXPECT_TRUE(pll_read_field(stream, number));
    EXPECT_EQ(-7, number);
    EXPECT_TRUE(pll_read_field(stream, number));
    EXPECT_EQ(8, number);
    EXPECT_TRUE(pll_read_field(stream, real));
    EXPECT_EQ(25.0, real);
    EXPECT_FALSE(pll_read_field(stream, number));
    EXPECT_EQ(0, number);
}

TEST(Fields, AtTheEndOfTheStreamFailWithTheirValue)
{
    std::istringstream numbers("12");
    int number = 0;
    EXPECT_FALSE(pll_read_field(numbers, number));
    EXPECT_EQ(12, number);
    std::istringstream reals("1.5");
    double real = 0.0;
    EXPECT_FALSE(pll_read_field(reals, real));
    EXPECT_EQ(1.5, real);
    std::istringstream words("V2");
    MEM_STRING word;
    EXPECT_FALSE(pll_read_field(words, word));
    EXPECT_STREQ("V2", word.c_str());
}

TEST(Fields, OfWordsEndAtTheFirstBlankOnly)
{
    std::istringstream stream("a\tb\nc d  e ");
    MEM_STRING word;
    for (const char* expected : {"a\tb\nc", "d", "", "e"}) {
        EXPECT_TRUE(pll_read_field(stream, word));
        EXPECT_STREQ(expected, word.c_str());
    }
    EXPECT_FALSE(pll_read_field(stream, word));
}

TEST(Fields, KeepTheExceptionsOfTheirStreamInside)
{
    std::istringstream stream("x");
    stream.exceptions(std::ios::failbit | std::ios::badbit | std::ios::eofbit);
    int number = 0;
    double real = 0.0;
    MEM_STRING word;
    EXPECT_FALSE(pll_read_field(stream, number));
    EXPECT_FALSE(pll_read_field(stream, real));
    EXPECT_FALSE(pll_read_field(stream, word));
}

}  // namespace
