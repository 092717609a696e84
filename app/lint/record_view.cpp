#include "app/lint/record_view.h"

RECORD_VIEW::RECORD_VIEW(const SOURCE_MODEL& model, std::uint32_t record, bool is_complete)
    : m_model(model), m_is_complete(is_complete)
{
    m_last.fill(NO_RECORD);
    if (record == NO_RECORD) {
        return;
    }
    m_is_complete = is_complete && !model.record(record).m_is_spoiled;
    for (std::uint32_t i = model.record(record).m_last; i != NO_RECORD;
         i = model.value(i).m_previous) {
        const SET_VALUE& value = model.value(i);
        std::uint32_t& last = m_last[value.m_keyword * POST_SCALES + value.m_post_scale];
        last = last == NO_RECORD ? i : last;
        m_is_empty = false;
    }
}

const SET_VALUE* RECORD_VIEW::find(std::size_t keyword, int post_scale) const
{
    const std::uint32_t last = m_last[keyword * POST_SCALES + static_cast<std::size_t>(post_scale)];
    return last == NO_RECORD ? nullptr : &m_model.value(last);
}

std::optional<double> RECORD_VIEW::number(std::size_t keyword) const
{
    const SET_VALUE* const value = find(keyword);
    return value != nullptr && value->m_state == VALUE_STATE::GIVEN
               ? std::optional<double>(value->m_value)
               : std::nullopt;
}

bool RECORD_VIEW::is_missing(std::size_t keyword) const
{
    return m_is_complete && find(keyword) == nullptr;
}

const SET_VALUE* RECORD_VIEW::find_scaled(std::size_t plain, std::size_t scaled,
                                          int post_scale) const
{
    const std::uint32_t first = m_last[plain * POST_SCALES];
    const std::uint32_t second =
        m_last[scaled * POST_SCALES + static_cast<std::size_t>(post_scale)];
    if (first == NO_RECORD || second == NO_RECORD) {
        return first != NO_RECORD ? find(plain) : find(scaled, post_scale);
    }
    return first > second ? find(plain) : find(scaled, post_scale);
}

std::optional<double> RECORD_VIEW::scaled_number(std::size_t plain, std::size_t scaled,
                                                 int post_scale, int factor) const
{
    const SET_VALUE* const value = find_scaled(plain, scaled, post_scale);
    if (value == nullptr || value->m_state != VALUE_STATE::GIVEN) {
        return std::nullopt;
    }
    return value->m_keyword == plain ? value->m_value * factor : value->m_value;
}
