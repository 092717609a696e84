// What broken files, huge values and exhausted memory can do to the database: nothing.
#include "error_guard.h"
#include "failing_heap.h"
#include "manager_builders.h"
#include "mem_alloc_sys.h"
#include "pll.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <sys/stat.h>

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

// Of the processor: the machine may be busy with other things.
double seconds(const std::function<void()>& operation)
{
    const std::clock_t start = std::clock();
    operation();
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

std::ptrdiff_t count_open_files()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

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

    // Reads the database and initialises a PLL from it.
    bool use()
    {
        return guarded([this] { return use_manager(); });
    }

    bool read_family()
    {
        return guarded([this] {
            PLL_MANAGER manager;
            return manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt");
        });
    }

    // Whatever an operation says, it ends soon, and leaves no memory, no open file and no other
    // locale behind.
    static bool guarded(const std::function<bool()>& operation)
    {
        const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
        const std::string locale = std::setlocale(LC_NUMERIC, nullptr);
        const std::ptrdiff_t files = count_open_files();
        bool is_ok = false;
        EXPECT_GT(1.0, seconds([&is_ok, &operation] { is_ok = operation(); }));
        EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks(nullptr));
        EXPECT_EQ(locale, std::setlocale(LC_NUMERIC, nullptr));
        EXPECT_EQ(files, count_open_files());
        return is_ok;
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

// What may stand in the place of a file without being one.
struct NO_FILE
{
    const char* m_name;
    std::function<void(const std::string& path)> m_make;
};

const NO_FILE NO_FILES[] = {
    {"nothing", [](const std::string&) {}},
    {"a directory", [](const std::string& path) { std::filesystem::create_directory(path); }},
    {"a pipe", [](const std::string& path) { EXPECT_EQ(0, mkfifo(path.c_str(), S_IRUSR)); }},
    {"a link to itself",
     [](const std::string& path) { std::filesystem::create_symlink(path, path); }},
    {"a link to a device without an end",
     [](const std::string& path) { std::filesystem::create_symlink("/dev/zero", path); }},
};

TEST_F(HostileDatabase, MayHaveNoFilesInThePlaceOfFiles)
{
    for (const NO_FILE& no_file : NO_FILES) {
        for (const std::string name : {"ddb_pll_path.txt", "family.txt", "table.txt", "inc.txt"}) {
            SCOPED_TRACE(no_file.m_name + (" for " + name));
            const std::string text = read_file(m_dir.file(name));
            std::filesystem::remove(m_dir.file(name));
            no_file.m_make(m_dir.file(name));
            EXPECT_EQ(name != "ddb_pll_path.txt" && name != "family.txt", use());
            EXPECT_EQ(name == "inc.txt" || name == "ddb_pll_path.txt", read_family());
            std::filesystem::remove(m_dir.file(name));
            write(name, text);
        }
    }
}

TEST_F(HostileDatabase, MayHaveAnEmptyFileOrAMarkAtTheHeadOfOne)
{
    for (const std::string mark : {"\xEF\xBB\xBF", "\xFF\xFE"}) {
        write("family.txt", mark + FAMILY_TEXT);
        EXPECT_FALSE(read_family());
        write("family.txt", FAMILY_TEXT);
        write("table.txt", mark + TABLE_TEXT);  // of another format then, with a column less
        EXPECT_TRUE(read_family());
        write("table.txt", TABLE_TEXT);
        write("ddb_pll_path.txt", mark + "Fam . family.txt\n");
        EXPECT_FALSE(use());
        write("ddb_pll_path.txt", PATH_TEXT);
        EXPECT_TRUE(use());
    }
    write("inc.txt", "");
    EXPECT_TRUE(read_family());
    write("table.txt", "");
    EXPECT_FALSE(read_family());
    write("family.txt", "");
    EXPECT_FALSE(read_family());
}

TEST_F(HostileDatabase, MayIncludeItselfOrEachOther)
{
    write("family.txt", TYPE_HEAD + "include family.txt\n");
    EXPECT_FALSE(read_family());
    std::string includes;
    for (int i = 0; i < 1000; ++i) {
        includes += "include inc.txt\ninclude ./inc.txt\n";
    }
    write("family.txt", TYPE_HEAD + includes);
    write("inc.txt", "n_counter_max 3\n");
    EXPECT_FALSE(read_family());
    write("inc.txt", includes + "include family.txt\n");
    EXPECT_FALSE(read_family());
    for (const std::string next : {"1", "2", "3", "4", "5", "6"}) {
        std::string text;
        for (int i = 0; i < 1000; ++i) {
            text += "include f" + std::to_string(std::stoi(next) + 1) + "\n";
        }
        write("f" + next, text);
    }
    write("f7", "n_counter_max 3\n");
    write("family.txt", TYPE_HEAD + "include f2\ninclude f1\n");
    EXPECT_FALSE(read_family());
}

TEST_F(HostileDatabase, MayAskForATableOfBillionsOfGroups)
{
    for (const std::string count : {"2147483647", "2147483648", "4194304"}) {
        SCOPED_TRACE(count);
        std::string text = TYPE_HEAD;
        text += "m_counter_max ";
        text += count;
        text += "\nvco_post_scale_counter_max 2\nbandwidth_settings_table_file table.txt\n";
        write("family.txt", text);
        const std::size_t bytes = MEM_MANAGER::get_live_bytes(nullptr);
        PLL_MANAGER manager;
        EXPECT_FALSE(manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt"));
        const PLL_BASIC_INFO& basic = manager.create_family_info("Fam")->m_basic_infos[0];
        EXPECT_EQ(nullptr, basic.m_bandwidth_settings_table);
        EXPECT_EQ(0, basic.m_bandwidth_settings_table_size);
        EXPECT_TRUE(basic.m_use_bandwidth_settings_table);
        EXPECT_GT(bytes + 100000, MEM_MANAGER::get_live_bytes(nullptr));
    }
}

TEST_F(HostileDatabase, MayNameManyFamiliesInOneFile)
{
    std::string text;
    for (int i = 0; i < 5000; ++i) {
        text.append("family f").append(std::to_string(i));
        text += "\npll FAST_PLL\nspeed_grade 6\npart P\n";
    }
    write("family.txt", text);
    EXPECT_TRUE(read_family());
}

TEST_F(HostileDatabase, ReadsTenThousandPartsInUnderASecond)
{
    std::string text = TYPE_HEAD;
    for (int i = 0; i < 10000; ++i) {
        text += "speed_grade g" + std::to_string(i) + "\npart p" + std::to_string(i) + "\n";
    }
    write("family.txt", text);
    EXPECT_TRUE(read_family());
}

TEST_F(HostileDatabase, ReadsTenThousandFamiliesInUnderASecond)
{
    std::string text;
    for (int i = 0; i < 10000; ++i) {
        text += "f" + std::to_string(i) + " . family.txt\n";
    }
    write("ddb_pll_path.txt", text);
    EXPECT_FALSE(use());
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

// A record that could not be made is a broken promise to the readers, which say so.
TEST_F(HostileDatabase, ReportsAFamilyThatMemoryDoesNotSufficeFor)
{
    const char* const CONDITION = "family_info != NULL";
    FAILING_HEAP heap;
    std::size_t reports_of_paths = 0;
    std::size_t reports_of_loading = 0;
    for (long nth = 1; nth <= 8; ++nth) {
        PLL_MANAGER manager;
        EXPECTED_REPORTS reports;
        heap.fail_at(nth);
        EXPECT_FALSE(manager.read(m_dir.path().c_str()));
        EXPECT_EQ(1, heap.get_failures());
        const std::size_t count = reports.count(CONDITION);
        reports_of_paths += count;
        heap.fail_from(1);
        EXPECT_EQ(nullptr, manager.read_family_info("a family of its own"));
        heap.fail_none();
        reports_of_loading += reports.count(CONDITION) - count;
    }
    EXPECT_LT(0U, reports_of_paths);
    EXPECT_EQ(8U, reports_of_loading);
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

TEST_F(HostileDatabase, MayRunOutOfMemoryWithListsOfItsHost)
{
    FAILING_HEAP heap;
    bool is_done = false;
    for (long nth = 1; !is_done; ++nth) {
        SCOPED_TRACE(nth);
        ASSERT_GT(100, nth);
        PLL_MANAGER manager;
        fill_by_hand(&manager, 20);
        PLL_FAMILY_INFO* const first = manager.m_families[0];
        const auto count_found = [&manager, first] {
            const PLL_FAMILY_INFO* const family = manager.create_family_info("f7");
            const char* const grade = manager.create_speed_grade(first, "g8");
            const PLL_PART_INFO* const part = manager.create_part_info(first, "p9", "g9", FAST_PLL);
            const bool has_family = family == manager.m_families[7];
            const bool has_grade = grade == first->m_speed_grades[8];
            const bool has_part = part == first->m_parts[9];
            return (has_family ? 1 : 0) + (has_grade ? 1 : 0) + (has_part ? 1 : 0);
        };
        heap.fail_at(nth);
        const int found = count_found();
        is_done = heap.get_failures() == 0;
        EXPECT_EQ(is_done ? 3 : 2, found);
        heap.fail_none();
        EXPECT_EQ(3, count_found());
    }
}

TEST_F(HostileDatabase, MayRunOutOfMemoryForTheRecordOfAQuery)
{
    FAILING_HEAP heap;
    PLL_QUERY full;
    full.m_family = "F";
    full.add_migration_part("A", "a", "6");
    heap.fail_from(1);
    PLL_QUERY empty;  // without a record of migration parts
    empty = full;
    EXPECT_EQ(nullptr, empty.m_family);
    empty.add_migration_part("B", "b", "6");
    EXPECT_EQ(0U, empty.get_number_of_migration_parts());
    heap.fail_none();
    EXPECT_EQ(nullptr, empty.m_migration_info);
    empty.m_family = "E";
    full = empty;
    EXPECT_STREQ("E", full.m_family);
    EXPECT_EQ(0U, full.get_number_of_migration_parts());
    empty.add_migration_part("B", "b", "6");
    EXPECT_EQ(1U, empty.get_number_of_migration_parts());
}

TEST_F(HostileDatabase, InitialisesAPllWithoutSharedLists)
{
    FAILING_HEAP heap;
    PLL_MANAGER manager;
    ASSERT_TRUE(manager.read_family_info_from_file(m_dir.path().c_str(), "family.txt"));
    PLL_QUERY query;
    query.m_family = "Fam";
    query.m_type = ENHANCED_PLL;
    heap.fail_from(1);
    PLL pll(1, PLL_MAX_TAPS);
    heap.fail_none();
    ASSERT_EQ(nullptr, PLL::m_impl);
    EXPECT_TRUE(manager.init_pll(&pll, query));
    EXPECT_EQ(8, pll.m_m.m_max_count);
    EXPECT_EQ(nullptr, PLL::m_impl);
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
