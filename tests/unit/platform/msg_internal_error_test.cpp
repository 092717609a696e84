// Unit tests of the reporting of internal errors.
#include "msg_internal_error.h"

#include "error_guard.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct HEARD
{
    int m_count = 0;
    std::string m_text;
};

void hear(const char* condition, const char* component, const char* source, int line, void* context)
{
    auto* heard = static_cast<HEARD*>(context);
    ++heard->m_count;
    heard->m_text =
        std::string(condition) + "|" + component + "|" + source + "|" + std::to_string(line);
}

}  // namespace

TEST(InternalError, PassesTheFourItemsAndTheContext)
{
    HEARD heard;
    MSG_INTERNAL_ERROR::set_handler(hear, &heard);
    MSG_INTERNAL_ERROR::report("x > 0", "PLL", "pll_util", 12);
    install_error_guard();
    EXPECT_EQ(1, heard.m_count);
    EXPECT_EQ("x > 0|PLL|pll_util|12", heard.m_text);
}

TEST(InternalError, IsCountedWhateverTheHandler)
{
    const unsigned long before = MSG_INTERNAL_ERROR::get_report_count();
    HEARD heard;
    MSG_INTERNAL_ERROR::set_handler(hear, &heard);
    MSG_INTERNAL_ERROR::report("a", "PLL", "pll", 1);
    EXPECT_EQ(before + 1, MSG_INTERNAL_ERROR::get_report_count());
    MSG_INTERNAL_ERROR::set_handler(nullptr, &heard);
    MSG_INTERNAL_ERROR::report("b", "PLL", "pll", 1);
    EXPECT_EQ(before + 2, MSG_INTERNAL_ERROR::get_report_count());
    EXPECT_EQ(1, heard.m_count);
    install_error_guard();
}

TEST(InternalError, WritesNothingByDefault)
{
    MSG_INTERNAL_ERROR::set_handler(nullptr, nullptr);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    MSG_INTERNAL_ERROR::report("a", "PLL", "pll", 1);
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    install_error_guard();
}

TEST(HostileInternalError, PassesNullTextsOn)
{
    EXPECTED_REPORTS reports;
    MSG_INTERNAL_ERROR::report(nullptr, nullptr, nullptr, -1);
    ASSERT_EQ(1U, reports.count());
    EXPECT_EQ("(null)", reports.get()[0].m_condition);
    EXPECT_EQ(-1, reports.get()[0].m_line);
}
