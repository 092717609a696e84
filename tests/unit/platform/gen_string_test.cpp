// Unit tests of the text helpers.
#include "gen_string.h"

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace {

int sign(int value)
{
    return (value > 0) - (value < 0);
}

struct COMPARE_CASE
{
    const char* m_name;
    const char* m_a;
    const char* m_b;
    int m_sign;
};

// clang-format off
constexpr COMPARE_CASE COMPARE_CASES[] = {
    // name                             a          b          sign
    {"equal",                           "abc",     "abc",      0},
    {"equal but for case",              "ABC_x1",  "abc_X1",   0},
    {"earlier letter",                  "abc",     "ABD",     -1},
    {"later letter",                    "ABD",     "abc",      1},
    {"a beginning comes first",         "ab",      "abc",     -1},
    {"the longer comes last",           "abc",     "ab",       1},
    {"both empty",                      "",        "",         0},
    {"empty comes first",               "",        "a",       -1},
    {"null counts as empty",            nullptr,   "",         0},
    {"null comes first",                nullptr,   "a",       -1},
    {"something after null",            "a",       nullptr,    1},
    {"the neighbours of A are letters", "@",       "`",       -1},
    {"the neighbours of Z likewise",    "[",       "{",       -1},
    {"underscore before lower case",    "_",       "A",       -1},
    {"beyond ASCII after all letters",  "\xe4",    "z",        1},
    {"no case beyond ASCII",            "\xc4",    "\xe4",    -1},
};
// clang-format on

}  // namespace

TEST(GenStricmp, IgnoresTheCaseOfAsciiLettersOnly)
{
    for (const COMPARE_CASE& c : COMPARE_CASES) {
        SCOPED_TRACE(c.m_name);
        EXPECT_EQ(c.m_sign, sign(gen_stricmp(c.m_a, c.m_b)));
        EXPECT_EQ(-c.m_sign, sign(gen_stricmp(c.m_b, c.m_a)));
    }
}

TEST(GenStrlen, CountsUpToTheNul)
{
    EXPECT_EQ(0U, gen_strlen(""));
    EXPECT_EQ(3U, gen_strlen("abc"));
    EXPECT_EQ(0U, gen_strlen(nullptr));
}

TEST(GenStrcpy, CopiesWithTheNul)
{
    char room[8] = "xxxxxxx";
    EXPECT_EQ(room, gen_strcpy(room, "abc"));
    EXPECT_STREQ("abc", room);
    EXPECT_EQ('x', room[4]);
    EXPECT_EQ(room, gen_strcpy(room, ""));
    EXPECT_STREQ("", room);
}

TEST(GenStrcpy, LeavesTheDestinationWithoutASource)
{
    char room[8] = "abc";
    EXPECT_EQ(room, gen_strcpy(room, nullptr));
    EXPECT_STREQ("abc", room);
    EXPECT_EQ(nullptr, gen_strcpy(nullptr, "abc"));
}

TEST(GenStrcat, Appends)
{
    char room[8] = "ab";
    EXPECT_EQ(room, gen_strcat(room, "cd"));
    EXPECT_EQ(room, gen_strcat(room, ""));
    EXPECT_EQ(room, gen_strcat(room, nullptr));
    EXPECT_STREQ("abcd", room);
    EXPECT_EQ(nullptr, gen_strcat(nullptr, "abc"));
}
