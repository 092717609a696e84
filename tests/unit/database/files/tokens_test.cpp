// Tokens: words, numbers, lists and names.
#include "error_guard.h"
#include "mem_alloc_sys.h"
#include "pll_manager.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

const char SOURCE[] = "pll_manager";

// A line and the cursor into it.
struct LINE
{
    explicit LINE(const std::string& text) : m_text(text), m_cursor(m_text.data()) {}

    std::string rest() const { return m_cursor; }

    std::string m_text;
    char* m_cursor;
};

template <class T>
std::vector<T> take_array(int count, T* array)
{
    EXPECT_EQ(count == 0, array == nullptr);
    std::vector<T> values(array, array + count);
    MEM_MANAGER::delete_wrapper(array, SOURCE);
    return values;
}

std::vector<int> int_array(LINE* line)
{
    int none = 0;
    int* array = &none;
    const PLL_MANAGER manager;
    const int count = manager.find_int_array(&line->m_cursor, &array);
    return take_array(count, array);
}

struct WORD_CASE
{
    const char* m_name;
    const char* m_line;
    const char* m_word;  // null: none
    const char* m_rest;
};

// clang-format off
const WORD_CASE UNQUOTED_CASES[] = {
    // name                               line             word      rest
    {"a word alone",                      "one",           "one",    ""},
    {"blanks around it",                  " \t\r\none two", "one",   "two"},
    {"each separator ends it",            "one\ttwo",      "one",    "two"},
    {"only one separator is consumed",    "one  two",      "one",    " two"},
    {"a carriage return ends it",         "one\r",         "one",    ""},
    {"a form feed is a character",        "one\ftwo",      "one\ftwo", ""},
    {"quotes are characters",             "\"one two\"",   "\"one",  "two\""},
    {"no word in an empty line",          "",              nullptr,  ""},
    {"no word among blanks",              "  \t ",         nullptr,  ""},
    {"no word in a comment",              "  # one",       nullptr,  "# one"},
    {"a comment sign within a word",      "a#b c",         "a#b",    "c"},
};
const WORD_CASE QUOTED_CASES[] = {
    // name                               line             word      rest
    {"a word without quotes",             " one two",      "one",    "two"},
    {"quotes hold blanks and signs",      "\"a b#c\" d",   "a b#c",  " d"},
    {"the next word may touch the quote", "\"a b\"c",      "a b",    "c"},
    {"an unclosed quote takes the rest",  "\"a b # c",     "a b # c", ""},
    {"empty quotes are an empty word",    "\"\" b",        "",       " b"},
    {"a lone quote is an empty word",     "\"",            "",       ""},
    {"a quote within a word is none",     "a\"b c\"",      "a\"b",   "c\""},
    {"no word in a comment",              " #\"a\"",       nullptr,  "#\"a\""},
    {"no word in an empty line",          " ",             nullptr,  ""},
};
// clang-format on

void expect_word(const WORD_CASE& c, const LINE& line, const char* word)
{
    if (c.m_word == nullptr) {
        EXPECT_EQ(nullptr, word);
    } else {
        EXPECT_STREQ(c.m_word, word);
    }
    EXPECT_EQ(c.m_rest, line.rest());
}

TEST(UnquotedWords, RunBetweenSeparators)
{
    const PLL_MANAGER manager;
    for (const WORD_CASE& c : UNQUOTED_CASES) {
        SCOPED_TRACE(c.m_name);
        LINE line(c.m_line);
        const char* const word = manager.find_unquoted_string_token(&line.m_cursor);
        expect_word(c, line, word);
    }
}

TEST(QuotedWords, RunToTheNextQuote)
{
    const PLL_MANAGER manager;
    for (const WORD_CASE& c : QUOTED_CASES) {
        SCOPED_TRACE(c.m_name);
        LINE line(c.m_line);
        const char* const word = manager.find_string_token(&line.m_cursor);
        expect_word(c, line, word);
    }
}

