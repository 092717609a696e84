#include "app/lint/part_check.h"

#include "app/lint/plausible.h"
#include "app/lint/type_check.h"
#include "app/lint/words.h"

#include "pll.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double TOLERANCE = 1.0;  // ps, by which the library widens every range

// A limit of the VCO, given for all post-scales or for one.
struct SCALED_KEYWORD
{
    std::size_t m_plain;
    std::size_t m_scaled;
};

constexpr SCALED_KEYWORD VCO_MIN = {keyword("vco_min"), keyword("vco_min_post_scale")};
constexpr SCALED_KEYWORD VCO_MAX = {keyword("vco_max"), keyword("vco_max_post_scale")};
constexpr SCALED_KEYWORD VCO_CENTER = {keyword("vco_center"), keyword("vco_center_post_scale")};
constexpr SCALED_KEYWORD VCO_GAIN = {keyword("vco_gain"), keyword("vco_gain_post_scale")};
constexpr SCALED_KEYWORD SPREAD_MAX = {keyword("ss_vco_max"), keyword("ss_vco_max_post_scale")};

std::optional<double> period(const RECORD_VIEW& limits, const SCALED_KEYWORD& pair, int post_scale)
{
    return limits.scaled_number(pair.m_plain, pair.m_scaled, post_scale, post_scale);
}

const SET_VALUE* statement(const RECORD_VIEW& limits, const SCALED_KEYWORD& pair, int post_scale)
{
    return limits.find_scaled(pair.m_plain, pair.m_scaled, post_scale);
}

bool is_missing(const RECORD_VIEW& limits, const SCALED_KEYWORD& pair, int post_scale)
{
    return limits.is_missing(pair.m_plain) && limits.find(pair.m_scaled, 0) == nullptr &&
           statement(limits, pair, post_scale) == nullptr;
}

// The later of two statements: the one that was changed last is probably the wrong one.
SOURCE_PLACE later_place(const SET_VALUE& a, const SET_VALUE& b)
{
    return a.m_order > b.m_order ? a.m_place : b.m_place;
}

std::string behind(int post_scale)
{
    return post_scale == 1 ? "" : " behind a post-scale of " + std::to_string(post_scale);
}

// A range of a part that no post-scale changes.
struct PART_RANGE
{
    const char* m_name;
    std::size_t m_min;
    std::size_t m_max;
};

constexpr PART_RANGE RANGES[] = {
    {"PFD period", keyword("pfd_min"), keyword("pfd_max")},
    {"input period", keyword("input_min"), keyword("input_max")},
    {"output period", keyword("output_min"), keyword("output_max")},
    {"external output period", keyword("external_output_min"), keyword("external_output_max")},
    {"spread", keyword("ss_spread_min"), keyword("ss_spread_max")},
};

std::string crossed_text(const std::string& name, double min, double max, const char* unit)
{
    return "no " + name + " is legal: the least is " + short_number(min) + " " + unit +
           ", the largest " + short_number(max) + " " + unit;
}

int post_scales_of(const RECORD_VIEW& type)
{
    const double most = type.number(keyword("vco_post_scale_counter_max")).value_or(1.0);
    return static_cast<int>(std::clamp(most, 1.0, double{PLL_VCO_POST_SCALE_MAX}));
}

}  // namespace

void PART_CHECK::check(const SOURCE_PART& part, const RECORD_VIEW& limits, const RECORD_VIEW& type)
{
    const int post_scales = post_scales_of(type);
    check_missing(part, limits, post_scales);
    // What is wrong with one post-scale is mostly wrong with the next one.
    for (int p = 1; p <= post_scales && check_vco(limits, p); ++p) {
    }
    check_ranges(limits);
    check_input(limits, type);
    check_feedback(limits, type, post_scales);
}

