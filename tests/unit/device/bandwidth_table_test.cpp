// Unit tests of the bandwidth table: its check, its listing, its release.
#include "pll_info.h"

#include "error_guard.h"
#include "golden.h"

#include <gtest/gtest.h>

#include <iostream>
#include <limits>
#include <locale>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int LARGEST = std::numeric_limits<int>::max();
constexpr int SMALLEST = std::numeric_limits<int>::min();

// What the library writes to the standard output while this lives.
class CAPTURED_OUTPUT
{
public:
    CAPTURED_OUTPUT() : m_previous(std::cout.rdbuf(m_text.rdbuf())) {}
    ~CAPTURED_OUTPUT() { std::cout.rdbuf(m_previous); }
    CAPTURED_OUTPUT(const CAPTURED_OUTPUT&) = delete;
    CAPTURED_OUTPUT& operator=(const CAPTURED_OUTPUT&) = delete;

    std::string take()
    {
        std::string text = m_text.str();
        m_text.str("");
        return text;
    }

private:
    std::ostringstream m_text;
    std::streambuf* m_previous;
};

// A device with a table for effective M of 1 to 4: post-scale up to 2, M up to 2.
class TABLE : public testing::Test
{
protected:
    TABLE()
    {
        const int currents[] = {10, 20};
        const int resistors[] = {1000, 10000};
        const int capacitors[] = {5, 7};
        m_basic_info.set_charge_pump_currents(2, currents);
        m_basic_info.set_loop_filter_resistors(2, resistors);
        m_basic_info.set_loop_filter_capacitors(2, capacitors);
        m_basic_info.set_vco_post_scale_counter_max(2);
        m_basic_info.m_m_counter_max = 2;
        m_basic_info.m_use_bandwidth_settings_table = true;
        m_basic_info.set_bandwidth_settings_table(5, new PLL_BANDWIDTH_SETTING_GROUP[5]);
        m_info.m_basic_info = &m_basic_info;
    }

    PLL_BANDWIDTH_SETTING* add_row(int group, int m, int current, int resistor, int capacitor)
    {
        auto* row = new PLL_BANDWIDTH_SETTING;
        row->m_m = m;
        row->m_charge_pump_current = current;
        row->m_loop_filter_resistor = resistor;
        row->m_loop_filter_capacitor = capacitor;
        m_basic_info.m_bandwidth_settings_table[group].m_settings.push_back(row);
        return row;
    }

    void add_row_with_results(int m)
    {
        PLL_BANDWIDTH_SETTING* row = add_row(m, m, 20, 10000, 5);
        row->m_typical_bandwidth = 1.2e6;
        row->m_typical_phase_margin = 60;
        row->m_typical_jitter_peaking = 0.1;
        row->m_fast_bandwidth = 1.5e6;
        row->m_fast_phase_margin = 55;
        row->m_fast_jitter_peaking = 0.2;
        row->m_slow_bandwidth = 0.9e6;
        row->m_slow_phase_margin = 65;
        row->m_slow_jitter_peaking = 0.05;
    }

    // The lines that the check writes; fails unless its answer fits them.
    std::string check()
    {
        const bool valid = m_info.is_bandwidth_settings_table_valid();
        std::string lines = m_output.take();
        EXPECT_EQ(lines.empty(), valid);
        return lines;
    }

    std::string list() const
    {
        std::ostringstream stream;
        m_info.dump_bandwidth_settings_table(stream);
        return stream.str();
    }

    PLL_BASIC_INFO m_basic_info;
    PLL_INFO m_info;
    CAPTURED_OUTPUT m_output;
};

class TableCheck : public TABLE
{
};
class HostileTableCheck : public TABLE
{
};
class GoldenTable : public TABLE
{
};
class TableListing : public TABLE
{
};
class HostileTableListing : public TABLE
{
};

}  // namespace

void append_finding(const PLL_TABLE_FINDING& finding, void* context)
{
    static_cast<std::vector<PLL_TABLE_FINDING>*>(context)->push_back(finding);
}

