// Verdicts as sentences.
#include "advice/verdict/verdict.h"

#include "advice/numbers/text.h"

#include <algorithm>
#include <cmath>

namespace advice {

namespace {

constexpr int DEGREE_DECIMALS = 3;
constexpr int PERCENT_DECIMALS = 3;
constexpr int MARGIN_DECIMALS = 1;
constexpr int RATE_DECIMALS = 3;
constexpr double HZ_PER_KHZ = 1e3;

std::string place_of(const REQUEST& request, int output)
{
    return output == NO_OUTPUT ? "" : name_of_output(request, static_cast<std::size_t>(output));
}

FREQUENCY_UNIT unit_of(const REQUEST& request, int output)
{
    return output == NO_OUTPUT ? request.m_input.m_unit
                               : request.m_outputs[static_cast<std::size_t>(output)].m_unit;
}

// A value of a wish in its unit; `bare` leaves the unit out.
std::string write_value(const REQUEST& request, const JUDGED_WISH& wish, const AMOUNT& value,
                        bool bare)
{
    const auto number = [&](double scale, int decimals, const char* unit) {
        return write_number(value.m_value / scale, decimals) + (bare ? "" : unit);
    };
    switch (wish.m_kind) {
    case WISH_KIND::FREQUENCY:
        return write_frequency(value, unit_of(request, wish.m_output));
    case WISH_KIND::PHASE:
        return number(1.0, DEGREE_DECIMALS, " deg");
    case WISH_KIND::DUTY:
    case WISH_KIND::SPREAD:
        return number(1.0, PERCENT_DECIMALS, " %");
    case WISH_KIND::DELAY:
        return number(1.0, 0, " ps");
    case WISH_KIND::EVEN:
    case WISH_KIND::EVEN_COUNT:
        return value.m_value > 0.0 ? "yes" : "no";
    case WISH_KIND::BANDWIDTH:
    case WISH_KIND::SPREAD_RATE:
        return number(HZ_PER_KHZ, RATE_DECIMALS, " kHz");
    case WISH_KIND::VCO_RATIO:
    case WISH_KIND::KIND_COUNT:
        break;
    }
    return value.is_exact() ? value.m_exact.to_fraction() : "-";
}

const char* words_of(WISH_KIND kind)
{
    switch (kind) {
    case WISH_KIND::FREQUENCY:
    case WISH_KIND::PHASE:
    case WISH_KIND::DELAY:
    case WISH_KIND::BANDWIDTH:
    case WISH_KIND::SPREAD:
        return name_of(kind);
    case WISH_KIND::DUTY:
        return "duty cycle";
    case WISH_KIND::EVEN:
        return "even counter";
    case WISH_KIND::EVEN_COUNT:
        return "even counts";
    case WISH_KIND::SPREAD_RATE:
        return "rate of the spread";
    case WISH_KIND::VCO_RATIO:
    case WISH_KIND::KIND_COUNT:
        break;
    }
    return "VCO ratio";
}

bool is_relative(WISH_KIND kind)
{
    return kind == WISH_KIND::FREQUENCY || kind == WISH_KIND::BANDWIDTH ||
           kind == WISH_KIND::SPREAD || kind == WISH_KIND::SPREAD_RATE;
}

std::string write_limit_value(const REQUEST& request, const LIMIT& limit, int output,
                              const AMOUNT& value)
{
    switch (facts_of(limit.m_kind).m_unit) {
    case LIMIT_UNIT::HZ: {
        const FREQUENCY_UNIT unit = unit_of(request, output);
        return write_frequency(value, unit);
    }
    case LIMIT_UNIT::PS:
        return write_number(value.m_value, 0) + " ps";
    case LIMIT_UNIT::PERCENT:
        return write_number(value.m_value, PERCENT_DECIMALS) + " %";
    case LIMIT_UNIT::COUNT:
        break;
    }
    return write_number(value.m_value, 0);
}

// "legal is at most 454.545455 MHz", "one of 2 4 8".
std::string write_rule(const REQUEST& request, const LIMIT& limit, int output)
{
    const std::string bound = write_limit_value(request, limit, output, limit.m_value);
    switch (facts_of(limit.m_kind).m_side) {
    case LIMIT_SIDE::LEAST:
        return "legal is at least " + bound;
    case LIMIT_SIDE::MOST:
        return "legal is at most " + bound;
    case LIMIT_SIDE::MULTIPLE_OF:
        return "legal are multiples of " + bound;
    case LIMIT_SIDE::ONE_OF:
        break;
    }
    std::string text = "legal are";
    for (const int value : limit.m_legal) {
        text += " " + std::to_string(value);
    }
    return text;
}

std::string write_source(const LIMIT& limit)
{
    return limit.m_keyword.empty() ? limit.m_source : limit.m_keyword + ", " + limit.m_source;
}

// "VCO", "output 1", "PFD of the second input".
std::string write_subject(const REQUEST& request, const JUDGED_LIMIT& judged)
{
    const LIMIT& limit = *judged.m_limit;
    std::string subject = facts_of(limit.m_kind).m_text;
    const bool is_output_clock =
        limit.m_kind == LIMIT_KIND::OUTPUT_MIN || limit.m_kind == LIMIT_KIND::OUTPUT_MAX ||
        limit.m_kind == LIMIT_KIND::PIN_MIN || limit.m_kind == LIMIT_KIND::PIN_MAX;
    if (is_output_clock && judged.m_output != NO_OUTPUT) {
        return place_of(request, judged.m_output);
    }
    if (judged.m_output != NO_OUTPUT &&
        static_cast<std::size_t>(judged.m_output) < request.m_outputs.size()) {
        subject += " (" + place_of(request, judged.m_output) + ")";
    }
    return subject + (judged.m_input == 2 ? " with the second input" : "");
}

// A frequency that is `beyond` as much as can be seen is written with more digits than usual.
std::string write_judged(const REQUEST& request, const JUDGED_LIMIT& judged)
{
    return write_subject(request, judged) + " " +
           write_limit_value(request, *judged.m_limit, judged.m_output, judged.m_value) + ", " +
           write_rule(request, *judged.m_limit, judged.m_output) + " (" +
           write_source(*judged.m_limit) + ")";
}

// The names of what is missed or broken, each once.
std::string list_misses(const REQUEST& request, const VERDICT& verdict)
{
    std::vector<std::string> names;
    for (const JUDGED_WISH& wish : verdict.m_wishes) {
        if (!wish.m_kept) {
            const std::string place = place_of(request, wish.m_output);
            names.push_back(words_of(wish.m_kind) + (place.empty() ? "" : " of " + place));
        }
    }
    for (const JUDGED_LIMIT& limit : verdict.m_limits) {
        if (!limit.m_kept && !limit.m_is_note) {
            names.emplace_back(std::string("limit ") + limit.m_limit->name());
        }
    }
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const bool is_first = std::find(names.begin(), names.begin() + static_cast<long>(i),
                                        names[i]) == names.begin() + static_cast<long>(i);
        text += is_first ? (text.empty() ? "" : ", ") + names[i] : "";
    }
    return text;
}

// The kinds of wishes that are judged, in their order.
std::string list_kinds(const VERDICT& verdict)
{
    std::string text;
    for (int kind = 0; kind < static_cast<int>(WISH_KIND::KIND_COUNT); ++kind) {
        const bool is_judged =
            std::any_of(verdict.m_wishes.begin(), verdict.m_wishes.end(),
                        [=](const JUDGED_WISH& w) { return static_cast<int>(w.m_kind) == kind; });
        if (is_judged) {
            text += (text.empty() ? "" : ", ") + std::string(words_of(WISH_KIND(kind)));
        }
    }
    return text;
}

std::string describe_frequencies(const VERDICT& verdict)
{
    int outputs = 0;
    int inexact = 0;
    double worst = 0.0;
    for (const JUDGED_WISH& wish : verdict.m_wishes) {
        if (wish.m_kind == WISH_KIND::FREQUENCY) {
            ++outputs;
            inexact += wish.m_miss.m_value != 0.0 ? 1 : 0;
            worst = std::fabs(worst) < std::fabs(wish.m_miss.m_value) ? wish.m_miss.m_value : worst;
        }
    }
    if (inexact == 0) {
        return outputs == 1 ? "the output is exact" : "every output is exact";
    }
    if (outputs == 1) {
        return "the output is off by " + write_part(worst);
    }
    return std::to_string(inexact) + " of " + std::to_string(outputs) +
           " outputs not exact, at most " + write_part(worst);
}

}  // namespace

