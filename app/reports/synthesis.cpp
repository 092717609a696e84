#include "app/output/format.h"
#include "app/output/text_table.h"

#include "app/reports/loop_filter.h"
#include "app/reports/reports.h"
#include <optional>

namespace {

constexpr int DUTY_DECIMALS = 2;
constexpr int KHZ_DECIMALS = 3;
constexpr int MHZ_DECIMALS = 6;
constexpr int PERIOD_DECIMALS = 3;
constexpr int PERCENT_DECIMALS = 4;
constexpr double PS_KHZ = 1e9;  // kHz = PS_KHZ / ps

// "MISSED frequency, phase", or nothing.
std::string missed_wishes(const ANSWER& answer, std::size_t output)
{
    std::string text;
    for (const advice::JUDGED_WISH& wish : answer.get_verdict().m_wishes) {
        if (wish.m_output == static_cast<int>(output) && !wish.m_kept) {
            text += (text.empty() ? "MISSED " : ", ") + std::string(advice::name_of(wish.m_kind));
        }
    }
    return text;
}

const PLL_OUTPUT_TAP& tap_of(const ANSWER& answer, std::size_t output)
{
    return answer.get_pll().m_taps[output];
}

void append_input(const char* name, const INPUT_CLOCK& input, std::string* text)
{
    *text += name + advice::write_frequency(input.m_frequency, input.m_unit);
    const std::string library_period = std::to_string(input.m_library_period) + " ps";
    if (input.m_period.is_integer()) {
        *text += ", period " + library_period + "\n";
    } else {
        *text += ", period " + input.m_period.to_decimal(PERIOD_DECIMALS) + " ps, taken as " +
                 library_period + "; ratios are exact\n";
    }
}

std::vector<std::string> describe_loop(const REQUEST& request, const INPUT_CLOCK& input,
                                       const ANSWER& answer)
{
    const PLL& pll = answer.get_pll();
    const RATIONAL vco_ratio(answer.get_achieved().m_vco_mult, answer.get_achieved().m_vco_div);
    const int feedback = pll.m_feedback_tap;
    return {std::to_string(pll.get_n()),
            std::to_string(pll.get_m()),
            std::to_string(pll.m_vco_post_scale),
            format_mhz(input.m_frequency, RATIONAL(1, pll.get_n())),
            format_mhz(input.m_frequency, vco_ratio),
            vco_ratio.to_fraction(),
            feedback < 0 ? "M counter"
                         : advice::name_of_output(request, static_cast<std::size_t>(feedback))};
}

void append_loop(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    std::vector<TABLE_COLUMN> columns = {
        {"N", "", ALIGN::RIGHT},          {"M", "", ALIGN::RIGHT},
        {"post-scale", "", ALIGN::RIGHT}, {"PFD", "MHz", ALIGN::RIGHT},
        {"VCO", "MHz", ALIGN::RIGHT},     {"VCO / input", "", ALIGN::RIGHT},
        {"feedback", "", ALIGN::LEFT}};
    std::vector<std::string> first = describe_loop(request, request.m_input, answer);
    if (request.m_input2) {
        columns.push_back({"from", "", ALIGN::LEFT});
        first.emplace_back("input");
    }
    TEXT_TABLE table(columns);
    table.add_row(first);
    if (request.m_input2) {
        std::vector<std::string> second = describe_loop(request, *request.m_input2, answer);
        second.emplace_back("input2");
        table.add_row(second);
    }
    *text += "\nLoop\n";
    table.append_to(text);
}

// Its name, or its number.
std::string label_of(const REQUEST& request, std::size_t output)
{
    const std::string& name = request.m_outputs[output].m_name;
    return name.empty() ? std::to_string(output + 1) : name;
}

// The unit that all outputs were asked in; none when they differ.
std::optional<advice::FREQUENCY_UNIT> common_unit(const REQUEST& request)
{
    const advice::FREQUENCY_UNIT unit = request.m_outputs.front().m_unit;
    for (const OUTPUT_WISH& wish : request.m_outputs) {
        if (wish.m_unit != unit) {
            return std::nullopt;
        }
    }
    return unit;
}

void append_frequencies(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    const std::optional<advice::FREQUENCY_UNIT> unit = common_unit(request);
    const char* const head = unit ? advice::name_of(*unit) : "";
    std::vector<TABLE_COLUMN> columns = {{"output", "", ALIGN::RIGHT},
                                         {"asked", head, ALIGN::RIGHT},
                                         {"achieved", head, ALIGN::RIGHT},
                                         {"ratio", "", ALIGN::RIGHT},
                                         {"error", "", ALIGN::RIGHT}};
    if (request.m_input2) {
        columns.push_back({"from input2", head, ALIGN::RIGHT});
    }
    columns.push_back({"", "", ALIGN::LEFT});
    TEXT_TABLE table(columns);
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_RESULT& output = answer.get_outputs()[i];
        const OUTPUT_WISH& wish = request.m_outputs[i];
        const auto write = [&](const INPUT_CLOCK& input, const RATIONAL& ratio) {
            const advice::AMOUNT hertz = advice::product(input.m_frequency, ratio);
            return unit ? advice::write_frequency_number(hertz, wish.m_unit)
                        : advice::write_frequency(hertz, wish.m_unit);
        };
        std::vector<std::string> cells = {
            label_of(request, i), write(request.m_input, wish.m_ratio),
            write(request.m_input, output.m_ratio), output.m_ratio.to_fraction(),
            format_error(output.m_error)};
        if (request.m_input2) {
            cells.push_back(write(*request.m_input2, output.m_ratio));
        }
        cells.emplace_back(missed_wishes(answer, i));
        table.add_row(cells);
    }
    *text += "\nOutputs\n";
    table.append_to(text);
}