TEST(Words, WithoutALineAreReportedAndNull)
{
    EXPECTED_REPORTS reports;
    const PLL_MANAGER manager;
    char* line = nullptr;
    int value = 0;
    double real = 0.0;
    EXPECT_EQ(nullptr, manager.find_unquoted_string_token(nullptr));
    EXPECT_EQ(nullptr, manager.find_string_token(nullptr));
    EXPECT_FALSE(manager.find_number_token(nullptr, &value));
    EXPECT_FALSE(manager.find_float_token(nullptr, &real));
    EXPECT_FALSE(manager.find_bool_token(nullptr));
    reports.expect_only("line != NULL", SOURCE, 5);
    EXPECT_EQ(nullptr, manager.find_unquoted_string_token(&line));
    EXPECT_EQ(nullptr, manager.find_string_token(&line));
    EXPECT_FALSE(manager.find_number_token(&line, &value));
    EXPECT_FALSE(manager.find_float_token(&line, &real));
    EXPECT_FALSE(manager.find_bool_token(&line));
    reports.expect_only("*line != NULL", SOURCE, 5);
}

struct NUMBER_CASE
{
    const char* m_line;
    bool m_is_number;
    int m_value;
    const char* m_rest;
};

// clang-format off
const NUMBER_CASE NUMBER_CASES[] = {
    // line                          number value                              rest
    {"0",                            true,  0,                                 ""},
    {"007 8",                        true,  7,                                 "8"},
    {"2147483647",                   true,  std::numeric_limits<int>::max(),   ""},
    {"2147483648",                   true,  std::numeric_limits<int>::min(),   ""},
    {"4294967296",                   true,  0,                                 ""},
    {"4294967301",                   true,  5,                                 ""},
    {"9223372036854775807",          true,  -1,                                ""},
    {"9223372036854775808",          true,  -1,                                ""},
    {"99999999999999999999999999 x", true,  -1,                                "x"},
    {"+1 2",                         false, 42,                                "2"},
    {"-1 2",                         false, 42,                                "2"},
    {"1x 2",                         false, 42,                                "2"},
    {"1.0 2",                        false, 42,                                "2"},
    {"0x10",                         false, 42,                                ""},
    {"\"1\"",                        false, 42,                                ""},
    {"",                             false, 42,                                ""},
    {"# 1",                          false, 42,                                "# 1"},
};
// clang-format on

TEST(Numbers, AreDigitsOnlyAndTheirTokenIsConsumed)
{
    const PLL_MANAGER manager;
    for (const NUMBER_CASE& c : NUMBER_CASES) {
        SCOPED_TRACE(c.m_line);
        LINE line(c.m_line);
        int value = 42;
        EXPECT_EQ(c.m_is_number, manager.find_number_token(&line.m_cursor, &value));
        EXPECT_EQ(c.m_value, value);
        EXPECT_EQ(c.m_rest, line.rest());
    }
}

struct REAL_CASE
{
    const char* m_line;
    bool m_is_real;
    double m_value;
};

// clang-format off
const REAL_CASE REAL_CASES[] = {
    {"1e3",      true,  1000.0},
    {"2.5abc 7", true,  2.5},
    {"-0.5",     true,  -0.5},
    {"+.25",     true,  0.25},
    {"0x10",     true,  16.0},
    {"1e999",    true,  HUGE_VAL},
    {"inf",      true,  HUGE_VAL},
    {"2,5",      true,  2.0},
    {"0.000",    false, 42.0},
    {"0",        false, 42.0},
    {"-0",       false, 42.0},
    {"1e-999",   false, 42.0},
    {"abc",      false, 42.0},
    {"",         false, 42.0},
    {"# 1",      false, 42.0},
};
// clang-format on

TEST(Reals, AreTheLongestPrefixAndNotZero)
{
    const PLL_MANAGER manager;
    for (const REAL_CASE& c : REAL_CASES) {
        SCOPED_TRACE(c.m_line);
        LINE line(c.m_line);
        double value = 42.0;
        EXPECT_EQ(c.m_is_real, manager.find_float_token(&line.m_cursor, &value));
        EXPECT_EQ(c.m_value, value);
    }
    LINE line("nan");
    double value = 42.0;
    EXPECT_TRUE(manager.find_float_token(&line.m_cursor, &value));
    EXPECT_TRUE(std::isnan(value));
}

