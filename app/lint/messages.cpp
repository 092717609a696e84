#include "app/lint/messages.h"

#include <algorithm>
#include <tuple>

void LINT_MESSAGES::meet(const std::string& file)
{
    m_files.emplace(file, m_files.size());
}

void LINT_MESSAGES::add(std::size_t rule, const LINT_PLACE& place, std::string text)
{
    meet(place.m_file);
    m_messages.push_back({rule, place, std::move(text)});
}

void LINT_MESSAGES::remove_if(const std::function<bool(const LINT_MESSAGE&)>& is_unwanted)
{
    m_messages.erase(std::remove_if(m_messages.begin(), m_messages.end(), is_unwanted),
                     m_messages.end());
}

void LINT_MESSAGES::sort()
{
    const auto key = [this](const LINT_MESSAGE& message) {
        return std::make_tuple(m_files.at(message.m_place.m_file), message.m_place.m_line,
                               message.m_place.m_column, message.m_rule,
                               std::string_view(message.m_text));
    };
    std::sort(m_messages.begin(), m_messages.end(),
              [key](const LINT_MESSAGE& a, const LINT_MESSAGE& b) { return key(a) < key(b); });
    const auto end = std::unique(
        m_messages.begin(), m_messages.end(),
        [key](const LINT_MESSAGE& a, const LINT_MESSAGE& b) { return key(a) == key(b); });
    m_messages.erase(end, m_messages.end());
}

std::size_t LINT_MESSAGES::count_errors() const
{
    return static_cast<std::size_t>(
        std::count_if(m_messages.begin(), m_messages.end(), [](const LINT_MESSAGE& message) {
            return lint_rules()[message.m_rule].m_is_error;
        }));
}

bool LINT_MESSAGES::has(std::size_t rule) const
{
    return std::any_of(m_messages.begin(), m_messages.end(),
                       [rule](const LINT_MESSAGE& message) { return message.m_rule == rule; });
}