std::string to_text(const REQUEST& request, const JUDGED_WISH& wish)
{
    const std::string place = place_of(request, wish.m_output);
    std::string text = std::string(wish.m_kept ? "" : "MISSED ") + words_of(wish.m_kind) +
                       (place.empty() ? "" : " of " + place) + ": ";
    if (std::isnan(wish.m_miss.m_value) && !wish.m_kept) {
        return text + "nothing for " + write_value(request, wish, wish.m_asked, false);
    }
    text += write_value(request, wish, wish.m_achieved, false);
    if (wish.m_kept) {
        return text;
    }
    text += " for " + write_value(request, wish, wish.m_asked, true);
    if (is_relative(wish.m_kind)) {
        text += ", " + write_part(wish.m_miss.m_value) + ", tolerance " +
                write_tolerance(wish.m_tolerance.to_double());
    }
    if (wish.m_step.m_value > 0.0) {
        text += ", steps of " + write_number(wish.m_step.m_value, DEGREE_DECIMALS);
    }
    return text;
}

std::string to_text(const REQUEST& request, const JUDGED_LIMIT& limit)
{
    const char* const mark = limit.m_kept ? "" : limit.m_is_note ? "beyond " : "BROKEN ";
    return std::string(mark) + limit.m_limit->name() + ": " + write_judged(request, limit);
}

