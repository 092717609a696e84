#include "app/output/format.h"
#include "app/output/text_table.h"
#include "app/reports/loop_filter.h"
#include "app/reports/reports.h"

namespace {

constexpr int DUTY_DECIMALS = 2;
constexpr int KHZ_DECIMALS = 3;
constexpr int MHZ_DECIMALS = 6;
constexpr int PERIOD_DECIMALS = 3;
constexpr int PERCENT_DECIMALS = 4;
constexpr double PS_KHZ = 1e9;  // kHz = PS_KHZ / ps

const PLL_OUTPUT_TAP& tap_of(const ANSWER& answer, std::size_t output)
{
    return answer.get_pll().m_taps[output];
}

void append_input(const char* name, const INPUT_CLOCK& input, std::string* text)
{
    *text += name + format_mhz_short(input.m_frequency) + " MHz";
    const std::string library_period = std::to_string(input.m_library_period) + " ps";
    if (input.m_period.is_integer()) {
        *text += ", period " + library_period + "\n";
    } else {
        *text += ", period " + input.m_period.to_decimal(PERIOD_DECIMALS) + " ps, taken as " +
                 library_period + "; ratios are exact\n";
    }
}

void append_loop(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    const PLL& pll = answer.get_pll();
    const RATIONAL input = request.m_input.m_frequency;
    const RATIONAL vco_ratio(answer.get_achieved().m_vco_mult, answer.get_achieved().m_vco_div);
    TEXT_TABLE table({{"N", "", ALIGN::RIGHT},
                      {"M", "", ALIGN::RIGHT},
                      {"post-scale", "", ALIGN::RIGHT},
                      {"PFD", "MHz", ALIGN::RIGHT},
                      {"VCO", "MHz", ALIGN::RIGHT},
                      {"VCO / input", "", ALIGN::RIGHT},
                      {"feedback", "", ALIGN::LEFT}});
    const int feedback = pll.m_feedback_tap;
    table.add_row({std::to_string(pll.get_n()), std::to_string(pll.get_m()),
                   std::to_string(pll.m_vco_post_scale),
                   format_mhz(input, RATIONAL(1, pll.get_n())), format_mhz(input, vco_ratio),
                   vco_ratio.to_fraction(),
                   feedback < 0 ? "M counter" : "output " + std::to_string(feedback + 1)});
    table.append_to(text);
}

void append_frequencies(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"output", "", ALIGN::RIGHT},
                      {"asked", "MHz", ALIGN::RIGHT},
                      {"achieved", "MHz", ALIGN::RIGHT},
                      {"ratio", "", ALIGN::RIGHT},
                      {"error", "", ALIGN::RIGHT},
                      {"", "", ALIGN::LEFT}});
    const RATIONAL input = request.m_input.m_frequency;
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_RESULT& output = answer.get_outputs()[i];
        table.add_row({std::to_string(i + 1), format_mhz(input, request.m_outputs[i].m_ratio),
                       format_mhz(input, output.m_ratio), output.m_ratio.to_fraction(),
                       format_error(output.m_error), output.m_missed ? "MISSED" : ""});
    }
    table.append_to(text);
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
    const PLL& pll = answer.get_pll();
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const PLL_USER_TAP& asked = request.m_prop.m_taps[i];
        const PLL_USER_TAP& achieved = answer.get_achieved().m_taps[i];
        const OUTPUT_PHASE& phase = answer.get_outputs()[i].m_phase;
        const int index = static_cast<int>(i);
        table.add_row({std::to_string(i + 1), format_phase(phase.m_asked),
                       format_phase(phase.m_achieved), format_phase(phase.m_previous),
                       format_phase(phase.m_next), std::to_string(asked.m_duty),
                       format_fixed(pll.find_duty_cycle(index), DUTY_DECIMALS),
                       std::to_string(pll.get_prev_duty_cycle(index)),
                       std::to_string(pll.get_next_duty_cycle(index)),
                       std::to_string(asked.m_delay), std::to_string(achieved.m_delay)});
    }
    table.append_to(text);
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

void append_counters(const ANSWER& answer, std::string* text)
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
        table.add_row({std::string(is_user ? "output " : "cascade ") + std::to_string(i + 1),
                       std::to_string(tap.m_count), std::to_string(tap.m_high),
                       std::to_string(tap.m_low), mode, std::to_string(tap.m_initial),
                       std::to_string(tap.m_vco_tap), name_of_source(pll, tap.m_previous_tap),
                       std::to_string(tap.m_delay)});
    }
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
    *text += "\n";
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
    table.append_to(text);
}

std::string report_met(const REQUEST& request, const ANSWER& answer)
{
    int inexact = 0;
    RATIONAL worst;
    for (const OUTPUT_RESULT& output : answer.get_outputs()) {
        inexact += output.m_error == RATIONAL() ? 0 : 1;
        worst = worst.magnitude() < output.m_error.magnitude() ? output.m_error : worst;
    }
    if (inexact == 0) {
        return "MET: every output is exact\n";
    }
    const std::string limit =
        request.m_tolerance ? format_part(*request.m_tolerance) : std::string("a thousandth");
    return "MET within " + limit + ": " + std::to_string(inexact) + " of " +
           std::to_string(answer.get_outputs().size()) + " outputs not exact, at most " +
           format_error(worst) + "\n";
}

}  // namespace

std::string report_verdict(const REQUEST& request, const ANSWER& answer)
{
    if (answer.is_met()) {
        return report_met(request, answer);
    }
    std::string text = "NOT MET\n";
    for (const std::string& line : explain_miss(request, answer)) {
        text += line + "\n";
    }
    return text;
}

std::string report_synthesis(const REQUEST& request, const ANSWER& answer)
{
    std::string text = report_verdict(request, answer);
    text += "\n" + report_origins(request, answer);
    append_input("input  ", request.m_input, &text);
    if (request.m_input2) {
        append_input("input2 ", *request.m_input2, &text);
    }
    if (!answer.has_outputs()) {
        return text;
    }
    text += "\n";
    append_loop(request, answer, &text);
    text += "\n";
    append_frequencies(request, answer, &text);
    text += "\n";
    append_shapes(request, answer, &text);
    text += "\n";
    append_counters(answer, &text);
    text += "\n";
    append_loop_filter(request, answer, &text);
    append_spread(request, answer, &text);
    text += "\n";
    append_lock_range(answer, &text);
    return text;
}
