// Requests in few words.
#pragma once

#include "advice/answer/answer.h"

namespace advice {

constexpr int MEGA = 1000000;

inline RATIONAL mhz(std::string_view number)
{
    return RATIONAL::parse(number).value_or(RATIONAL::invalid()) * RATIONAL(MEGA);
}

// A request for outputs of frequencies in MHz.
inline REQUEST request_of(std::string_view input, std::initializer_list<std::string_view> outputs)
{
    REQUEST request;
    request.m_input = make_input(mhz(input));
    for (const std::string_view output : outputs) {
        OUTPUT_WISH wish;
        wish.m_frequency = mhz(output);
        wish.m_ratio = wish.m_frequency / request.m_input.m_frequency;
        request.m_outputs.push_back(wish);
    }
    return request;
}

// The judged wishes and limits that are not kept, a line each.
inline std::string misses_of(const REQUEST& request, const VERDICT& verdict)
{
    std::string text;
    for (const JUDGED_WISH& wish : verdict.m_wishes) {
        text += wish.m_kept ? "" : to_text(request, wish) + "\n";
    }
    for (const JUDGED_LIMIT& limit : verdict.m_limits) {
        text += limit.m_kept || limit.m_is_note ? "" : to_text(request, limit) + "\n";
    }
    return text;
}

}  // namespace advice
