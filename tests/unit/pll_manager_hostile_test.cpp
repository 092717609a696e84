// What broken files, huge values and exhausted memory can do to the database: nothing.
#include "error_guard.h"
#include "failing_heap.h"
#include "manager_builders.h"
#include "mem_alloc_sys.h"
#include "pll.h"

#include <gtest/gtest.h>

#include <chrono>
#include <clocale>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace {

const std::string PATH_TEXT = "# families\nFam . family.txt # one\n\"Other 1\" \"sub\" \"o.txt\"\n";

// Every kind of statement once.
const std::string FAMILY_TEXT =
    "family Fam\npll ENHANCED_PLL\r\nm_counter_high_low_max 4\nvco_post_scale_counter_max 2\n"
    "output_counter_high_low_max 4\noutput_counter_cascade on\ncharge_pump_current 3 1 2\n"
    "loop_filter_resistor_bit 0 4 2\nloop_filter_capacitor 7\nss_bandwidth 1.5e5\n"
    "bandwidth_settings_table_file \"table.txt\"\nreconfig_type long\n"
    "reconfig_scan_chain_counter_order C0 M end\ninclude inc.txt\nspeed_grade \"6 x\"\n"
    "part P1\nnot_listed no\nvco_min 500 # ps\nvco_max_post_scale 2 900\npfd_min 3\n";

const std::string TABLE_TEXT = "V2 x\ntitles\n5 1 20 100 60 1.2 0.1 55 1.5 0.2 65 0.9 0.05 z\n"
                               "5 2 30 100 6e1 12 -.1 5 1 2 6 9 5\n\nend\n";

const std::string INCLUDED_TEXT = "n_counter_max 5\n";

class HostileDatabase : public testing::Test
{
protected:
    HostileDatabase()
    {
        write("ddb_pll_path.txt", PATH_TEXT);
        write("family.txt", FAMILY_TEXT);
        write("table.txt", TABLE_TEXT);
        write("inc.txt", INCLUDED_TEXT);
        m_reports.accept_all();
    }

    void write(const std::string& name, const std::string& text)
    {
        write_file(m_dir.file(name), text);
    }

    // Reads the database and initialises a PLL from it; whatever it says, nothing may stay behind.
    bool use()
    {
        const std::size_t before = MEM_MANAGER::get_live_blocks(nullptr);
        const bool is_initialised = use_manager();
        EXPECT_EQ(before, MEM_MANAGER::get_live_blocks(nullptr));
        return is_initialised;
    }

    bool read_family()
    {
        PLL_MANAGER manager;
        return manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt");
    }

    TEMP_DIR m_dir;
    EXPECTED_REPORTS m_reports;

private:
    bool use_manager()
    {
        const std::unique_ptr<PLL_MANAGER> manager(new PLL_MANAGER);
        manager->read(m_dir.path().c_str());
        manager->get_number_of_listed_speed_grades("Fam");
        PLL pll(1, PLL_MAX_TAPS);
        PLL_QUERY query;
        query.m_family = "Fam";
        query.m_type = ENHANCED_PLL;
        query.add_migration_part("Fam", "P1", nullptr);
        return manager->init_pll(&pll, query);
    }
};

TEST_F(HostileDatabase, IsReadWhenItIsWhole)
{
    EXPECT_TRUE(use());
}

TEST_F(HostileDatabase, MayHaveLongLines)
{
    write("family.txt", std::string(3000000, 'x'));
    EXPECT_FALSE(read_family());
    write("family.txt", "#" + std::string(3000000, '\0') + "\nfamily Fam");
    EXPECT_TRUE(read_family());
    write("family.txt", TYPE_HEAD + "n_counter_max " + std::string(3000000, '9') + " x\n");
    EXPECT_TRUE(read_family());
    write("family.txt", TYPE_HEAD + "ss_bandwidth 1" + std::string(3000000, '0') + "\n");
    EXPECT_TRUE(read_family());
    std::string list = TYPE_HEAD + "charge_pump_current";
    for (int i = 0; i < 100000; ++i) {
        list += " 1";
    }
    write("family.txt", list);
    EXPECT_TRUE(read_family());
}