TEST(IntArrays, StandInFileOrderAndLoseTheWordThatEndsThem)
{
    LINE line("3 1 2 x 4");
    EXPECT_EQ((std::vector<int>{3, 1, 2}), int_array(&line));
    EXPECT_EQ("4", line.rest());
}

TEST(IntArrays, EndAtAValueThatIsCutToANegativeOne)
{
    LINE line("5 4294967295 6");
    EXPECT_EQ((std::vector<int>{5}), int_array(&line));
    EXPECT_EQ("6", line.rest());
}

TEST(IntArrays, ThatAreEmptyAreNull)
{
    for (const char* text : {"", "x 1", "# 1", "-1"}) {
        SCOPED_TRACE(text);
        LINE line(text);
        EXPECT_TRUE(int_array(&line).empty());
    }
}

TEST(IntArrays, MayBeLong)
{
    std::string text;
    std::vector<int> expected;
    for (int i = 0; i < 1000; ++i) {
        text += std::to_string(i * 7) + " ";
        expected.push_back(i * 7);
    }
    LINE line(text);
    EXPECT_EQ(expected, int_array(&line));
}

TEST(IntArrays, AreSortedOnRequest)
{
    const PLL_MANAGER manager;
    LINE line("3 1 2 x 4");
    int* array = nullptr;
    const int count = manager.find_int_array_and_sort(&line.m_cursor, &array);
    EXPECT_EQ((std::vector<int>{1, 2, 3}), take_array(count, array));
    EXPECT_EQ("4", line.rest());
}

TEST(Lists, NeedAPlaceForTheirArray)
{
    const PLL_MANAGER manager;
    const int bit = 1;
    LINE line("1 2");
    EXPECT_EQ(0, manager.find_int_array(&line.m_cursor, nullptr));
    EXPECT_EQ(0, manager.find_int_array_and_sort(&line.m_cursor, nullptr));
    EXPECT_EQ(0, manager.find_counter_type_array(&line.m_cursor, nullptr));
    EXPECT_EQ(0, PLL_MANAGER::compact_int_array_from_bits_array_and_sort(1, &bit, nullptr));
    EXPECT_FALSE(manager.find_number_token(&line.m_cursor, nullptr));
    EXPECT_FALSE(manager.find_float_token(&line.m_cursor, nullptr));
}

TEST(Compaction, KeepsThePositiveEntriesSorted)
{
    const int BITS[] = {0, 5, -1, 3};
    int* array = nullptr;
    const int count = PLL_MANAGER::compact_int_array_from_bits_array_and_sort(4, BITS, &array);
    EXPECT_EQ((std::vector<int>{3, 5}), take_array(count, array));
}

TEST(Compaction, OfNoPositiveEntryStillGivesAnArray)
{
    const int BITS[] = {0, -1};
    int* array = nullptr;
    EXPECT_EQ(0, PLL_MANAGER::compact_int_array_from_bits_array_and_sort(2, BITS, &array));
    EXPECT_NE(nullptr, array);
    MEM_MANAGER::delete_wrapper(array, SOURCE);
}

TEST(Compaction, OfNothingGivesNull)
{
    const int BITS[] = {1};
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        int value = 0;
        int* array = &value;
        EXPECT_EQ(0, PLL_MANAGER::compact_int_array_from_bits_array_and_sort(count, BITS, &array));
        EXPECT_EQ(nullptr, array);
    }
}

TEST(Compaction, OfNullBitsIsReported)
{
    EXPECTED_REPORTS reports;
    int value = 0;
    int* array = &value;
    EXPECT_EQ(0, PLL_MANAGER::compact_int_array_from_bits_array_and_sort(2, nullptr, &array));
    EXPECT_EQ(nullptr, array);
    reports.expect_only("bits_array != NULL", SOURCE);
    EXPECT_EQ(0, PLL_MANAGER::compact_int_array_from_bits_array_and_sort(0, nullptr, &array));
    reports.expect_none();
}