// Without a word about phases, duty cycles and delays, and with none to see, there is no table.
bool has_shapes(const REQUEST& request, const ANSWER& answer)
{
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_WISH& wish = request.m_outputs[i];
        const OUTPUT_RESULT& result = answer.get_outputs()[i];
        const OUTPUT_WISH plain;
        const bool is_plain = wish.m_phase.is_zero() && wish.m_duty == plain.m_duty &&
                              wish.m_delay == 0 && wish.m_phase_to == advice::NO_OUTPUT;
        const bool is_seen = result.m_phase.m_achieved != 0.0 || !(result.m_duty == plain.m_duty) ||
                             answer.get_achieved().m_taps[i].m_delay != 0;
        if (!is_plain || is_seen) {
            return true;
        }
    }
    return false;
}

std::string write_step(double duty, double step, double lowest, double highest)
{
    constexpr double SLACK = 1e-9;  // of a step that ends on a bound
    const double moved = duty + step;
    return moved >= lowest - SLACK && moved <= highest + SLACK ? format_fixed(moved, DUTY_DECIMALS)
                                                               : "-";
}

// What other settings than this one would allow around the phases asked for.
void append_other_settings(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    constexpr double SAME = 1e-6;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_PHASE& phase = answer.get_outputs()[i].m_phase;
        const std::string previous = format_phase(phase.m_any_previous);
        const std::string next = format_phase(phase.m_any_next);
        const bool is_closer_before = phase.m_any_previous > phase.m_previous + SAME &&
                                      phase.m_any_previous < phase.m_achieved - SAME;
        const bool is_closer_behind =
            phase.m_any_next < phase.m_next - SAME && phase.m_any_next > phase.m_achieved + SAME;
        const bool is_closer = is_closer_before || is_closer_behind;
        if (is_closer && previous != "-" && next != "-") {
            *text += "With another VCO, " + advice::name_of_output(request, i) +
                     " could have its phase at " + previous + " or " + next + " deg.\n";
        }
    }
}

void append_shapes(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"output", "", ALIGN::RIGHT},
                      {"phase", "deg", ALIGN::RIGHT},
                      {"achieved", "deg", ALIGN::RIGHT},
                      {"previous", "deg", ALIGN::RIGHT},
                      {"next", "deg", ALIGN::RIGHT},
                      {"duty", "%", ALIGN::RIGHT},
                      {"achieved", "%", ALIGN::RIGHT},
                      {"prev.", "%", ALIGN::RIGHT},
                      {"next", "%", ALIGN::RIGHT},
                      {"delay", "ps", ALIGN::RIGHT},
                      {"achieved", "ps", ALIGN::RIGHT}});
    if (!has_shapes(request, answer)) {
        return;
    }
    const PLL& pll = answer.get_pll();
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_WISH& wish = request.m_outputs[i];
        const OUTPUT_RESULT& result = answer.get_outputs()[i];
        const OUTPUT_PHASE& phase = result.m_phase;
        const int index = static_cast<int>(i);
        const double duty = result.m_duty.to_double();
        const double step = pll.get_duty_cycle_resolution(index);
        const double lowest = pll.get_duty_cycle_min(index);
        const double highest = pll.get_duty_cycle_max(index);
        table.add_row({label_of(request, i), format_phase(phase.m_asked),
                       format_phase(phase.m_achieved), format_phase(phase.m_previous),
                       format_phase(phase.m_next),
                       format_short(wish.m_duty.to_double(), DUTY_DECIMALS),
                       format_fixed(duty, DUTY_DECIMALS), write_step(duty, -step, lowest, highest),
                       write_step(duty, step, lowest, highest), std::to_string(wish.m_delay),
                       std::to_string(answer.get_achieved().m_taps[i].m_delay)});
    }
    *text += "\nPhases against the input, duty cycles and delays\n";
    table.append_to(text);
    append_other_settings(request, answer, text);
}

std::string name_of_source(const PLL& pll, int previous_tap)
{
    if (previous_tap < 0) {
        return "VCO";
    }
    return std::string(previous_tap < pll.m_user_taps_count ? "output " : "cascade ") +
           std::to_string(previous_tap + 1);
}

