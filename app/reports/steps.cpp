#include "app/output/format.h"
#include "app/output/text_table.h"
#include "app/reports/reports.h"

#include <algorithm>

namespace {

constexpr int STEPS_EACH_WAY = 5;
constexpr int DUTY_DECIMALS = 3;
constexpr double SLACK = 1e-9;  // of a step that ends on a bound

// The `steps`th neighbour of a value, or "-" outside the bounds.
std::string neighbour(double value, double step, int steps, double lowest, double highest,
                      int decimals)
{
    if (steps == 0) {
        return format_fixed(value, decimals);
    }
    const double moved = value + steps * step;
    const bool is_legal = moved >= lowest - SLACK && moved <= highest + SLACK;
    return is_legal ? format_fixed(moved, decimals) : "-";
}

void append_output(const REQUEST& request, const ANSWER& answer, int output, std::string* text)
{
    const PLL& pll = answer.get_pll();
    const OUTPUT_WISH& wish = request.m_outputs[static_cast<std::size_t>(output)];
    const double duty = pll.find_duty_cycle(output);
    const OUTPUT_PHASE& phase = answer.get_outputs()[static_cast<std::size_t>(output)].m_phase;
    const double duty_step = pll.get_duty_cycle_resolution(output);
    const std::string frequency = advice::write_frequency(
        advice::product(request.m_input.m_frequency,
                        answer.get_outputs()[static_cast<std::size_t>(output)].m_ratio),
        wish.m_unit);

    TEXT_TABLE bounds({{"", "", ALIGN::LEFT},
                       {"asked", "", ALIGN::RIGHT},
                       {"achieved", "", ALIGN::RIGHT},
                       {"previous", "", ALIGN::RIGHT},
                       {"next", "", ALIGN::RIGHT},
                       {"step", "", ALIGN::RIGHT},
                       {"lowest", "", ALIGN::RIGHT},
                       {"highest", "", ALIGN::RIGHT}});
    bounds.add_row({"phase deg", format_phase(phase.m_asked), format_phase(phase.m_achieved),
                    format_phase(phase.m_previous), format_phase(phase.m_next),
                    format_phase(phase.m_step), format_phase(-MAX_PHASE), format_phase(MAX_PHASE)});
    bounds.add_row({"duty %", format_short(wish.m_duty.to_double(), DUTY_DECIMALS),
                    format_fixed(duty, DUTY_DECIMALS),
                    neighbour(duty, duty_step, -1, pll.get_duty_cycle_min(output),
                              pll.get_duty_cycle_max(output), DUTY_DECIMALS),
                    neighbour(duty, duty_step, 1, pll.get_duty_cycle_min(output),
                              pll.get_duty_cycle_max(output), DUTY_DECIMALS),
                    format_fixed(duty_step, DUTY_DECIMALS),
                    format_fixed(pll.get_duty_cycle_min(output), DUTY_DECIMALS),
                    format_fixed(pll.get_duty_cycle_max(output), DUTY_DECIMALS)});

    TEXT_TABLE steps({{"step", "", ALIGN::RIGHT},
                      {"phase", "deg", ALIGN::RIGHT},
                      {"duty", "%", ALIGN::RIGHT},
                      {"", "", ALIGN::LEFT}});
    for (int i = -STEPS_EACH_WAY; i <= STEPS_EACH_WAY; ++i) {
        steps.add_row(
            {std::string(i > 0 ? "+" : "") + std::to_string(i),
             neighbour(phase.m_achieved, phase.m_step, i, -MAX_PHASE, MAX_PHASE, PHASE_DECIMALS),
             neighbour(pll.find_duty_cycle(output), duty_step, i, pll.get_duty_cycle_min(output),
                       pll.get_duty_cycle_max(output), DUTY_DECIMALS),
             i == 0 ? "<- the answer" : ""});
    }
    *text += "\n" + advice::name_of_output(request, static_cast<std::size_t>(output)) + ": " +
             frequency + "\n\n";
    bounds.append_to(text);
    *text += "\n";
    steps.append_to(text);
}

}  // namespace

std::string report_steps(const REQUEST& request, const ANSWER& answer)
{
    std::string text = report_verdict(request, answer);
    if (request.m_device != nullptr) {
        text += "\n" + report_origins(request, answer);
    }
    for (int i = 0; answer.has_setting() && i < request.m_prop.m_taps_count; ++i) {
        append_output(request, answer, i, &text);
    }
    return text;
}
