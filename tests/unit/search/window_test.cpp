// Windows of N against a walk over every N.
#include "search/window.h"

#include <gtest/gtest.h>

#include <vector>

using namespace pll_internal;

namespace {

bool is_legal(const ROW_PERIODS& periods, std::int64_t n)
{
    return !periods.is_too_fast(n) && !periods.is_too_slow(n);
}

std::vector<std::int64_t> numbers(N_RANGE range)
{
    std::vector<std::int64_t> all;
    for (std::int64_t n = range.m_first; n <= range.m_last; ++n) {
        all.push_back(n);
    }
    return all;
}

// The N of a row as a plain loop visits them, ended by the first that is too slow.
struct WALK
{
    std::vector<std::int64_t> m_before, m_legal, m_behind;
};

WALK walk(const ROW_PERIODS& periods, N_RANGE all)
{
    WALK seen;
    for (std::int64_t n = all.m_first; n <= all.m_last; ++n) {
        if (is_legal(periods, n)) {
            seen.m_legal.push_back(n);
        } else if (seen.m_legal.empty() && !periods.is_too_slow(n)) {
            seen.m_before.push_back(n);
        } else {
            seen.m_behind.push_back(n);
        }
        if (periods.is_too_slow(n)) {
            break;
        }
    }
    return seen;
}

TEST(FirstThatHolds, IsFoundFromEveryGuess)
{
    for (std::int64_t border = -3; border <= 13; ++border) {
        const std::int64_t expected = std::clamp<std::int64_t>(border, 0, 11);
        for (double guess = -5.0; guess <= 15.0; guess += 0.5) {
            EXPECT_EQ(expected,
                      first_that_holds(0, 10, guess, [&](std::int64_t n) { return n >= border; }))
                << border << " guessed at " << guess;
        }
    }
}

TEST(FirstThatHolds, OfNothingIsThePlaceAfterIt)
{
    EXPECT_EQ(5, first_that_holds(5, 4, 5.0, [](std::int64_t) { return true; }));
}

TEST(FirstThatHolds, NeedsFewLooksFarFromTheGuess)
{
    int looks = 0;
    const std::int64_t last = std::int64_t{1} << 31U;
    EXPECT_EQ(last - 7, first_that_holds(1, last, 1.0, [&](std::int64_t n) {
                  ++looks;
                  return n >= last - 7;
              }));
    EXPECT_LT(looks, 40);
}

// Whether the row has a window.
bool expect_split_as_walked(const ROW_PERIODS& periods, N_RANGE all)
{
    const WALK seen = walk(periods, all);
    const ROW row = split_growing_row(periods, all);
    EXPECT_EQ(seen.m_legal, numbers(row.m_legal));
    EXPECT_EQ(seen.m_behind, numbers(row.m_behind));
    EXPECT_EQ(seen.m_before, numbers(row.m_before));
    return !seen.m_legal.empty();
}

int count_windows(double fin, double m, double border)
{
    int count = 0;
    for (const double width : {-3.0, -2.0, 0.0, 1.0, 11.0}) {
        const ROW_PERIODS periods(fin, m, {border, border + width}, {3.0, 90.0});
        for (const N_RANGE all : {N_RANGE{1, 20}, N_RANGE{-4, 3}, N_RANGE{5, 5}}) {
            count += expect_split_as_walked(periods, all) ? 1 : 0;
        }
    }
    return count;
}

TEST(GrowingRow, IsSplitAsAWalkOverItFindsIt)
{
    int with_window = 0;
    for (const double fin : {1.0, 2.0, 7.0, 31.0}) {
        for (double m = 2.0; m <= 9.0; ++m) {
            for (double border = -2.0; border <= 40.0; ++border) {
                with_window += count_windows(fin, m, border);
            }
        }
    }
    EXPECT_GT(with_window, 100);
}

TEST(FallingRow, IsSplitAsAWalkOverItFindsIt)
{
    int with_window = 0;
    for (const double fin : {0.0, -1.0, -5.0}) {
        for (double m = 2.0; m <= 6.0; ++m) {
            for (double border = -30.0; border <= 4.0; ++border) {
                const ROW_PERIODS periods(fin, m, {border, border + 12.0}, {-80.0, 10.0});
                const N_RANGE all{-3, 20};
                const WALK seen = walk(periods, all);
                const ROW row = split_falling_row(periods, all);
                std::vector<std::int64_t> misses = seen.m_before;
                misses.insert(misses.end(), seen.m_behind.begin(), seen.m_behind.end());
                EXPECT_EQ(seen.m_legal, numbers(row.m_legal));
                EXPECT_EQ(misses, numbers(row.m_behind));
                EXPECT_TRUE(row.m_before.is_empty());
                with_window += seen.m_legal.empty() ? 0 : 1;
            }
        }
    }
    EXPECT_GT(with_window, 20);
}

TEST(LegalWindow, HoldsEveryLegalNAndNoOther)
{
    for (const double fin : {-3.0, 0.0, 2.0, 9.0}) {
        for (double border = -40.0; border <= 40.0; ++border) {
            const ROW_PERIODS periods(fin, 3.0, {border, border + 5.0}, {-50.0, 70.0});
            const N_RANGE window = periods.legal_window({-6, 25});
            for (std::int64_t n = -6; n <= 25; ++n) {
                const bool inside = window.m_first <= n && n <= window.m_last;
                EXPECT_EQ(is_legal(periods, n), inside) << fin << " " << border << " " << n;
            }
        }
    }
}

TEST(LegalWindow, TakesAPeriodOnThePicosecondOfToleranceAndNoneBeyond)
{
    // 1000 ps over M = 10: N x 100 ps.
    const ROW_PERIODS reached(1000.0, 10.0, {1001.0, 1999.0}, {0.0, 1e9});
    EXPECT_EQ(10, reached.legal_window({1, 100}).m_first);
    EXPECT_EQ(20, reached.legal_window({1, 100}).m_last);
    const ROW_PERIODS missed(1000.0, 10.0, {1002.0, 1998.0}, {0.0, 1e9});
    EXPECT_EQ(11, missed.legal_window({1, 100}).m_first);
    EXPECT_EQ(19, missed.legal_window({1, 100}).m_last);
}

}  // namespace