// The check as records, each with the text that the standard output gets.
TEST_F(TableCheck, HandsItsFindingsOnAsRecords)
{
    m_basic_info.m_use_bandwidth_settings_table = false;
    m_basic_info.m_m_counter_max = 3;  // with post-scale 2: a table of 7 groups
    add_row(4, 3, 11, 1001, 6);
    std::vector<PLL_TABLE_FINDING> findings;
    EXPECT_FALSE(m_info.check_bandwidth_settings_table(append_finding, &findings));
    const PLL_TABLE_FINDING expected[] = {
        {PLL_TABLE_FINDING_KIND::TABLE_NOT_USED, 0, 0},
        {PLL_TABLE_FINDING_KIND::SIZE_DIFFERS, 6, 5},
        {PLL_TABLE_FINDING_KIND::ROW_OF_OTHER_M, 4, 3},
        {PLL_TABLE_FINDING_KIND::CURRENT_NOT_LISTED, 4, 11},
        {PLL_TABLE_FINDING_KIND::RESISTOR_NOT_LISTED, 4, 1001},
        {PLL_TABLE_FINDING_KIND::CAPACITOR_NOT_LISTED, 4, 6},
    };
    ASSERT_EQ(findings.size(), std::size(expected));
    std::ostringstream text;
    for (std::size_t i = 0; i < findings.size(); ++i) {
        EXPECT_EQ(findings[i].m_kind, expected[i].m_kind) << i;
        EXPECT_EQ(findings[i].m_m, expected[i].m_m) << i;
        EXPECT_EQ(findings[i].m_value, expected[i].m_value) << i;
        pll_write_table_finding(text, findings[i]);
        text << '\n';
    }
    CAPTURED_OUTPUT output;
    EXPECT_FALSE(m_info.is_bandwidth_settings_table_valid());
    EXPECT_EQ(output.take(), text.str());
}

TEST_F(TableCheck, IsCheckedInSilenceWithoutAHandler)
{
    CAPTURED_OUTPUT output;
    EXPECT_TRUE(m_info.check_bandwidth_settings_table(nullptr, nullptr));
    m_basic_info.m_use_bandwidth_settings_table = false;
    EXPECT_FALSE(m_info.check_bandwidth_settings_table(nullptr, nullptr));
    EXPECT_FALSE(PLL_INFO().check_bandwidth_settings_table(nullptr, nullptr));
    EXPECT_EQ(output.take(), "");
}

TEST_F(TableCheck, PassesLegalRows)
{
    EXPECT_EQ("", check());  // empty groups are legal
    add_row(1, 1, 10, 1000, 5);
    add_row(4, 4, 20, 10000, 7);
    add_row(4, 4, 20, 10000, -1);
    add_row(4, 4, 20, 10000, SMALLEST);
    EXPECT_EQ("", check());
}

TEST_F(TableCheck, NamesATableThatDoesNotExist)
{
    m_basic_info.set_bandwidth_settings_table(0, nullptr);
    m_basic_info.m_use_bandwidth_settings_table = false;
    EXPECT_EQ("Error: Bandwidth settings table doesn't exist\n", check());
}

TEST_F(TableCheck, NamesATableThatIsNotUsed)
{
    m_basic_info.m_use_bandwidth_settings_table = false;
    EXPECT_EQ("Error: Bandwidth settings table set to not be used\n", check());
}

TEST_F(TableCheck, NamesSizes)
{
    m_basic_info.m_m_counter_max = 3;
    EXPECT_EQ("Error: max M size of 6 must be one less than table size of 5\n", check());
    m_basic_info.m_m_counter_max = 2;
    m_basic_info.m_bandwidth_settings_table_size = 4;
    EXPECT_EQ("Error: max M size of 4 must be one less than table size of 4\n", check());
    m_basic_info.m_bandwidth_settings_table_size = 0;
    EXPECT_EQ("Error: Bandwidth settings table size must be greater than 0\n"
              "Error: max M size of 4 must be one less than table size of 0\n",
              check());
    m_basic_info.m_m_counter_max = 0;
    m_basic_info.m_bandwidth_settings_table_size = 1;
    EXPECT_EQ("", check());
    m_basic_info.m_bandwidth_settings_table_size = 5;
    EXPECT_EQ("Error: max M size of 0 must be one less than table size of 5\n", check());
}

