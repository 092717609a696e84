#include "error_guard.h"

#include "msg_internal_error.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

EXPECTED_REPORTS* innermost = nullptr;

std::string to_text(const ERROR_REPORT& report)
{
    return "\"" + report.m_condition + "\" of " + report.m_component + " " + report.m_source + ":" +
           std::to_string(report.m_line);
}

std::string to_text(const std::vector<ERROR_REPORT>& reports)
{
    std::string text;
    for (const ERROR_REPORT& report : reports) {
        text += "\n  " + to_text(report);
    }
    return text.empty() ? "\n  no report" : text;
}

std::string text_or_null(const char* text)
{
    return text == nullptr ? "(null)" : text;
}

void handle_report(const char* condition, const char* component, const char* source, int line,
                   void*)
{
    const ERROR_REPORT report = {text_or_null(condition), text_or_null(component),
                                 text_or_null(source), line};
    EXPECTED_REPORTS::record(report);
}

}  // namespace

void EXPECTED_REPORTS::record(const ERROR_REPORT& report)
{
    if (innermost == nullptr) {
        ADD_FAILURE() << "unexpected internal error " << to_text(report);
        return;
    }
    innermost->m_reports.push_back(report);
}

EXPECTED_REPORTS::EXPECTED_REPORTS() : m_seen(0), m_accept_all(false), m_outer(innermost)
{
    innermost = this;
}

EXPECTED_REPORTS::~EXPECTED_REPORTS()
{
    innermost = m_outer;
    if (!m_accept_all && m_reports.size() > m_seen) {
        ADD_FAILURE() << "internal errors that the test did not ask about:" << to_text(m_reports);
    }
}

void EXPECTED_REPORTS::expect_only(const char* condition, const char* source, std::size_t count)
{
    expect_sequence(std::vector<std::string>(count, condition), source);
}

void EXPECTED_REPORTS::expect_sequence(const std::vector<std::string>& conditions,
                                       const char* source)
{
    const auto is_expected = [&](const ERROR_REPORT& report, const std::string& condition) {
        return report.m_condition == condition && report.m_component == "PLL" &&
               report.m_source == source && report.m_line > 0;
    };
    if (!std::equal(m_reports.begin(), m_reports.end(), conditions.begin(), conditions.end(),
                    is_expected)) {
        std::string expected;
        for (const std::string& condition : conditions) {
            expected += "\n  \"" + condition + "\" of PLL " + source;
        }
        ADD_FAILURE() << "expected these internal errors:" << expected
                      << "\nbut there were:" << to_text(m_reports);
    }
    m_reports.clear();
    m_seen = 0;
}

void EXPECTED_REPORTS::expect_none()
{
    expect_sequence({}, "");
}

std::size_t EXPECTED_REPORTS::count()
{
    m_seen = m_reports.size();
    return m_reports.size();
}

std::size_t EXPECTED_REPORTS::count(const char* condition)
{
    m_seen = m_reports.size();
    return static_cast<std::size_t>(
        std::count_if(m_reports.begin(), m_reports.end(),
                      [&](const ERROR_REPORT& report) { return report.m_condition == condition; }));
}

const std::vector<ERROR_REPORT>& EXPECTED_REPORTS::get()
{
    m_seen = m_reports.size();
    return m_reports;
}

void EXPECTED_REPORTS::accept_all()
{
    m_accept_all = true;
}

void install_error_guard()
{
    MSG_INTERNAL_ERROR::set_handler(handle_report, nullptr);
}