TEST_F(HostileDatabase, MayHaveLongNumbersInItsTable)
{
    for (const std::string& text :
         {"V2 \n\n" + std::string(1000000, '9') + " 1 2 3\n",
          "V1 \n\n1 2 3 " + std::string(1000000, '9') + " 1 1 1 1 1 1 1 1\n",
          "V1 \n\n1 2 3 0." + std::string(1000000, '1') + " 1 1 1 1 1 1 1 1\n",
          std::string("V1 \n\n1 2 3 1e999999999 1 1 1 1 1 1 1 1\n"), std::string(3000000, ' '),
          "V1 \n\n" + std::string(3000000, ' '), std::string(3000000, '\0')}) {
        write("table.txt", text);
        use();
    }
}

TEST_F(HostileDatabase, MayHaveHugeCounts)
{
    for (const char* number : {"2147483647", "2147483648", "4294967295", "4294967296", "0"}) {
        SCOPED_TRACE(number);
        std::string text = "family Fam\npll ENHANCED_PLL\n";
        for (const char* keyword :
             {"m_counter_max", "n_counter_max", "vco_post_scale_counter_max", "ss_counter_max",
              "output_counter_high_low_max", "number_of_output_counters", "charge_pump_current"}) {
            text += std::string(keyword) + " " + number + "\n";
        }
        text += "bandwidth_settings_table_file table.txt\nspeed_grade 6\npart P1\n";
        for (const char* keyword :
             {"vco_min", "vco_max", "vco_center", "vco_gain", "pfd_min", "input_min"}) {
            text += std::string(keyword) + " " + number + "\n";
            text += keyword == std::string("pfd_min") || keyword == std::string("input_min")
                        ? ""
                        : std::string(keyword) + "_post_scale " + number + " " + number + "\n";
        }
        write("family.txt", text);
        use();
    }
}

TEST_F(HostileDatabase, MayHaveDirectoriesInThePlaceOfFiles)
{
    for (const char* name : {"ddb_pll_path.txt", "family.txt", "table.txt", "inc.txt"}) {
        SCOPED_TRACE(name);
        const std::string text = read_file(m_dir.file(name));
        std::filesystem::remove(m_dir.file(name));
        std::filesystem::create_directory(m_dir.file(name));
        EXPECT_EQ(name != std::string("ddb_pll_path.txt") && name != std::string("family.txt"),
                  use());
        EXPECT_EQ(name == std::string("inc.txt") || name == std::string("ddb_pll_path.txt"),
                  read_family());
        std::filesystem::remove(m_dir.file(name));
        write(name, text);
    }
}

double seconds(const std::function<void()>& operation)
{
    const auto start = std::chrono::steady_clock::now();
    operation();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

TEST_F(HostileDatabase, ReadsTenThousandPartsInUnderASecond)
{
    std::string text = TYPE_HEAD;
    for (int i = 0; i < 10000; ++i) {
        text += "speed_grade g" + std::to_string(i) + "\npart p" + std::to_string(i) + "\n";
    }
    write("family.txt", text);
    EXPECT_GT(1.0, seconds([this] { EXPECT_TRUE(read_family()); }));
}

TEST_F(HostileDatabase, ReadsTenThousandFamiliesInUnderASecond)
{
    std::string text;
    for (int i = 0; i < 10000; ++i) {
        text += "f" + std::to_string(i) + " . family.txt\n";
    }
    write("ddb_pll_path.txt", text);
    EXPECT_GT(1.0, seconds([this] { use(); }));
}

// ---- Exhausted memory

// Makes every allocation of an operation fail in turn, then the rest from each on.
void fail_each_allocation(const std::function<bool()>& operation)
{
    const std::string locale = std::setlocale(LC_NUMERIC, nullptr);
    FAILING_HEAP heap;
    for (const bool is_lasting : {false, true}) {
        for (long nth = 1;; ++nth) {
            SCOPED_TRACE("allocation " + std::to_string(nth));
            if (is_lasting) {
                heap.fail_from(nth);
            } else {
                heap.fail_at(nth);
            }
            const bool is_ok = operation();
            const bool has_failed = heap.get_failures() != 0;
            heap.fail_none();
            EXPECT_EQ(!has_failed, is_ok);
            EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks(nullptr));
            EXPECT_EQ(locale, std::setlocale(LC_NUMERIC, nullptr));
            if (!has_failed) {
                break;
            }
            ASSERT_GT(2000, nth);
        }
    }
}

TEST_F(HostileDatabase, MayRunOutOfMemoryWhileReading)
{
    fail_each_allocation([this] {
        const std::unique_ptr<PLL_MANAGER> manager(new PLL_MANAGER);
        return manager != nullptr && manager->read(m_dir.path().c_str()) &&
               manager->read_family_info("Fam") != nullptr;
    });
}