void PART_CHECK::add_lack(LINT_RULE rule, const std::string& keywords, const SOURCE_PART& part)
{
    const auto known = std::find_if(m_lacks.begin(), m_lacks.end(), [&](const LACK& lack) {
        return lack.m_rule == rule && lack.m_keywords == keywords;
    });
    if (known == m_lacks.end()) {
        m_lacks.push_back({rule, keywords, std::string(part.m_name), part.m_place, 0});
    } else {
        ++known->m_others;
    }
}

void PART_CHECK::check_missing(const SOURCE_PART& part, const RECORD_VIEW& limits, int post_scales)
{
    std::string needed;
    std::string centers;
    std::string gains;
    const auto add = [](std::string* list, const std::string& name) {
        list->append(list->empty() ? "" : ", ").append(in_quotes(name));
    };
    for (int p = 1; p <= post_scales; ++p) {
        const std::string suffix = p == 1 ? "" : "_post_scale " + std::to_string(p);
        const auto check_one = [&](const SCALED_KEYWORD& pair, std::string* list) {
            // Without a value for the first post-scale, the plain keyword is what lacks.
            const bool is_told = p > 1 && is_missing(limits, pair, 1);
            if (!is_told && is_missing(limits, pair, p)) {
                add(list, get_keyword(pair.m_plain).m_name + suffix);
            }
        };
        check_one(VCO_MIN, &needed);
        check_one(VCO_MAX, &needed);
        check_one(VCO_CENTER, &centers);
        check_one(VCO_GAIN, &gains);
    }
    for (const std::size_t index : {keyword("pfd_min"), keyword("pfd_max"), keyword("input_min")}) {
        if (limits.is_missing(index)) {
            add(&needed, get_keyword(index).m_name);
        }
    }
    if (!needed.empty()) {
        add_lack(LINT_RULE::LIMIT_UNSET, needed, part);
        return;
    }
    if (!centers.empty()) {
        add_lack(LINT_RULE::CENTER_MISSING, centers, part);
    }
    if (!gains.empty()) {
        add_lack(LINT_RULE::LOOP_FILTER_VALUE_MISSING, gains, part);
    }
}

bool PART_CHECK::check_vco(const RECORD_VIEW& limits, int post_scale)
{
    const std::optional<double> min = period(limits, VCO_MIN, post_scale);
    const std::optional<double> max = period(limits, VCO_MAX, post_scale);
    const std::optional<double> center = period(limits, VCO_CENTER, post_scale);
    const std::optional<double> spread_max = period(limits, SPREAD_MAX, post_scale);
    if (min && max && *min > *max) {
        m_messages->add(LINT_RULE::LIMITS_CROSSED,
                        later_place(*statement(limits, VCO_MIN, post_scale),
                                    *statement(limits, VCO_MAX, post_scale)),
                        crossed_text("VCO period" + behind(post_scale), *min, *max, "ps"));
        return false;
    }
    bool is_right = true;
    if (min && max && center && (*center < *min || *center > *max)) {
        is_right = false;
        m_messages->add(LINT_RULE::CENTER_OUTSIDE,
                        statement(limits, VCO_CENTER, post_scale)->m_place,
                        "the centre of " + short_number(*center) + " ps lies outside the VCO" +
                            behind(post_scale) + ", which runs at " + short_number(*min) + " to " +
                            short_number(*max) + " ps");
    }
    if (min && spread_max && *min > *spread_max) {
        is_right = false;
        m_messages->add(LINT_RULE::LIMITS_CROSSED,
                        statement(limits, SPREAD_MAX, post_scale)->m_place,
                        crossed_text("VCO period with spread spectrum" + behind(post_scale), *min,
                                     *spread_max, "ps"));
    }
    return is_right;
}

void PART_CHECK::check_ranges(const RECORD_VIEW& limits)
{
    for (const PART_RANGE& range : RANGES) {
        const std::optional<double> min = limits.number(range.m_min);
        const std::optional<double> max = limits.number(range.m_max);
        if (min && max && *min > *max) {
            m_messages->add(
                LINT_RULE::LIMITS_CROSSED,
                later_place(*limits.find(range.m_min), *limits.find(range.m_max)),
                crossed_text(range.m_name, *min, *max, get_keyword(range.m_min).m_unit));
        }
    }
}

