#include "advice/limits/limits.h"

#include "advice/limits/prototype.h"

#include "pll.h"

#include <algorithm>

namespace advice {

namespace {

// A limit by hand that is both a range of the list and a change of what the library searches in.
struct HAND_RANGE
{
    RANGE LIMITS_BY_HAND::*m_range;
    LIMIT_KIND m_least;
    LIMIT_KIND m_most;
    const char* m_option;
};

constexpr HAND_RANGE HAND_RANGES[] = {
    {&LIMITS_BY_HAND::m_pfd, LIMIT_KIND::PFD_MIN, LIMIT_KIND::PFD_MAX, "option --pfd"},
    {&LIMITS_BY_HAND::m_input, LIMIT_KIND::INPUT_MIN, LIMIT_KIND::INPUT_MAX,
     "option --input-range"},
    {&LIMITS_BY_HAND::m_output, LIMIT_KIND::OUTPUT_MIN, LIMIT_KIND::OUTPUT_MAX,
     "option --output-range"},
    {&LIMITS_BY_HAND::m_m, LIMIT_KIND::M_MIN, LIMIT_KIND::M_MAX, "option --m"},
    {&LIMITS_BY_HAND::m_n, LIMIT_KIND::N_MIN, LIMIT_KIND::N_MAX, "option --n"},
    {&LIMITS_BY_HAND::m_k, LIMIT_KIND::K_MIN, LIMIT_KIND::K_MAX, "option --k"},
};

LIMIT by_option(LIMIT_KIND kind, const RATIONAL& value, const char* option)
{
    LIMIT limit;
    limit.m_kind = kind;
    limit.m_value = value;
    limit.m_origin = LIMIT_ORIGIN::OPTION;
    limit.m_source = option;
    return limit;
}

}  // namespace

LIMITS::LIMITS() : m_prototype(std::make_unique<PROTOTYPE>())
{
    m_prototype->take_built_in();
    m_list = list_built_in(m_prototype->m_pll);
}

LIMITS::~LIMITS() = default;

std::unique_ptr<LIMITS> LIMITS::copy() const
{
    auto limits = std::make_unique<LIMITS>();
    *limits->m_prototype = *m_prototype;
    limits->m_list = m_list;
    limits->m_rules = m_rules;
    limits->m_has_device = m_has_device;
    limits->m_max_outputs = m_max_outputs;
    return limits;
}

bool LIMITS::take_device(PLL_MANAGER* manager, const PLL_QUERY& query)
{
    auto prototype = std::make_unique<PROTOTYPE>();
    if (!prototype->take_device(manager, query)) {
        return false;
    }
    m_list = list_device(prototype->m_pll);
    m_prototype = std::move(prototype);
    m_has_device = true;
    m_max_outputs = std::clamp(m_prototype->m_pll.m_max_taps_count, 0, PLL_MAX_TAPS);
    return true;
}

void LIMITS::take_vco(const RANGE& range)
{
    const char* const option = "option --vco";
    for (int post_scale = 1; post_scale <= PLL_VCO_POST_SCALE_MAX; ++post_scale) {
        const RATIONAL scale(post_scale);
        if (range.m_least) {
            remove(LIMIT_KIND::VCO_MIN, post_scale);
            LIMIT limit = by_option(LIMIT_KIND::VCO_MIN, *range.m_least / scale, option);
            limit.m_post_scale = post_scale;
            set(limit);
        }
        if (range.m_most) {
            LIMIT limit = by_option(LIMIT_KIND::VCO_MAX, *range.m_most / scale, option);
            limit.m_post_scale = post_scale;
            set(limit);
        }
    }
}

void LIMITS::take(const LIMITS_BY_HAND& by_hand)
{
    take_vco(by_hand.m_vco);
    for (const HAND_RANGE& hand : HAND_RANGES) {
        const RANGE& range = by_hand.*hand.m_range;
        if (range.m_least) {
            set(by_option(hand.m_least, *range.m_least, hand.m_option));
        }
        if (range.m_most) {
            set(by_option(hand.m_most, *range.m_most, hand.m_option));
        }
    }
    if (by_hand.m_k.m_most) {
        remove(LIMIT_KIND::HALF_MAX);
    }
    if (!by_hand.m_post_scales.empty()) {
        take_list(LIMIT_KIND::POST_SCALES, by_hand.m_post_scales, "option --post-scales");
        take_missing_vco_limits(by_hand.m_post_scales);
        remove(LIMIT_KIND::POST_SCALE_MAX);
    }
    if (!by_hand.m_vco_taps.empty()) {
        take_list(LIMIT_KIND::VCO_TAPS, by_hand.m_vco_taps, "option --taps");
        remove(LIMIT_KIND::M_TAP_MAX);
        remove(LIMIT_KIND::K_TAP_MAX);
        remove(LIMIT_KIND::M_TAP_RESOLUTION);
        remove(LIMIT_KIND::K_TAP_RESOLUTION);
    }
}

// A post-scale that the device does not have has no VCO limits either: those of the VCO itself
// hold.
void LIMITS::take_missing_vco_limits(const std::vector<int>& post_scales)
{
    for (const int post_scale : post_scales) {
        for (const LIMIT_KIND kind : {LIMIT_KIND::VCO_MIN, LIMIT_KIND::VCO_MAX}) {
            const LIMIT* const of_vco = find(kind, 1);
            if (find(kind, post_scale) != nullptr || of_vco == nullptr) {
                continue;
            }
            LIMIT limit = by_option(kind, of_vco->m_value.m_exact / RATIONAL(post_scale),
                                    "option --post-scales");
            limit.m_post_scale = post_scale;
            set(limit);
        }
    }
}

void LIMITS::take_list(LIMIT_KIND kind, const std::vector<int>& legal, const char* option)
{
    LIMIT limit = by_option(kind, RATIONAL(), option);
    limit.m_legal = legal;
    std::sort(limit.m_legal.begin(), limit.m_legal.end());
    limit.m_value = RATIONAL(limit.m_legal.back());
    set(limit);
}

void LIMITS::set(const LIMIT& limit)
{
    for (LIMIT& present : m_list) {
        if (present.m_kind == limit.m_kind && present.m_post_scale == limit.m_post_scale &&
            present.m_own_name == limit.m_own_name &&
            present.m_with_spread == limit.m_with_spread && present.m_output == limit.m_output &&
            present.m_origin != LIMIT_ORIGIN::LIBRARY) {
            present = limit;
            return;
        }
    }
    m_list.push_back(limit);
}

void LIMITS::remove(LIMIT_KIND kind, int post_scale)
{
    std::erase_if(m_list, [=](const LIMIT& limit) {
        return limit.m_kind == kind && (post_scale == 0 || limit.m_post_scale == post_scale);
    });
}

void LIMITS::set_source(const std::string& keyword, const std::string& source)
{
    for (LIMIT& limit : m_list) {
        if (limit.m_keyword == keyword) {
            limit.m_source = source;
        }
    }
}

const LIMIT* LIMITS::find(LIMIT_KIND kind, int post_scale) const
{
    const auto found = std::find_if(m_list.begin(), m_list.end(), [=](const LIMIT& limit) {
        const bool is_at =
            post_scale == 0 || limit.m_post_scale == 0 || limit.m_post_scale == post_scale;
        return limit.m_kind == kind && is_at && !limit.m_with_spread;
    });
    return found == m_list.end() ? nullptr : &*found;
}

bool LIMITS::has_options() const
{
    return std::any_of(m_list.begin(), m_list.end(),
                       [](const LIMIT& limit) { return limit.m_origin == LIMIT_ORIGIN::OPTION; });
}

void LIMITS::give_to(PLL* pll, const REQUEST& request) const
{
    m_prototype->give_to(pll);
    for (const LIMIT& limit : m_list) {
        if (limit.m_origin == LIMIT_ORIGIN::OPTION || limit.m_origin == LIMIT_ORIGIN::SHEET) {
            widen_to(limit, pll);
        }
    }
    if (request.m_max_outputs) {
        pll->m_max_taps_count = *request.m_max_outputs;
    }
    if (m_rules != nullptr) {
        m_rules->narrow(request, pll);
    }
}

}  // namespace advice