std::string to_text(const REQUEST& request, const VERDICT& verdict, const WARNING& warning)
{
    switch (warning.m_kind) {
    case WARNING_KIND::NEAR_LIMIT:
        return "WARNING: " + write_number(warning.m_value, MARGIN_DECIMALS) + " % to " +
               verdict.m_limits[warning.m_index].m_limit->name() + ": " +
               write_judged(request, verdict.m_limits[warning.m_index]);
    case WARNING_KIND::SLACK_USED:
        return "WARNING: legal by the slack of 1 ps alone: " +
               write_judged(request, verdict.m_limits[warning.m_index]);
    case WARNING_KIND::NOTE:
        return "NOTE: not for a pin: " + write_judged(request, verdict.m_limits[warning.m_index]);
    case WARNING_KIND::PHASE_MARGIN:
        return "WARNING: the phase margin of the loop is " +
               write_number(warning.m_value, MARGIN_DECIMALS) + " degrees, below " +
               write_number(request.m_margins.m_phase_degrees, MARGIN_DECIMALS);
    case WARNING_KIND::LOCK_RANGE:
        return std::string("WARNING: the lock range, in whole ps, leaves out the ") +
               (warning.m_index == 2 ? "second input" : "input") + " itself";
    case WARNING_KIND::BUILT_IN:
        break;
    }
    return "NOTE: built-in limits, no real device";
}

std::string headline(const REQUEST& request, const VERDICT& verdict)
{
    if (!verdict.m_has_setting) {
        return "NOT MET: no setting";
    }
    if (!verdict.m_met) {
        return "NOT MET: " + list_misses(request, verdict);
    }
    std::size_t limits = 0;
    for (const JUDGED_LIMIT& limit : verdict.m_limits) {
        limits += limit.m_is_note ? 0 : 1;
    }
    return "MET: " + describe_frequencies(verdict) + "; judged: " + list_kinds(verdict) + " and " +
           std::to_string(limits) + " limits";
}

}  // namespace advice
