#include "app/lint/scopes.h"

#include "app/lint/words.h"

#include <span>

namespace {

const char* const SELECTORS[] = {"family", "pll", "speed_grade", "part", "reconfig_type"};

constexpr SELECTOR NEEDED_IN_FAMILY[] = {SELECTOR::FAMILY};
constexpr SELECTOR NEEDED_IN_GRADE[] = {SELECTOR::FAMILY, SELECTOR::PLL, SELECTOR::SPEED_GRADE};
constexpr SELECTOR NEEDED_IN_TYPE[] = {SELECTOR::FAMILY, SELECTOR::PLL};
constexpr SELECTOR NEEDED_IN_RECONFIG[] = {SELECTOR::FAMILY, SELECTOR::PLL,
                                           SELECTOR::RECONFIG_TYPE};
constexpr SELECTOR NEEDED_IN_PART[] = {SELECTOR::FAMILY, SELECTOR::PART};

std::span<const SELECTOR> needed_in(KEYWORD_SCOPE scope)
{
    switch (scope) {
    case KEYWORD_SCOPE::ANYWHERE:
        break;
    case KEYWORD_SCOPE::FAMILY:
        return NEEDED_IN_FAMILY;
    case KEYWORD_SCOPE::GRADE:
        return NEEDED_IN_GRADE;
    case KEYWORD_SCOPE::TYPE:
        return NEEDED_IN_TYPE;
    case KEYWORD_SCOPE::RECONFIG:
        return NEEDED_IN_RECONFIG;
    case KEYWORD_SCOPE::PART:
        return NEEDED_IN_PART;
    }
    return {};
}

std::size_t index_of(SELECTOR selector)
{
    return static_cast<std::size_t>(selector);
}

// The selection that a keyword makes.
std::optional<SELECTOR> selector_of_keyword(std::size_t keyword)
{
    const std::string_view name = get_keyword(keyword).m_name;
    for (std::size_t i = 0; i < NUMBER_OF_SELECTORS; ++i) {
        if (name == SELECTORS[i]) {
            return static_cast<SELECTOR>(i);
        }
    }
    return std::nullopt;
}

}  // namespace

const char* name_of(SELECTOR selector)
{
    return SELECTORS[index_of(selector)];
}

void EFFECTIVE_LINES::add(std::uint32_t file, std::uint32_t line)
{
    std::vector<bool>& lines = m_lines[file];
    if (lines.size() <= line) {
        lines.resize(2 * (line + std::size_t{1}));
    }
    lines[line] = true;
}

bool EFFECTIVE_LINES::has(std::uint32_t file, std::uint32_t line) const
{
    const auto lines = m_lines.find(file);
    return lines != m_lines.end() && line < lines->second.size() && lines->second[line];
}

void tell_of_waiting(const WAITING& waiting, LINT_MESSAGES* messages)
{
    std::string text = in_quotes(waiting.m_word);
    if (waiting.m_others > 0) {
        text += " and " + std::to_string(waiting.m_others) + " more statement" +
                (waiting.m_others > 1 ? "s" : "");
    }
    text += waiting.m_others > 0 ? " have" : " has";
    messages->add(LINT_RULE::OUT_OF_SCOPE, waiting.m_place,
                  text + " no effect here: no '" + name_of(waiting.m_needed) + "' before " +
                      (waiting.m_others > 0 ? "them" : "it"));
}

bool SCOPES::is_selected(SELECTOR selector) const
{
    switch (selector) {
    case SELECTOR::FAMILY:
        return m_selection.m_family != NO_RECORD;
    case SELECTOR::PLL:
        return m_selection.m_type != PLL_TYPE_MAX;
    case SELECTOR::SPEED_GRADE:
        return m_selection.m_grade != NO_RECORD;
    case SELECTOR::PART:
        return m_selection.m_part != NO_RECORD;
    case SELECTOR::RECONFIG_TYPE:
        return m_selection.m_reconfig_type != 0;
    }
    return false;
}

// The first selection that a scope lacks; one that could not be made lacks nothing.
std::optional<SELECTOR> SCOPES::find_missing(KEYWORD_SCOPE scope) const
{
    for (const SELECTOR needed : needed_in(scope)) {
        if (m_selection.m_is_unknown[index_of(needed)]) {
            return std::nullopt;
        }
        if (!is_selected(needed)) {
            return needed;
        }
    }
    return std::nullopt;
}

REACH SCOPES::enter(std::size_t keyword, const SOURCE_PLACE& place)
{
    const KEYWORD_SCOPE scope = get_keyword(keyword).m_scope;
    for (const SELECTOR needed : needed_in(scope)) {
        if (m_selection.m_is_unknown[index_of(needed)]) {
            if (const auto selector = selector_of_keyword(keyword)) {
                m_selection.m_is_unknown[index_of(*selector)] = true;
            }
            return REACH::UNKNOWN;
        }
    }
    const std::optional<SELECTOR> missing = find_missing(scope);
    if (!missing) {
        ++m_counts[place.m_reading].m_effective;
        if (m_readings.is_included(place.m_reading)) {
            m_lines->add(m_readings.file_of(place.m_reading), place.m_line);
        }
        return REACH::EFFECTIVE;
    }
    ++m_counts[place.m_reading].m_waiting;
    std::optional<WAITING>& waiting = m_waiting[index_of(*missing)];
    if (waiting) {
        ++waiting->m_others;
    } else {
        waiting = WAITING{*missing, place, get_keyword(keyword).m_name};
    }
    if (const auto selector = selector_of_keyword(keyword)) {
        m_selection.m_is_unknown[index_of(*selector)] = true;
    }
    return REACH::NONE;
}

void SCOPES::select(SELECTOR selector, bool is_known, LINT_MESSAGES* messages)
{
    tell(selector, messages);
    m_selection.m_is_unknown[index_of(selector)] = !is_known;
}

std::optional<SOURCE_PLACE> SCOPES::forget(SELECTOR selector)
{
    std::optional<WAITING>& waiting = m_waiting[index_of(selector)];
    std::optional<SOURCE_PLACE> place;
    if (waiting) {
        place = waiting->m_place;
    }
    waiting.reset();
    return place;
}

void SCOPES::tell(SELECTOR selector, LINT_MESSAGES* messages)
{
    std::optional<WAITING>& waiting = m_waiting[index_of(selector)];
    if (waiting && m_readings.is_included(waiting->m_place.m_reading)) {
        m_undecided->push_back(*waiting);
    } else if (waiting) {
        tell_of_waiting(*waiting, messages);
    }
    waiting.reset();
}

// A file of which nothing has an effect is told of where it is included.
void SCOPES::leave_file(std::uint32_t reading, const std::string& shown)
{
    const FILE_COUNTS counts = m_counts[reading];
    m_counts.erase(reading);
    if (!m_readings.is_included(reading)) {
        return;
    }
    const SOURCE_PLACE& includer = m_readings.namer_of(reading);
    FILE_COUNTS& outer = m_counts[includer.m_reading];
    outer.m_effective += counts.m_effective;
    if (counts.m_effective > 0 || counts.m_waiting == 0) {
        return;
    }
    outer.m_waiting += counts.m_waiting;
    for (std::optional<WAITING>& waiting : m_waiting) {
        if (waiting && waiting->m_place.m_reading == reading) {
            waiting->m_place = includer;
            waiting->m_word = shown;
            waiting->m_others = 0;
        }
    }
}

void SCOPES::finish(LINT_MESSAGES* messages)
{
    for (std::size_t i = 0; i < NUMBER_OF_SELECTORS; ++i) {
        tell(static_cast<SELECTOR>(i), messages);
    }
}
