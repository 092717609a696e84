// Unit tests of the guard itself: a guard that never fails a test would be none.
#include "error_guard.h"

#include "msg_internal_error.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

namespace {

void report(const char* condition)
{
    MSG_INTERNAL_ERROR::report(condition, "PLL", "pll", 1);
}

void report_with_an_unasking_object()
{
    const EXPECTED_REPORTS reports;
    report("a > b");
}

}  // namespace

TEST(ErrorGuard, FailsATestThatExpectsNoReport)
{
    EXPECT_NONFATAL_FAILURE(report("a > b"), "unexpected internal error \"a > b\" of PLL pll:1");
}

TEST(ErrorGuard, FailsATestThatDoesNotAsk)
{
    EXPECT_NONFATAL_FAILURE(report_with_an_unasking_object(), "did not ask about");
}

TEST(ErrorGuard, FailsATestThatExpectsOtherReports)
{
    EXPECTED_REPORTS reports;
    report("a > b");
    EXPECT_NONFATAL_FAILURE(reports.expect_only("a > c", "pll"), "a > b");
    report("a > b");
    EXPECT_NONFATAL_FAILURE(reports.expect_only("a > b", "pll_prop"), "PLL pll:1");
    report("a > b");
    EXPECT_NONFATAL_FAILURE(reports.expect_only("a > b", "pll", 2), "expected these");
    EXPECT_NONFATAL_FAILURE(reports.expect_only("a > b", "pll"), "no report");
    MSG_INTERNAL_ERROR::report("a > b", "OTHER", "pll", 1);
    EXPECT_NONFATAL_FAILURE(reports.expect_only("a > b", "pll"), "OTHER");
    MSG_INTERNAL_ERROR::report("a > b", "PLL", "pll", 0);
    EXPECT_NONFATAL_FAILURE(reports.expect_only("a > b", "pll"), "pll:0");
}

TEST(ErrorGuard, RecordsInTheInnermostObject)
{
    EXPECTED_REPORTS outer;
    {
        EXPECTED_REPORTS inner;
        report("inner");
        inner.expect_only("inner", "pll");
    }
    report("outer");
    EXPECT_EQ(1U, outer.count());
    EXPECT_EQ(1U, outer.count("outer"));
    EXPECT_EQ(0U, outer.count("inner"));
    outer.expect_sequence({"outer"}, "pll");
    outer.expect_none();
}
