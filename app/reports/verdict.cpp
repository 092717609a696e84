#include "app/reports/reports.h"

#include "advice/why/miss.h"
#include "app/output/characters.h"
#include "app/output/format.h"

#include <algorithm>

namespace {

// Where a limit comes from takes a line of its own: paths are long.
std::string break_before_source(std::string text)
{
    constexpr std::size_t WIDTH = 100;
    const std::size_t at = text.rfind(" (");
    if (at != std::string::npos && text.back() == ')' &&
        (text.find(',', at) != std::string::npos || text.size() > WIDTH)) {
        text.replace(at, 1, "\n  ");
    }
    return text + "\n";
}

void append_misses(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    const advice::VERDICT& verdict = answer.get_verdict();
    for (const advice::JUDGED_LIMIT& limit : verdict.m_limits) {
        if (!limit.m_kept && !limit.m_is_note) {
            *text += break_before_source(advice::to_text(request, limit));
        }
    }
    for (const advice::JUDGED_WISH& wish : verdict.m_wishes) {
        if (!wish.m_kept && verdict.m_has_setting) {
            *text += advice::to_text(request, wish) + "\n";
        }
    }
    for (const std::string& line : advice::explain_miss(request, *request.m_limits, answer)) {
        *text += line + "\n";
    }
    if (answer.get_tries() > 0) {
        *text += std::to_string(answer.get_tries()) +
                 " further VCO ratios that keep the frequencies were tried; none keeps it all.\n";
    }
}

void append_further(const ANSWER& answer, std::string* text)
{
    if (answer.get_origin() == advice::ORIGIN::FURTHER_SEARCH) {
        const PLL_PROP& achieved = answer.get_achieved();
        *text += "NOTE: found at VCO ratio " +
                 RATIONAL(achieved.m_vco_mult, achieved.m_vco_div).to_fraction() +
                 ", asked for because the first answer misses\n";
    }
}

}  // namespace

std::string report_verdict(const REQUEST& request, const ANSWER& answer)
{
    const advice::VERDICT& verdict = answer.get_verdict();
    std::string text = answer.is_met() || !verdict.m_met
                           ? advice::headline(request, verdict) + "\n"
                           : std::string("NOT MET: the library refuses the setting\n");
    if (!answer.is_met()) {
        append_misses(request, answer, &text);
    }
    append_further(answer, &text);
    for (const advice::WARNING& warning : verdict.m_warnings) {
        text += break_before_source(advice::to_text(request, verdict, warning));
    }
    if (request.m_limits->has_options()) {
        text += "NOTE: limits by hand are in force; see pllcalc limits\n";
    }
    return text;
}

// "MET n=1 m=22 post_scale=1 vco=594MHz pix=148.5MHz,exact": one line for scripts.
std::string report_summary(const REQUEST& request, const ANSWER& answer)
{
    std::string text = answer.is_met() ? "MET" : "NOT-MET";
    if (!answer.has_setting()) {
        return text + " error=" + std::to_string(static_cast<int>(answer.get_pll().m_error)) + "\n";
    }
    const PLL& pll = answer.get_pll();
    const RATIONAL vco_ratio(answer.get_achieved().m_vco_mult, answer.get_achieved().m_vco_div);
    const auto write = [&](const RATIONAL& ratio, advice::FREQUENCY_UNIT unit) {
        const advice::AMOUNT hertz = advice::product(request.m_input.m_frequency, ratio);
        return advice::write_frequency_number(hertz, unit) + advice::name_of(unit);
    };
    text += " n=" + std::to_string(pll.get_n()) + " m=" + std::to_string(pll.get_m()) +
            " post_scale=" + std::to_string(pll.m_vco_post_scale) +
            " vco=" + write(vco_ratio, advice::FREQUENCY_UNIT::MHZ);
    for (std::size_t i = 0; i < request.m_outputs.size(); ++i) {
        const OUTPUT_WISH& wish = request.m_outputs[i];
        const OUTPUT_RESULT& result = answer.get_outputs()[i];
        std::string error = format_error(result.m_error);
        error.erase(std::remove(error.begin(), error.end(), ' '), error.end());
        text += " " + (wish.m_name.empty() ? "out" + std::to_string(i + 1) : wish.m_name) + "=" +
                write(result.m_ratio, wish.m_unit) + "," + error +
                (result.m_missed ? ",MISSED" : "");
    }
    return text + "\n";
}
