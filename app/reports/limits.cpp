#include "app/reports/reports.h"

#include "app/output/format.h"
#include "app/output/text_table.h"

#include <algorithm>

namespace {

constexpr int DECIMALS = 6;
constexpr int MARGIN_DECIMALS = 1;
constexpr double HZ_PER_MHZ = 1e6;

const char* unit_of(const advice::LIMIT& limit)
{
    switch (advice::facts_of(limit.m_kind).m_unit) {
    case advice::LIMIT_UNIT::HZ:
        return "MHz";
    case advice::LIMIT_UNIT::PS:
        return "ps";
    case advice::LIMIT_UNIT::PERCENT:
        return "%";
    case advice::LIMIT_UNIT::COUNT:
        break;
    }
    return "";
}

std::string write_value(const advice::LIMIT& limit, double value)
{
    const bool is_frequency = advice::facts_of(limit.m_kind).m_unit == advice::LIMIT_UNIT::HZ;
    return format_short(is_frequency ? value / HZ_PER_MHZ : value, DECIMALS);
}

std::string write_rule(const advice::LIMIT& limit)
{
    switch (advice::facts_of(limit.m_kind).m_side) {
    case advice::LIMIT_SIDE::LEAST:
        return "at least " + write_value(limit, limit.m_value.m_value);
    case advice::LIMIT_SIDE::MOST:
        return "at most " + write_value(limit, limit.m_value.m_value);
    case advice::LIMIT_SIDE::MULTIPLE_OF:
        return "multiples of " + write_value(limit, limit.m_value.m_value);
    case advice::LIMIT_SIDE::ONE_OF:
        break;
    }
    std::string text = "one of";
    for (const int value : limit.m_legal) {
        text += " " + std::to_string(value);
    }
    return text;
}

// "at post-scale 2", "with spread".
std::string write_condition(const advice::LIMIT& limit)
{
    std::string text =
        limit.m_post_scale > 0 ? "post-scale " + std::to_string(limit.m_post_scale) : "";
    if (limit.m_with_spread) {
        text += (text.empty() ? "" : ", ") + std::string("with spread");
    }
    return text;
}

// Of the outputs, only the one that comes closest.
bool is_closest(const std::vector<advice::JUDGED_LIMIT>& limits, const advice::JUDGED_LIMIT& limit)
{
    return std::none_of(limits.begin(), limits.end(), [&](const advice::JUDGED_LIMIT& other) {
        const bool is_closer =
            other.m_margin_percent < limit.m_margin_percent ||
            (other.m_margin_percent == limit.m_margin_percent && &other < &limit);
        return other.m_limit == limit.m_limit && other.m_is_note == limit.m_is_note && is_closer;
    });
}

bool has_margin(const advice::JUDGED_LIMIT& judged)
{
    const advice::LIMIT_SIDE side = advice::facts_of(judged.m_limit->m_kind).m_side;
    return side == advice::LIMIT_SIDE::LEAST || side == advice::LIMIT_SIDE::MOST;
}

const char* mark_of(const REQUEST& request, const advice::JUDGED_LIMIT& judged)
{
    if (!judged.m_kept) {
        return "BROKEN";
    }
    if (judged.m_slack_used) {
        return "by 1 ps of slack";
    }
    const bool is_frequency =
        advice::facts_of(judged.m_limit->m_kind).m_unit == advice::LIMIT_UNIT::HZ;
    return is_frequency && judged.m_margin_percent < request.m_margins.m_limit_percent ? "near"
                                                                                       : "";
}

}  // namespace

void append_margins(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"limit", "", ALIGN::LEFT},
                      {"legal", "", ALIGN::LEFT},
                      {"", "", ALIGN::LEFT},
                      {"answer", "", ALIGN::RIGHT},
                      {"margin", "%", ALIGN::RIGHT},
                      {"", "", ALIGN::LEFT}});
    const std::vector<advice::JUDGED_LIMIT>& limits = answer.get_verdict().m_limits;
    for (const advice::JUDGED_LIMIT& judged : limits) {
        if (judged.m_is_note || !has_margin(judged) || !is_closest(limits, judged)) {
            continue;
        }
        const advice::LIMIT& limit = *judged.m_limit;
        table.add_row(
            {std::string(limit.name()) + (judged.m_input == 2 ? " (input2)" : ""),
             write_rule(limit), unit_of(limit), write_value(limit, judged.m_value.m_value),
             format_fixed(judged.m_margin_percent, MARGIN_DECIMALS), mark_of(request, judged)});
    }
    *text += "\nLimits, and how near the answer runs to them\n";
    table.append_to(text);
}

std::string report_limits(const advice::LIMITS& limits, LIST_FORM form)
{
    RECORD_LIST records(
        {"name", "unit", "limit", "side", "post_scale", "with_spread", "keyword", "source"});
    TEXT_TABLE table({{"limit", "", ALIGN::LEFT},
                      {"legal", "", ALIGN::LEFT},
                      {"", "", ALIGN::LEFT},
                      {"when", "", ALIGN::LEFT},
                      {"keyword", "", ALIGN::LEFT},
                      {"source", "", ALIGN::LEFT}});
    static constexpr const char* SIDES[] = {"least", "most", "multiple_of", "one_of"};
    for (const advice::LIMIT& limit : limits.get_list()) {
        const advice::LIMIT_FACTS& facts = advice::facts_of(limit.m_kind);
        table.add_row({limit.name(), write_rule(limit), unit_of(limit), write_condition(limit),
                       limit.m_keyword, limit.m_source});
        records.add({RECORD_VALUE::text(limit.name()),
                     RECORD_VALUE::text(advice::name_of_unit(facts.m_unit)),
                     RECORD_VALUE::number(limit.m_value.m_value, DECIMALS),
                     RECORD_VALUE::text(SIDES[static_cast<std::size_t>(facts.m_side)]),
                     RECORD_VALUE::number(limit.m_post_scale),
                     RECORD_VALUE::truth(limit.m_with_spread), RECORD_VALUE::text(limit.m_keyword),
                     RECORD_VALUE::text(limit.m_source)});
    }
    if (form != LIST_FORM::TABLE) {
        return records.write(form);
    }
    std::string text = limits.has_device() ? "" : "Built-in limits, no real device.\n\n";
    table.append_to(&text);
    return text;
}