TEST_F(HostileDatabase, IsReadAgainAfterMemoryRanOut)
{
    FAILING_HEAP heap;
    for (long nth = 1; nth < 60; ++nth) {
        SCOPED_TRACE(nth);
        PLL_MANAGER manager;
        heap.fail_at(nth);
        manager.read(m_dir.path().c_str());
        manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt");
        heap.fail_none();
        EXPECT_TRUE(manager.read(m_dir.path().c_str()));
        EXPECT_TRUE(manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt"));
        const PLL_FAMILY_INFO* const family = manager.read_family_info("Fam");
        ASSERT_NE(nullptr, family);
        EXPECT_EQ(1, family->m_number_of_parts);
        EXPECT_EQ(1, family->m_number_of_listed_speed_grades);
        EXPECT_EQ(3, family->m_basic_infos[ENHANCED_PLL].m_number_of_charge_pump_currents);
        EXPECT_EQ(17, family->m_basic_infos[ENHANCED_PLL].m_bandwidth_settings_table_size);
    }
}

TEST_F(HostileDatabase, MayRunOutOfMemoryWhileAQueryIsMade)
{
    FAILING_HEAP heap;
    for (long nth = 1; nth <= 6; ++nth) {
        heap.fail_at(nth);
        PLL_QUERY query;
        query.add_migration_part("A", "a", "6");
        query.add_migration_part("B", "b", "6");
        const unsigned parts = query.get_number_of_migration_parts();
        PLL_QUERY copy(query);
        heap.fail_none();
        EXPECT_GE(2U, parts);
        query.add_migration_part("C", "c", "6");
        EXPECT_EQ(parts + 1, query.get_number_of_migration_parts());
        copy = query;
        EXPECT_EQ(parts + 1, copy.get_number_of_migration_parts());
    }
}

TEST_F(HostileDatabase, MayRunOutOfMemoryWhileAPllIsInitialised)
{
    FAILING_HEAP heap;
    PLL_MANAGER manager;
    ASSERT_TRUE(manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt"));
    PLL_QUERY query;
    query.m_family = "Fam";
    query.m_type = ENHANCED_PLL;
    query.add_migration_part("Fam", "P1", nullptr);
    bool is_initialised = false;
    for (long nth = 1; !is_initialised; ++nth) {
        ASSERT_GT(50, nth);
        PLL pll(1, PLL_MAX_TAPS);
        const MEM_VECTOR<int> currents = PLL::m_impl->m_charge_pump_currents;
        heap.fail_at(nth);
        is_initialised = manager.init_pll(&pll, query);
        EXPECT_EQ(heap.get_failures() == 0, is_initialised);
        heap.fail_none();
        EXPECT_EQ(is_initialised, pll.m_info.has_info());
        EXPECT_EQ(!is_initialised, currents == PLL::m_impl->m_charge_pump_currents);
    }
}

TEST_F(HostileDatabase, MayRunOutOfMemoryWhileItIsCreated)
{
    FAILING_HEAP heap;
    heap.fail_at(1);
    EXPECT_FALSE(PLL::init_family_info(m_dir.path().c_str()));
    EXPECT_EQ(nullptr, PLL::m_pll_manager);
    EXPECT_TRUE(PLL::init_family_info(m_dir.path().c_str()));
    PLL::delete_family_info();
}

TEST_F(HostileDatabase, MayRunOutOfMemoryInATokenReader)
{
    FAILING_HEAP heap;
    const PLL_MANAGER manager;
    for (long nth = 1; nth <= 3; ++nth) {
        heap.fail_at(nth);
        std::string numbers = "1 2 3 4";
        char* line = numbers.data();
        int* array = nullptr;
        EXPECT_EQ(0, manager.find_int_array(&line, &array));
        EXPECT_EQ(nullptr, array);
        heap.fail_at(nth);
        std::string names = "M N C0 C1";
        line = names.data();
        CDB_PLL_COUNTER_TYPE_ENUM* counters = nullptr;
        EXPECT_EQ(0, manager.find_counter_type_array(&line, &counters));
        EXPECT_EQ(nullptr, counters);
    }
    heap.fail_at(1);
    const int bit = 1;
    int* array = nullptr;
    EXPECT_EQ(0, PLL_MANAGER::compact_int_array_from_bits_array_and_sort(1, &bit, &array));
    EXPECT_EQ(nullptr, array);
}

}  // namespace