std::vector<CDB_PLL_COUNTER_TYPE_ENUM> counters(LINE* line)
{
    const PLL_MANAGER manager;
    CDB_PLL_COUNTER_TYPE_ENUM* array = nullptr;
    const int count = manager.find_counter_type_array(&line->m_cursor, &array);
    return take_array(count, array);
}

TEST(CounterLists, EndAtTheWordEnd)
{
    LINE line("C0 m End C1");
    EXPECT_EQ((std::vector<CDB_PLL_COUNTER_TYPE_ENUM>{CDB_PLL_COUNTER_C0, CDB_PLL_COUNTER_M}),
              counters(&line));
    EXPECT_EQ("C1", line.rest());
}

TEST(CounterLists, TakeQuotesAndMarkUnknownNames)
{
    LINE line("\"L0\" x9 N # L1");
    EXPECT_EQ((std::vector<CDB_PLL_COUNTER_TYPE_ENUM>{CDB_PLL_COUNTER_L0, CDB_PLL_COUNTER_TYPE_MAX,
                                                      CDB_PLL_COUNTER_N}),
              counters(&line));
}

TEST(CounterLists, ThatAreEmptyAreNull)
{
    LINE ended("end C0");
    EXPECT_TRUE(counters(&ended).empty());
    LINE empty("");
    EXPECT_TRUE(counters(&empty).empty());
}

TEST(Flags, AreTrueForThreeWords)
{
    const PLL_MANAGER manager;
    for (const char* word : {"true", "TRUE", "yes", "Yes x", " on", "oN"}) {
        SCOPED_TRACE(word);
        LINE line(word);
        EXPECT_TRUE(manager.find_bool_token(&line.m_cursor));
    }
    for (const char* word : {"", "false", "1", "t", "truely", "\"true\"", "# true", "off"}) {
        SCOPED_TRACE(word);
        LINE line(word);
        EXPECT_FALSE(manager.find_bool_token(&line.m_cursor));
    }
}

TEST(Names, OfPllTypes)
{
    const PLL_MANAGER manager;
    EXPECT_EQ(ENHANCED_PLL, manager.find_pll_type_enum("ENHANCED_PLL"));
    EXPECT_EQ(FAST_PLL, manager.find_pll_type_enum("fast_pll"));
    EXPECT_EQ(FAST_PLL_HIGH_SPEED, manager.find_pll_type_enum("Fast_PLL_High_Speed"));
    EXPECT_EQ(VESTRA_PLL, manager.find_pll_type_enum("VESTRA_PLL"));
    for (const char* name : {"", "FAST", "FAST_PLL_", static_cast<const char*>(nullptr)}) {
        EXPECT_EQ(PLL_TYPE_MAX, manager.find_pll_type_enum(name));
    }
}

TEST(Names, OfReconfigurationTypes)
{
    const PLL_MANAGER manager;
    EXPECT_EQ(0, manager.find_reconfig_type_enum("none"));
    EXPECT_EQ(1, manager.find_reconfig_type_enum("SHORT"));
    EXPECT_EQ(2, manager.find_reconfig_type_enum("long"));
    EXPECT_EQ(3, manager.find_reconfig_type_enum("Enhanced"));
    EXPECT_EQ(4, manager.find_reconfig_type_enum("other"));
    EXPECT_EQ(4, manager.find_reconfig_type_enum(nullptr));
}

TEST(Names, OfCounters)
{
    const char* const NAMES[] = {"L0", "L1", "G0", "G1", "G2", "G3", "E0", "E1", "E2",    "E3",
                                 "C0", "C1", "C2", "C3", "C4", "C5", "M",  "N",  "L0TAP", "L1TAP"};
    const PLL_MANAGER manager;
    int expected = 0;
    for (const char* name : NAMES) {
        EXPECT_EQ(expected, manager.find_counter_type_enum(name)) << name;
        ++expected;
    }
    EXPECT_EQ(CDB_PLL_COUNTER_L0TAP, manager.find_counter_type_enum("l0tap"));
    EXPECT_EQ(20, manager.find_counter_type_enum("C6"));
    EXPECT_EQ(20, manager.find_counter_type_enum(nullptr));
}

}  // namespace
