#include "app/lint/messages.h"

#include "app/words/suggestion.h"

#include <algorithm>
#include <filesystem>
#include <tuple>

namespace {

constexpr int BITS_OF_LINE = 32;
constexpr char ALLOW[] = "lint: allow";
constexpr char SEPARATORS[] = " \t,";

}  // namespace

LINT_PRINTER::~LINT_PRINTER() = default;

LINT_MESSAGES::LINT_MESSAGES(const READINGS* readings, LINT_FILTER filter, LINT_PRINTER* printer)
    : m_readings(*readings), m_filter(std::move(filter)), m_printer(printer)
{
}

std::uint64_t LINT_MESSAGES::line_key(std::uint32_t reading, std::uint32_t line) const
{
    return (std::uint64_t{m_readings.file_of(reading)} << BITS_OF_LINE) | line;
}

bool LINT_MESSAGES::is_wanted(LINT_RULE rule, const SOURCE_PLACE& place)
{
    const auto index = static_cast<std::size_t>(rule);
    if (m_filter.m_disabled[index]) {
        return false;
    }
    if (!m_filter.m_only_file.empty() &&
        m_readings.name_of(place.m_reading) != m_filter.m_only_file) {
        return false;
    }
    if (is_allowed_in_folder(rule, place)) {
        return false;
    }
    if (m_allowed.empty()) {
        return true;
    }
    const auto allowed = m_allowed.find(line_key(place.m_reading, place.m_line));
    return allowed == m_allowed.end() || !allowed->second[index];
}

bool LINT_MESSAGES::is_allowed_in_folder(LINT_RULE rule, const SOURCE_PLACE& place) const
{
    if (m_allowed_in_folders.empty()) {
        return false;
    }
    const std::filesystem::path file = m_readings.name_of(place.m_reading);
    const auto folder = m_allowed_in_folders.find(file.parent_path().lexically_normal().string());
    return folder != m_allowed_in_folders.end() && folder->second[static_cast<std::size_t>(rule)];
}

void LINT_MESSAGES::allow_in_folder(const std::string& folder, LINT_RULE rule)
{
    m_allowed_in_folders[folder].set(static_cast<std::size_t>(rule));
}

bool LINT_MESSAGES::is_repeated(LINT_RULE rule, const SOURCE_PLACE& place)
{
    if (m_readings.kind_of(place.m_reading) == READING_KIND::TOP) {
        return false;
    }
    const std::uint64_t line = mix_hash(line_key(place.m_reading, place.m_line), place.m_column);
    return !m_repeatable.insert(mix_hash(line, static_cast<std::uint64_t>(rule)));
}

void LINT_MESSAGES::add(LINT_RULE rule, const SOURCE_PLACE& place, std::string text)
{
    ++m_number_of_messages;
    if (!is_wanted(rule, place) || is_repeated(rule, place)) {
        return;
    }
    const bool is_error = m_filter.m_errors[static_cast<std::size_t>(rule)];
    const LINT_SEVERITY severity = is_error ? LINT_SEVERITY::ERROR : describe(rule).m_severity;
    ++m_summary.m_counts[static_cast<std::size_t>(severity)];
    m_kept.push_back({rule, severity, place, std::move(text)});
    if (m_kept.size() == MOST_KEPT) {
        print_kept();
    }
}

void LINT_MESSAGES::heed_comment(std::uint32_t reading, const TEXT_LINE& line,
                                 std::string_view comment)
{
    const std::size_t start = comment.find(ALLOW);
    if (start == std::string_view::npos) {
        return;
    }
    const bool is_alone =
        line.m_text.find_first_not_of(SEPARATORS) + comment.size() == line.m_text.size();
    std::string_view rest = comment.substr(start + sizeof(ALLOW) - 1);
    for (std::size_t at = rest.find_first_not_of(SEPARATORS); at != std::string_view::npos;
         at = rest.find_first_not_of(SEPARATORS)) {
        rest.remove_prefix(at);
        const std::string_view word = rest.substr(0, rest.find_first_of(SEPARATORS));
        allow(reading, line, word, is_alone);
        rest.remove_prefix(word.size());
    }
}

void LINT_MESSAGES::allow(std::uint32_t reading, const TEXT_LINE& line, std::string_view word,
                          bool is_alone)
{
    const std::optional<LINT_RULE> rule = find_rule(word);
    if (!rule) {
        const auto start = static_cast<std::size_t>(word.data() - line.m_text.data());
        add(LINT_RULE::UNKNOWN_RULE, place_in_line(reading, line, start, start + word.size()),
            "unknown rule '" + std::string(word) + "'" + suggest(word, list_rules()));
        return;
    }
    const auto index = static_cast<std::size_t>(*rule);
    m_allowed[line_key(reading, line.m_number)].set(index);
    if (is_alone) {
        m_allowed[line_key(reading, line.m_number + 1)].set(index);
    }
}

void LINT_MESSAGES::print_kept()
{
    const auto is_before = [this](const LINT_MESSAGE& a, const LINT_MESSAGE& b) {
        const std::uint32_t file_a = m_readings.file_of(a.m_place.m_reading);
        const std::uint32_t file_b = m_readings.file_of(b.m_place.m_reading);
        if (file_a != file_b) {
            return file_a < file_b;
        }
        return std::tie(a.m_place.m_line, a.m_place.m_column, a.m_rule, a.m_text) <
               std::tie(b.m_place.m_line, b.m_place.m_column, b.m_rule, b.m_text);
    };
    // Most come in their order.
    if (!std::is_sorted(m_kept.begin(), m_kept.end(), is_before)) {
        std::sort(m_kept.begin(), m_kept.end(), is_before);
    }
    for (const LINT_MESSAGE& message : m_kept) {
        if (m_filter.m_most == 0) {
            ++m_summary.m_not_shown;
            continue;
        }
        --m_filter.m_most;
        if (m_printer != nullptr) {
            m_printer->print(message);
        }
    }
    m_kept.clear();
}

void LINT_MESSAGES::finish()
{
    print_kept();
    m_summary.m_files = m_readings.count_files();
    if (m_printer != nullptr) {
        m_printer->end(m_summary);
    }
}
