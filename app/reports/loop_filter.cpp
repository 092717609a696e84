#include "app/reports/loop_filter.h"

#include "advice/verdict/achieved.h"
#include "advice/why/table_choice.h"
#include "app/output/format.h"
#include "app/output/text_table.h"

namespace {

constexpr int KHZ_DECIMALS = 3;
constexpr int RESULT_DECIMALS = 2;
constexpr int COMPONENT_DECIMALS = 1;

std::string name_of_bandwidth(const REQUEST& request)
{
    if (request.m_bandwidth_kind == advice::BANDWIDTH_KIND::CUSTOM) {
        return format_fixed(request.m_bandwidth.to_double() / HZ_PER_KHZ, KHZ_DECIMALS);
    }
    return BANDWIDTH_WORDS[static_cast<std::size_t>(request.m_bandwidth_kind)];
}

void append_computed(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"filter R", "ohm", ALIGN::RIGHT},
                      {"C", "pF", ALIGN::RIGHT},
                      {"C high", "pF", ALIGN::RIGHT},
                      {"pump I", "uA", ALIGN::RIGHT},
                      {"bandwidth", "asked kHz", ALIGN::RIGHT},
                      {"achieved", "kHz", ALIGN::RIGHT},
                      {"zero", "kHz", ALIGN::RIGHT},
                      {"pole", "kHz", ALIGN::RIGHT},
                      {"margin", "deg", ALIGN::RIGHT}});
    const PLL& pll = answer.get_pll();
    const PLL_PROP& achieved = answer.get_achieved();
    table.add_row(
        {format_fixed(pll.m_r, COMPONENT_DECIMALS), format_fixed(pll.m_c_fixed, COMPONENT_DECIMALS),
         format_fixed(pll.m_c_high, COMPONENT_DECIMALS), format_fixed(pll.m_i, COMPONENT_DECIMALS),
         name_of_bandwidth(request), format_fixed(achieved.m_bandwidth / HZ_PER_KHZ, KHZ_DECIMALS),
         format_fixed(achieved.m_f_zero / HZ_PER_KHZ, KHZ_DECIMALS),
         format_fixed(achieved.m_f_pole / HZ_PER_KHZ, KHZ_DECIMALS),
         format_fixed(advice::find_phase_margin(achieved), RESULT_DECIMALS)});
    table.append_to(text);
}

std::string format_bandwidth(double bandwidth)
{
    return format_given(bandwidth / HZ_PER_KHZ, KHZ_DECIMALS);
}

void append_components(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    TEXT_TABLE table({{"filter R", "ohm", ALIGN::RIGHT},
                      {"C", "pF", ALIGN::RIGHT},
                      {"C high", "pF", ALIGN::RIGHT},
                      {"pump I", "uA", ALIGN::RIGHT},
                      {"bandwidth", "asked kHz", ALIGN::RIGHT}});
    const PLL& pll = answer.get_pll();
    table.add_row({format_fixed(pll.m_r, COMPONENT_DECIMALS),
                   format_fixed(pll.m_c_fixed, COMPONENT_DECIMALS),
                   format_fixed(pll.m_c_high, COMPONENT_DECIMALS),
                   format_fixed(pll.m_i, COMPONENT_DECIMALS), name_of_bandwidth(request)});
    table.append_to(text);
}

void append_row(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    const PLL& pll = answer.get_pll();
    const PLL_PROP& achieved = answer.get_achieved();
    const std::string m = "effective M " + std::to_string(advice::effective_m(pll));
    if (!pll.m_bandwidth_legal_for_mult_div || advice::find_row(pll) == nullptr) {
        *text += "The table has no row for " + m + "; these components give " +
                 format_bandwidth(achieved.m_bandwidth) + " kHz.\n";
        return;
    }
    if (achieved.m_bandwidth < 0.0) {
        *text += "The table's row for " + m + " does not say what it achieves.\n";
        return;
    }
    const std::string head = "row for " + m;
    TEXT_TABLE table({{head.c_str(), "", ALIGN::LEFT},
                      {"bandwidth", "kHz", ALIGN::RIGHT},
                      {"phase margin", "deg", ALIGN::RIGHT},
                      {"jitter peaking", "dB", ALIGN::RIGHT}});
    const PLL_BANDWIDTH_SETTING& row = *advice::find_row(pll);
    table.add_row({"typical", format_bandwidth(row.m_typical_bandwidth),
                   format_given(row.m_typical_phase_margin, RESULT_DECIMALS),
                   format_given(row.m_typical_jitter_peaking, RESULT_DECIMALS)});
    table.add_row({"fast", format_bandwidth(row.m_fast_bandwidth),
                   format_given(row.m_fast_phase_margin, RESULT_DECIMALS),
                   format_given(row.m_fast_jitter_peaking, RESULT_DECIMALS)});
    table.add_row({"slow", format_bandwidth(row.m_slow_bandwidth),
                   format_given(row.m_slow_phase_margin, RESULT_DECIMALS),
                   format_given(row.m_slow_jitter_peaking, RESULT_DECIMALS)});
    table.append_to(text);
    if (pll.m_info.m_basic_info->m_bandwidth_pfd_min_frequency_multiplier > 0) {
        *text += std::string(pll.m_bandwidth_legal_for_fin ? "Within" : "BEYOND") + " the " +
                 format_bandwidth(advice::largest_bandwidth(request, pll)) +
                 " kHz that the PFD allows at the fast corner.\n";
    }
}

}  // namespace

void append_loop_filter(const REQUEST& request, const ANSWER& answer, std::string* text)
{
    *text += "Loop filter\n";
    if (!advice::uses_table(answer.get_pll())) {
        append_computed(request, answer, text);
        return;
    }
    append_components(request, answer, text);
    *text += "\n";
    append_row(request, answer, text);
}