TEST_F(TableCheck, ComparesTheSizeWithTheLargestEffectiveM)
{
    m_basic_info.set_bandwidth_settings_table(513, new PLL_BANDWIDTH_SETTING_GROUP[513]);
    m_basic_info.m_m_counter_max = 256;
    EXPECT_EQ("", check());
    m_basic_info.m_m_counter_max = 512;
    EXPECT_EQ("Error: max M size of 1024 must be one less than table size of 513\n", check());
}

TEST_F(TableCheck, NamesEveryFaultOfARow)
{
    add_row(2, 3, 10, 1000, 5);
    EXPECT_EQ("Error: M=2 has setting with different M value: 3\n", check());
    m_basic_info.m_bandwidth_settings_table[2].m_settings[0]->m_m = 2;
    add_row(3, 3, 11, 1000, 5);
    EXPECT_EQ("Error: M=3 has setting with illegal charge_pump_current: 11\n", check());
    m_basic_info.m_bandwidth_settings_table[3].m_settings[0]->m_charge_pump_current = 10;
    add_row(3, 3, 10, 2000, 5);
    EXPECT_EQ("Error: M=3 has setting with illegal loop_filter_resistor: 2000\n", check());
    m_basic_info.m_bandwidth_settings_table[3].m_settings[1]->m_loop_filter_resistor = 1000;
    add_row(4, 4, 10, 1000, 0);
    EXPECT_EQ("Error: M=4 has setting with illegal loop_filter_capacitor: 0\n", check());
}

TEST_F(TableCheck, NeverLooksAtGroupZero)
{
    add_row(0, 7, 1, 1, 1);
    EXPECT_EQ("", check());
}

TEST_F(TableCheck, EndsAtTheLargestEffectiveM)
{
    add_row(4, 7, 10, 1000, 5);
    m_basic_info.m_m_counter_max = 1;
    EXPECT_EQ("Error: max M size of 2 must be one less than table size of 5\n", check());
}

TEST_F(TableCheck, WritesPlainDecimalWhateverTheFormatOfTheStream)
{
    m_basic_info.m_m_counter_max = 600;
    const std::ios_base::fmtflags flags = std::cout.setf(std::ios::hex, std::ios::basefield);
    std::cout.setf(std::ios::showpos);
    const std::string lines = check();
    std::cout.flags(flags);
    EXPECT_EQ("Error: max M size of 1200 must be one less than table size of 5\n", lines);
}

TEST_F(HostileTableCheck, ReportsAMissingDescriptionAndGoesOnAsWithoutATable)
{
    m_info.m_basic_info = nullptr;
    EXPECTED_REPORTS reports;
    EXPECT_EQ("Error: Bandwidth settings table doesn't exist\n", check());
    reports.expect_only("this->has_info()", "pll_info");
}

TEST_F(HostileTableCheck, WrapsTheLargestM)
{
    m_basic_info.m_m_counter_max = LARGEST;
    EXPECT_EQ("Error: max M size of -2 must be one less than table size of 5\n", check());
    m_basic_info.m_bandwidth_settings_table_size = SMALLEST;
    m_basic_info.m_m_counter_max = LARGEST;
    m_basic_info.m_vco_post_scale_counter_max = 1;
    EXPECT_EQ("Error: Bandwidth settings table size must be greater than 0\n", check());
    m_basic_info.m_bandwidth_settings_table_size = 5;
}

TEST_F(HostileTableCheck, SkipsRowsThatAreNull)
{
    m_basic_info.m_bandwidth_settings_table[1].m_settings.push_back(nullptr);
    EXPECT_EQ("", check());
    EXPECT_EQ(std::string::npos, list().find("   m="));
}

TEST_F(GoldenTable, CheckThatFindsEverything)
{
    m_basic_info.m_use_bandwidth_settings_table = false;
    m_basic_info.m_m_counter_max = 300;
    add_row(0, 9, 9, 9, 9);
    add_row(1, 2, 3, 4, 6);
    add_row(2, 2, 20, 10000, 7);
    add_row(4, -4, -20, -10000, 0);
    add_row(4, 4, 20, 1, -1);
    expect_golden(check(), "table_check.txt");
}

