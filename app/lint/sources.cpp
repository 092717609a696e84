#include "app/lint/sources.h"

#include "app/source/text_file.h"

#include <algorithm>

// The standard input is read once only: its lines are not shown.
void LINT_SOURCES::open(const std::string& file)
{
    std::string ignored;
    m_file = file;
    m_text = file == STANDARD_INPUT ? "" : read_text(file, &ignored).value_or("");
    m_at = 0;
    m_line = 1;
}

std::string_view LINT_SOURCES::line(const std::string& file, std::uint32_t line)
{
    if (file != m_file) {
        open(file);
    }
    if (line < m_line) {
        m_at = 0;
        m_line = 1;
    }
    for (; m_line < line && m_at < m_text.size(); ++m_line) {
        m_at = std::min(m_text.find('\n', m_at), m_text.size() - 1) + 1;
    }
    const std::string_view rest = std::string_view(m_text).substr(m_at);
    return m_line == line ? rest.substr(0, rest.find('\n')) : std::string_view();
}
