// The limits of a part: what is missing, and what leaves nothing legal.
#pragma once

#include "app/lint/messages.h"
#include "app/lint/record_view.h"

#include <string>
#include <vector>

// Parts that lack the same statements are told of together, at the first of them.
class PART_CHECK
{
public:
    explicit PART_CHECK(LINT_MESSAGES* messages) : m_messages(messages) {}

    // A part, and the PLL type that it has.
    void check(const SOURCE_PART& part, const RECORD_VIEW& limits, const RECORD_VIEW& type);

    // Tells of what parts lack.
    void finish();

private:
    // The parts that lack the same.
    struct LACK
    {
        LINT_RULE m_rule;
        std::string m_keywords;
        std::string m_part;
        SOURCE_PLACE m_place;
        std::size_t m_others = 0;
    };

    void check_missing(const SOURCE_PART& part, const RECORD_VIEW& limits, int post_scales);
    void add_lack(LINT_RULE rule, const std::string& keywords, const SOURCE_PART& part);
    // False when something was told of.
    bool check_vco(const RECORD_VIEW& limits, int post_scale);
    void check_ranges(const RECORD_VIEW& limits);
    void check_input(const RECORD_VIEW& limits, const RECORD_VIEW& type);
    void check_feedback(const RECORD_VIEW& limits, const RECORD_VIEW& type, int post_scales);

    LINT_MESSAGES* m_messages;
    std::vector<LACK> m_lacks;
};