TEST_F(GoldenTable, Listing)
{
    add_row_with_results(3);
    add_row(3, 3, 10, 1000, -1);
    add_row(0, 0, 10, 1000, 7);
    expect_golden(list(), "table_listing.txt");
}

TEST_F(TableListing, OfAnEmptyTableIsItsHeader)
{
    m_basic_info.set_bandwidth_settings_table(0, nullptr);
    EXPECT_EQ("Bandwidth Settings Table: (size=0)\n", list());
}

TEST_F(TableListing, TakesTheFormatOfTheStream)
{
    add_row_with_results(1);
    std::ostringstream stream;
    stream.precision(3);
    stream.setf(std::ios::fixed, std::ios::floatfield);
    m_info.dump_bandwidth_settings_table(stream);
    EXPECT_NE(std::string::npos, stream.str().find("typical:bw=1200000.000,pm=60.000,jp=0.100"));
}

TEST_F(HostileTableListing, ReportsAMissingDescription)
{
    m_info.m_basic_info = nullptr;
    EXPECTED_REPORTS reports;
    EXPECT_EQ("Bandwidth Settings Table: (size=0)\n", list());
    reports.expect_only("this->has_info()", "pll_info");
}

TEST_F(HostileTableListing, ReportsASizeWithoutATable)
{
    m_basic_info.set_bandwidth_settings_table(LARGEST, nullptr);
    EXPECTED_REPORTS reports;
    EXPECT_EQ("Bandwidth Settings Table: (size=2147483647)\n", list());
    reports.expect_only("bandwidth_settings_table != 0", "pll_info");
    m_basic_info.set_bandwidth_settings_table(SMALLEST, nullptr);
    EXPECT_EQ("Bandwidth Settings Table: (size=-2147483648)\n", list());
    reports.expect_none();
}

TEST(TableRelease, GivesBackRowsAndGroups)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks("pll_info");
    int size = 2;
    auto* table = new PLL_BANDWIDTH_SETTING_GROUP[2];
    table[0].m_settings.push_back(new PLL_BANDWIDTH_SETTING);
    table[1].m_settings.push_back(new PLL_BANDWIDTH_SETTING);
    table[1].m_settings.push_back(nullptr);
    pll_delete_bandwidth_settings_table(table, size);
    EXPECT_EQ(nullptr, table);
    EXPECT_EQ(0, size);
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks("pll_info"));
}

TEST(TableRelease, OfNothingResetsTheSize)
{
    int size = 7;
    PLL_BANDWIDTH_SETTING_GROUP* table = nullptr;
    pll_delete_bandwidth_settings_table(table, size);
    EXPECT_EQ(nullptr, table);
    EXPECT_EQ(0, size);
    table = new PLL_BANDWIDTH_SETTING_GROUP[1];
    size = SMALLEST;
    pll_delete_bandwidth_settings_table(table, size);
    EXPECT_EQ(nullptr, table);
    EXPECT_EQ(0, size);
}

TEST(TableRelease, HappensWhenATableIsReplacedAndWithItsOwner)
{
    const std::size_t blocks = MEM_MANAGER::get_live_blocks("pll_info");
    {
        PLL_BASIC_INFO info;
        auto* first = new PLL_BANDWIDTH_SETTING_GROUP[1];
        first[0].m_settings.push_back(new PLL_BANDWIDTH_SETTING);
        info.set_bandwidth_settings_table(1, first);
        EXPECT_FALSE(info.m_use_bandwidth_settings_table);
        info.set_bandwidth_settings_table(1, first);
        EXPECT_EQ(first, info.m_bandwidth_settings_table);
        auto* second = new PLL_BANDWIDTH_SETTING_GROUP[2];
        second[1].m_settings.push_back(new PLL_BANDWIDTH_SETTING);
        info.set_bandwidth_settings_table(2, second);
        EXPECT_EQ(second, info.m_bandwidth_settings_table);
        EXPECT_EQ(2, info.m_bandwidth_settings_table_size);
        EXPECT_EQ(blocks + 3, MEM_MANAGER::get_live_blocks("pll_info"));
    }
    EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks("pll_info"));
}
