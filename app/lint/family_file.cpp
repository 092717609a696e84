#include "app/lint/family_file.h"

#include "app/output/input_file.h"
#include "app/source/text_file.h"

#include <algorithm>
#include <optional>

namespace {

constexpr std::size_t MOST_OPEN_FILES = 8;
constexpr int MOST_FILES = 1000;

}  // namespace

FAMILY_FILE::FAMILY_FILE(LINT_RUN* run, const FAMILY_NAMES* names, const std::string& folder)
    : m_texts(&run->m_texts),
      m_readings(run->m_readings),
      m_messages(run->m_messages),
      m_folder(folder),
      m_scopes(run->m_readings, &run->m_lines, &run->m_undecided),
      m_statements(run->m_readings, run->m_messages, &m_model, &m_scopes, names)
{
}

void FAMILY_FILE::open(std::uint32_t reading, const std::string& shown,
                       std::shared_ptr<const std::string> text)
{
    ++m_number_of_files;
    std::string_view rest = *text;
    if (!check_encoding(reading, &rest, m_messages)) {
        m_has_lost_file = true;
        rest = std::string_view();
    }
    m_stack.push_back({reading, shown, std::move(text), TEXT_LINES(rest)});
}

void FAMILY_FILE::read(std::uint32_t reading, std::string text)
{
    m_reading = reading;
    const std::size_t before = m_messages->m_summary.m_statements;
    open(reading, m_readings->name_of(reading),
         std::make_shared<const std::string>(std::move(text)));
    while (!m_stack.empty()) {
        TEXT_LINE line;
        if (m_stack.back().m_lines.next(&line)) {
            read_line(line);
        } else {
            m_scopes.leave_file(m_stack.back().m_reading, m_stack.back().m_shown);
            m_stack.pop_back();
        }
    }
    m_has_statements = m_messages->m_summary.m_statements > before;
    if (!m_has_statements && !m_has_lost_file) {
        m_messages->add(LINT_RULE::NO_STATEMENT, {reading, 1, 1, 1},
                        "the file holds no statement; a family file begins with 'family NAME'");
    }
    m_statements.finish();
}

void FAMILY_FILE::read_line(const TEXT_LINE& line)
{
    const std::uint32_t reading = m_stack.back().m_reading;
    check_line(reading, line, m_messages);
    if (const std::optional<TEXT_WORD> name = m_statements.read(reading, line)) {
        include(*name, {reading, line, m_messages});
    }
}

// True when no further file may be included here; told of once.
bool FAMILY_FILE::refuse_include(const std::string& file, const TEXT_WORD& name,
                                 const OPERAND_WATCH& watch)
{
    const bool is_too_deep = m_stack.size() >= MOST_OPEN_FILES;
    const bool are_too_many = m_number_of_files >= MOST_FILES;
    if (!m_includes || (!is_too_deep && !are_too_many)) {
        return !m_includes;
    }
    m_includes = false;
    m_has_lost_file = true;
    const bool is_circle =
        std::any_of(m_stack.begin(), m_stack.end(), [&](const OPEN_FILE& open_file) {
            return m_readings->name_of(open_file.m_reading) == file;
        });
    const std::string reason =
        is_circle     ? ": it is being read already, and would include itself without end"
        : is_too_deep ? ": eight files are open already, each including the next"
                      : ": a thousand files were read already";
    watch.tell(is_too_deep ? LINT_RULE::INCLUDE_TOO_DEEP : LINT_RULE::TOO_MANY_FILES, name,
               in_quotes(name.m_text) + " cannot be included" + reason);
    return true;
}

void FAMILY_FILE::include(const TEXT_WORD& name, const OPERAND_WATCH& watch)
{
    const std::string file = tidy_path(m_folder + "/" + std::string(name.m_text));
    if (refuse_include(file, name, watch)) {
        return;
    }
    std::string reason;
    std::shared_ptr<const std::string> text = m_texts->read(file, &reason);
    if (text == nullptr) {
        m_has_lost_file = true;
        watch.tell(LINT_RULE::INCLUDE_NOT_OPENED, name,
                   "cannot open " + in_quotes(file) + ": " + reason + "; nothing is included");
        return;
    }
    const std::uint32_t reading =
        m_readings->add_named(file, READING_KIND::INCLUDED, watch.place_of(name));
    open(reading, std::string(name.m_text), std::move(text));
}
