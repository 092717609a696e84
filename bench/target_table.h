// What is wanted of the library's speed, beside what was measured.
#pragma once

#include <string>
#include <vector>

class TARGET_TABLE
{
public:
    TARGET_TABLE() : m_has_errors(false) {}

    // Wanted: at least, or at most, `target`. `note` says what the figure was taken from.
    void add_least(const std::string& work, double measured, double target, const std::string& unit,
                   const std::string& note = "");
    void add_most(const std::string& work, double measured, double target, const std::string& unit,
                  const std::string& note = "");

    // A figure that nothing is wanted of.
    void add_figure(const std::string& work, double measured, const std::string& unit,
                    const std::string& note = "");

    // A text in the place of a figure.
    void add_text(const std::string& work, const std::string& text);

    // An answer that was wrong: no time of it would say anything.
    void add_error(const std::string& work, const std::string& error);

    bool has_errors() const { return m_has_errors; }
    void print() const;

private:
    struct ROW
    {
        std::string m_work;
        std::string m_measured;
        std::string m_target;
        std::string m_verdict;
        std::string m_note;
    };

    std::vector<ROW> m_rows;
    bool m_has_errors;
};