// The PFD runs at N input periods: for some N the two ranges must meet.
void PART_CHECK::check_input(const RECORD_VIEW& limits, const RECORD_VIEW& type)
{
    const std::optional<double> pfd_min = limits.number(keyword("pfd_min"));
    const std::optional<double> pfd_max = limits.number(keyword("pfd_max"));
    const std::optional<double> input_min = limits.number(keyword("input_min"));
    const std::optional<double> n_max = type.number(keyword("n_counter_max"));
    if (!pfd_min || !pfd_max || !input_min || !n_max || *pfd_min > *pfd_max) {
        return;
    }
    const double input_max = limits.number(keyword("input_max")).value_or(*pfd_max);
    if (limits.find(keyword("input_max")) != nullptr && !limits.number(keyword("input_max"))) {
        return;
    }
    // The smallest N that brings the slowest input to the slower end decides.
    const double least_n = std::max(1.0, std::ceil((*pfd_min - TOLERANCE) / input_max));
    const bool meets = least_n <= *n_max && *input_min * least_n <= *pfd_max + TOLERANCE;
    if (!meets && *input_min <= input_max) {
        const SET_VALUE& pfd = *limits.find(keyword("pfd_max"));
        m_messages->add(
            LINT_RULE::INPUT_PFD_EXCLUDE, later_place(pfd, *limits.find(keyword("input_min"))),
            "no input of " + short_number(*input_min) + " to " + short_number(input_max) +
                " ps gives a PFD period of " + short_number(*pfd_min) + " to " +
                short_number(*pfd_max) + " ps with N up to " + short_number(*n_max));
    }
}

// The PFD period is M x VCO period.
void PART_CHECK::check_feedback(const RECORD_VIEW& limits, const RECORD_VIEW& type, int post_scales)
{
    const std::optional<double> pfd_min = limits.number(keyword("pfd_min"));
    const std::optional<double> pfd_max = limits.number(keyword("pfd_max"));
    const std::optional<double> m_max = largest_m(type);
    if (!pfd_min || !pfd_max || !m_max || *pfd_min > *pfd_max) {
        return;
    }
    for (int p = 1; p <= post_scales; ++p) {
        const std::optional<double> vco_min = period(limits, VCO_MIN, p);
        const std::optional<double> vco_max = period(limits, VCO_MAX, p);
        if (!vco_min || !vco_max || *vco_min > *vco_max) {
            return;
        }
        const double least_m = std::max(1.0, std::ceil((*pfd_min - TOLERANCE) / *vco_max));
        if (least_m <= *m_max && *vco_min * least_m <= *pfd_max + TOLERANCE) {
            return;
        }
    }
    m_messages->add(LINT_RULE::VCO_PFD_EXCLUDE,
                    later_place(*limits.find(keyword("pfd_max")), *limits.find(keyword("pfd_min"))),
                    "no VCO period of the part fits a PFD period of " + short_number(*pfd_min) +
                        " to " + short_number(*pfd_max) + " ps with M up to " +
                        short_number(*m_max));
}

void PART_CHECK::finish()
{
    for (const LACK& lack : m_lacks) {
        std::string text = "part " + in_quotes(lack.m_part);
        if (lack.m_others > 0) {
            text += " and " + std::to_string(lack.m_others) + " more";
        }
        text += (lack.m_others > 0 ? " lack " : " lacks ") + lack.m_keywords;
        text += lack.m_rule == LINT_RULE::LIMIT_UNSET      ? ": nothing is legal without a limit"
                : lack.m_rule == LINT_RULE::CENTER_MISSING ? ": every VCO period costs"
                                                           : ", which counts as 0";
        m_messages->add(lack.m_rule, lack.m_place, text);
    }
    m_lacks.clear();
}