void add_loop_counter(const char* name, const PLL_COUNTER_M& counter, const char* source,
                      TEXT_TABLE* table)
{
    table->add_row({name, std::to_string(counter.m_count), "-", "-", "-",
                    std::to_string(counter.m_initial), std::to_string(counter.m_vco_tap), source,
                    std::to_string(counter.m_delay)});
}

void append_counters(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"counter", "", ALIGN::LEFT},
                      {"count", "", ALIGN::RIGHT},
                      {"high", "", ALIGN::RIGHT},
                      {"low", "", ALIGN::RIGHT},
                      {"mode", "", ALIGN::LEFT},
                      {"initial", "", ALIGN::RIGHT},
                      {"VCO tap", "", ALIGN::RIGHT},
                      {"fed by", "", ALIGN::LEFT},
                      {"delay ps", "", ALIGN::RIGHT}});
    const PLL& pll = answer.get_pll();
    add_loop_counter("N", pll.m_n, "input", &table);
    add_loop_counter(
        "M", pll.m_m,
        pll.m_feedback_tap < 0 ? "VCO" : name_of_source(pll, pll.m_feedback_tap).c_str(), &table);
    for (int i = 0; i < pll.m_total_taps_count && i < PLL_MAX_TAPS; ++i) {
        const PLL_OUTPUT_TAP& tap = tap_of(answer, static_cast<std::size_t>(i));
        const char* mode = tap.m_bypass ? "bypass" : tap.m_even ? "even" : "odd";
        const bool is_user = i < pll.m_user_taps_count;
        table.add_row({is_user ? advice::name_of_output(request, static_cast<std::size_t>(i))
                               : "cascade " + std::to_string(i + 1),
                       std::to_string(tap.m_count), std::to_string(tap.m_high),
                       std::to_string(tap.m_low), mode, std::to_string(tap.m_initial),
                       std::to_string(tap.m_vco_tap), name_of_source(pll, tap.m_previous_tap),
                       std::to_string(tap.m_delay)});
    }
    *text += "\nCounters\n";
    table.append_to(text);
}

void append_spread(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    const PLL_PROP& asked = request.m_prop;
    const PLL_PROP& achieved = answer.get_achieved();
    if (asked.m_down_spread == 0.0) {
        return;
    }
    TEXT_TABLE table({{"spread", "", ALIGN::LEFT},
                      {"down", "%", ALIGN::RIGHT},
                      {"rate", "kHz", ALIGN::RIGHT},
                      {"M", "", ALIGN::LEFT},
                      {"cycles", "", ALIGN::RIGHT}});
    table.add_row({"asked", format_fixed(asked.m_down_spread * PERCENT, PERCENT_DECIMALS),
                   format_fixed(PS_KHZ / asked.m_ss_period, KHZ_DECIMALS), "-", "-"});
    const PLL& pll = answer.get_pll();
    if (pll.m_ss_cycles == 0) {
        table.add_row({"achieved", "none", "-", "-", "-"});
    } else {
        table.add_row({"achieved", format_fixed(achieved.m_down_spread * PERCENT, PERCENT_DECIMALS),
                       format_fixed(PS_KHZ / achieved.m_ss_period, KHZ_DECIMALS),
                       std::to_string(pll.get_m()) + " to " + std::to_string(pll.m_m.m_ss_count),
                       std::to_string(pll.m_ss_cycles)});
    }
    *text += "\nSpread spectrum\n";
    table.append_to(text);
}

std::string format_lock_limit(int period)
{
    return period > 0 ? format_fixed(PS_MHZ / period, MHZ_DECIMALS) : "-";
}

void append_lock_range(const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"lock range", "", ALIGN::LEFT},
                      {"lowest", "MHz", ALIGN::RIGHT},
                      {"highest", "MHz", ALIGN::RIGHT}});
    const PLL_PROP& achieved = answer.get_achieved();
    table.add_row({"input", format_lock_limit(achieved.m_lock_max_period),
                   format_lock_limit(achieved.m_lock_min_period)});
    *text += "\nLock range\n";
    table.append_to(text);
}

}  // namespace

std::string report_synthesis(const REQUEST& request, const ANSWER& answer)
{
    std::string text = report_verdict(request, answer);
    text += "\n" + report_origins(request, answer);
    append_input("input  ", request.m_input, &text);
    if (request.m_input2) {
        append_input("input2 ", *request.m_input2, &text);
    }
    if (!answer.has_setting()) {
        return text;
    }
    append_loop(request, answer, &text);
    append_frequencies(request, answer, &text);
    append_shapes(request, answer, &text);
    append_counters(request, answer, &text);
    text += "\n";
    append_loop_filter(request, answer, &text);
    append_spread(request, answer, &text);
    append_margins(request, answer, &text);
    append_lock_range(answer, &text);
    return text;
}
