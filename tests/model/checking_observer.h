// An observer that judges what it hears of: whether findings stand where they say, and whether the
// errors among them are what makes reading fail. It throws at every call, as the worst one would.
#pragma once

#include "pll_observer.h"

#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

class CHECKING_OBSERVER : public PLL_READ_OBSERVER
{
public:
    // `files` by their names; must outlive the observer.
    explicit CHECKING_OBSERVER(const std::map<std::string, std::string>& files) : m_files(files) {}

    void on_statement(const PLL_READ_STATEMENT& statement) override
    {
        m_has_failed = m_has_failed || statement.m_result == PLL_READ_RESULT::FAILED;
        check_place(statement.m_place, nullptr, statement.m_keyword);
        throw std::runtime_error("nobody cares for statements");
    }

    void on_finding(const PLL_READ_FINDING& finding) override
    {
        m_has_error = m_has_error || pll_is_read_error(finding.m_finding);
        ++m_count;
        check_place(finding.m_place, finding.m_word, pll_get_finding_name(finding.m_finding));
        throw std::logic_error("nobody cares for findings");
    }

    // What was wrong with the calls since the last time, given the result of the reading.
    std::string take_complaints(bool is_read)
    {
        if (is_read == m_has_error) {
            m_complaints << "reading gave " << is_read << ", errors were found: " << m_has_error
                         << '\n';
        }
        if (is_read && m_has_failed) {
            m_complaints << "a statement failed in a file that was read\n";
        }
        std::string complaints = m_complaints.str();
        forget();
        return complaints;
    }

    void forget()
    {
        m_complaints.str("");
        m_has_error = false;
        m_has_failed = false;
    }

    // Findings since the last time.
    unsigned long take_count() { return std::exchange(m_count, 0); }

private:
    // The line of a file, from 1.
    static std::string line_of(const std::string& text, int number)
    {
        std::size_t start = 0;
        for (int line = 1; line < number && start != std::string::npos; ++line) {
            start = text.find('\n', start);
            start += start == std::string::npos ? 0 : 1;
        }
        return start == std::string::npos ? std::string()
                                          : text.substr(start, text.find('\n', start) - start);
    }

    // `word` stands at the place; null: no matter what does.
    void check_place(const PLL_SOURCE_PLACE& place, const char* word, const char* what)
    {
        if (place.m_line == 0) {
            return;
        }
        const auto file = m_files.find(place.m_file);
        if (file == m_files.end()) {
            m_complaints << what << " in '" << place.m_file << "', which is no file\n";
            return;
        }
        const std::string line = line_of(file->second, place.m_line);
        const std::size_t column = static_cast<std::size_t>(place.m_column);
        const std::size_t length = static_cast<std::size_t>(place.m_length);
        if (column > line.size() + 1 || (column > 0 && column - 1 + length > line.size())) {
            m_complaints << what << " stands outside line " << place.m_line << '\n';
        } else if (word != nullptr && column > 0 && line.substr(column - 1, length) != word) {
            m_complaints << what << ": '" << word << "' does not stand at line " << place.m_line
                         << ", column " << place.m_column << '\n';
        }
    }

    const std::map<std::string, std::string>& m_files;
    std::ostringstream m_complaints;
    bool m_has_error = false;
    bool m_has_failed = false;
    unsigned long m_count = 0;
};
