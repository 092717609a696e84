// Internal errors in tests: any report fails the running test, unless the test expects reports.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// What the library reported, in the order of its four items.
struct ERROR_REPORT
{
    std::string m_condition;
    std::string m_component;
    std::string m_source;
    int m_line;
};

// Records the reports made while it lives, instead of failing the test:
//
//   EXPECTED_REPORTS reports;
//   PLL_UTIL::gcd(0, 5);
//   reports.expect_only("x > 0 && y > 0", "pll_util", 1);
//
// Objects nest; the innermost one records. Reports that are still unasked for when the object goes
// fail the test.
class EXPECTED_REPORTS
{
public:
    EXPECTED_REPORTS();
    ~EXPECTED_REPORTS();
    EXPECTED_REPORTS(const EXPECTED_REPORTS&) = delete;
    EXPECTED_REPORTS& operator=(const EXPECTED_REPORTS&) = delete;

    // Fails the test unless exactly `count` reports were made, each of `condition` by component
    // "PLL" and `source` with a line above 0. Forgets them.
    void expect_only(const char* condition, const char* source, std::size_t count = 1);

    // Fails the test unless these conditions, all of `source`, were reported in this order and
    // nothing else. Forgets them.
    void expect_sequence(const std::vector<std::string>& conditions, const char* source);

    // Fails the test when anything was reported.
    void expect_none();

    // Reports so far (since the last of the calls above), and how many of one condition. Asking
    // counts as expecting them.
    std::size_t count();
    std::size_t count(const char* condition);

    // All of them, for questions that the above do not answer.
    const std::vector<ERROR_REPORT>& get();

    // Any number of reports is right: for tests that sweep hostile values.
    void accept_all();

    // What the handler calls: records the report, or fails the test when none is expected.
    static void record(const ERROR_REPORT& report);

private:
    std::vector<ERROR_REPORT> m_reports;
    std::size_t m_seen;
    bool m_accept_all;
    EXPECTED_REPORTS* m_outer;
};

// Installs the handler above; main.cpp calls it. Tests that install a handler of their own call it
// afterwards.
void install_error_guard();
