#include "target_table.h"

#include <algorithm>
#include <cstdio>

namespace {

const char MET[] = "met";
const char MISSED[] = "MISSED";

std::string figure(double value, const std::string& unit)
{
    constexpr double FEW = 10.0;
    constexpr double MANY = 1000.0;
    char text[64];
    const int decimals = value < FEW ? 2 : value < MANY ? 1 : 0;
    std::snprintf(text, sizeof(text), "%.*f", decimals, value);
    return std::string(text) + ' ' + unit;
}

}  // namespace

void TARGET_TABLE::add_least(const std::string& work, double measured, double target,
                             const std::string& unit, const std::string& note)
{
    m_rows.push_back({work, figure(measured, unit), ">= " + figure(target, unit),
                      measured >= target ? MET : MISSED, note});
}

void TARGET_TABLE::add_most(const std::string& work, double measured, double target,
                            const std::string& unit, const std::string& note)
{
    m_rows.push_back({work, figure(measured, unit), "<= " + figure(target, unit),
                      measured <= target ? MET : MISSED, note});
}

void TARGET_TABLE::add_figure(const std::string& work, double measured, const std::string& unit,
                              const std::string& note)
{
    m_rows.push_back({work, figure(measured, unit), "", "", note});
}

void TARGET_TABLE::add_text(const std::string& work, const std::string& text)
{
    m_rows.push_back({work, text, "", "", ""});
}

void TARGET_TABLE::add_error(const std::string& work, const std::string& error)
{
    m_rows.push_back({work, "WRONG", "", MISSED, error});
    m_has_errors = true;
}

void TARGET_TABLE::print() const
{
    const ROW title = {"Work", "Measured", "Wanted", "", ""};
    std::size_t work = title.m_work.size();
    std::size_t measured = title.m_measured.size();
    std::size_t target = title.m_target.size();
    for (const ROW& row : m_rows) {
        work = std::max(work, row.m_work.size());
        measured = std::max(measured, row.m_measured.size());
        target = std::max(target, row.m_target.size());
    }
    const auto print_row = [&](const ROW& row) {
        std::string line = row.m_work;
        line.resize(work + 2, ' ');
        line += std::string(measured - row.m_measured.size(), ' ') + row.m_measured + "  ";
        line += row.m_target + std::string(target - row.m_target.size() + 2, ' ');
        line += row.m_verdict + std::string(8 - row.m_verdict.size(), ' ') + row.m_note;
        line.erase(line.find_last_not_of(' ') + 1);
        std::printf("%s\n", line.c_str());
    };
    std::printf("\n");
    print_row(title);
    std::for_each(m_rows.begin(), m_rows.end(), print_row);
    std::fflush(stdout);
}
