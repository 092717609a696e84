// The values of a PLL type or part as its statements leave them.
#pragma once

#include "app/source/model.h"

#include <array>
#include <cstdint>
#include <optional>

class RECORD_VIEW
{
public:
    // Of NO_RECORD, nothing is known. When not all was read, nothing counts as missing.
    RECORD_VIEW(const SOURCE_MODEL& model, std::uint32_t record, bool is_complete);

    // The last statement with a keyword; null: none.
    const SET_VALUE* find(std::size_t keyword, int post_scale = 0) const;

    // Its value; none when there is none that counts.
    std::optional<double> number(std::size_t keyword) const;

    // True when no statement gives it, and none that could not be understood may have been meant
    // to.
    bool is_missing(std::size_t keyword) const;

    // The same of what a plain keyword and one with a post-scale give, whichever comes later; of
    // the plain one `factor` times the value counts.
    const SET_VALUE* find_scaled(std::size_t plain, std::size_t scaled, int post_scale) const;
    std::optional<double> scaled_number(std::size_t plain, std::size_t scaled, int post_scale,
                                        int factor) const;

    bool is_empty() const { return m_is_empty; }
    bool is_complete() const { return m_is_complete; }
    const SOURCE_MODEL& model() const { return m_model; }

private:
    static constexpr std::size_t POST_SCALES = 5;  // or reconfiguration types

    const SOURCE_MODEL& m_model;
    std::array<std::uint32_t, NUMBER_OF_KEYWORDS * POST_SCALES> m_last;
    bool m_is_complete;
    bool m_is_empty = true;
};
