// The numeric locale: '.' while a family file is read, the host's before and after.
#include "comma_locale.h"
#include "error_guard.h"
#include "failing_heap.h"
#include "manager_builders.h"
#include "mem_alloc_sys.h"
#include "msg_internal_error.h"

#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <sstream>
#include <string>

namespace {

TEST(NumericLocale, DoesNotChangeHowRealsAreRead)
{
    const COMMA_LOCALE comma;
    DATABASE database;
    EXPECT_TRUE(database.read(TYPE_HEAD + "ss_bandwidth 1.5\nbandwidth_low 2,5\n"));
    EXPECT_EQ(1.5, database.basic().m_ss_bandwidth);
    EXPECT_EQ(2.0, database.basic().m_bandwidth_low);
    COMMA_LOCALE::expect_unchanged();
}

TEST(NumericLocale, DoesNotChangeHowATokenIsRead)
{
    const COMMA_LOCALE comma;
    const PLL_MANAGER manager;
    std::string text = "1.5";
    char* line = text.data();
    double value = 0.0;
    EXPECT_TRUE(manager.find_float_token(&line, &value));
    EXPECT_EQ(1.5, value);
    COMMA_LOCALE::expect_unchanged();
}

TEST(NumericLocale, IsRestoredOnEveryPath)
{
    const COMMA_LOCALE comma;
    DATABASE database;
    EXPECT_FALSE(database.read(""));
    COMMA_LOCALE::expect_unchanged();
    EXPECT_FALSE(database.read("frob\n"));
    COMMA_LOCALE::expect_unchanged();
    EXPECT_FALSE(database.read(TYPE_HEAD + "bandwidth_settings_table_file nowhere\n"));
    COMMA_LOCALE::expect_unchanged();
    EXPECT_FALSE(database.read(TYPE_HEAD + "include family.txt\n"));
    COMMA_LOCALE::expect_unchanged();
    EXPECT_FALSE(database.m_manager.read_family_info_from_file("/nowhere", "at all"));
    COMMA_LOCALE::expect_unchanged();
}

TEST(NumericLocale, IsRestoredWhenMemoryRunsOut)
{
    const COMMA_LOCALE comma;
    TEMP_DIR dir;
    write_file(dir.file("family.txt"), PART_HEAD + "vco_min 5\n");
    EXPECTED_REPORTS reports;
    reports.accept_all();
    FAILING_HEAP heap;
    bool is_read = false;
    for (long nth = 1; !is_read; ++nth) {
        ASSERT_GT(100, nth);
        PLL_MANAGER manager;
        heap.fail_at(nth);
        is_read = manager.read_family_info_from_file(dir.path().c_str(), "family.txt");
        COMMA_LOCALE::expect_unchanged();
        heap.fail_none();
    }
}

// Sees the decimal point that a host has while the library reports to it.
void note_decimal_point(const char*, const char*, const char*, int, void* context)
{
    *static_cast<std::string*>(context) = std::localeconv()->decimal_point;
}

TEST(NumericLocale, IsThatOfCWhileAFileIsRead)
{
    const COMMA_LOCALE comma;
    DATABASE database;
    std::string decimal_point;
    MSG_INTERNAL_ERROR::set_handler(note_decimal_point, &decimal_point);
    EXPECT_TRUE(database.read(TYPE_HEAD + "vco_post_scale_counter_max 3\n"));
    install_error_guard();
    EXPECT_EQ(".", decimal_point);
    COMMA_LOCALE::expect_unchanged();
}

// A decimal comma for the streams of the C++ library.
struct COMMA_PUNCTUATION : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
};

TEST(NumericLocale, OfStreamsDoesNotChangeHowTablesAreRead)
{
    const std::locale previous =
        std::locale::global(std::locale(std::locale::classic(), new COMMA_PUNCTUATION));
    DATABASE database;
    database.write("table.txt", "V1 \n\n0 20 30 1.5 1 1 1 1 1 1 1 1\n");
    EXPECT_TRUE(database.read(TYPE_HEAD + "bandwidth_settings_table_file table.txt\n"));
    EXPECT_EQ(1.5,
              database.basic().m_bandwidth_settings_table[0].m_settings[0]->m_typical_phase_margin);

    std::istringstream stream("2,5 ");
    double value = 0.0;
    EXPECT_TRUE(pll_read_field(stream, value));
    EXPECT_EQ(2.5, value);
    std::locale::global(previous);
}

}  // namespace
