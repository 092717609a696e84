#include "app/devices/device.h"
#include "app/output/format.h"
#include "app/output/record_list.h"
#include "app/output/text_table.h"
#include "app/reports/reports.h"

#include "pll.h"

#include <locale>
#include <sstream>

namespace {

constexpr int RATIO_DECIMALS = 9;

}  // namespace

std::string report_dump(const REQUEST& request, const ANSWER& answer, DUMP_FORM form)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    const bool compact = form == DUMP_FORM::COMPACT;
    if (!compact) {
        request.m_prop.dump(stream, true, false);
    }
    answer.get_pll().dump(stream, false, compact);
    stream << (compact ? "\n" : "");
    answer.get_achieved().dump(stream, false, compact);
    stream << (compact ? "\n" : "");
    return stream.str();
}

std::string report_ratios(const INPUT_CLOCK& input, const advice::LIMITS& limits, LIST_FORM form,
                          int* count)
{
    PLL pll(1, PLL_MAX_TAPS);
    limits.give_to(&pll, advice::REQUEST());
    int* mults = nullptr;
    int* divs = nullptr;
    *count = pll.find_vco_mult_div_values(&mults, &divs, input.m_library_period);
    RECORD_LIST records({"vco_mult", "vco_div", "vco_mhz"});
    TEXT_TABLE table(
        {{"VCO / input", "", ALIGN::RIGHT}, {"", "", ALIGN::RIGHT}, {"VCO", "MHz", ALIGN::RIGHT}});
    for (int i = 0; i < *count; ++i) {
        const RATIONAL ratio(mults[i], divs[i]);
        records.add({RECORD_VALUE::number(mults[i]), RECORD_VALUE::number(divs[i]),
                     RECORD_VALUE::number(format_mhz_number(input.m_frequency, ratio))});
        table.add_row({ratio.to_fraction(), ratio.to_decimal(RATIO_DECIMALS),
                       format_mhz(input.m_frequency, ratio)});
    }
    if (form != LIST_FORM::TABLE) {
        return records.write(form);
    }
    std::string text;
    if (*count > 0) {
        table.append_to(&text);
        text += "\n" + std::to_string(*count) + " ratios\n";
    }
    return text;
}

std::string report_errors()
{
    TEXT_TABLE table({{"value", "", ALIGN::RIGHT}, {"text", "", ALIGN::LEFT}});
    for (int i = 0; i < PLL::MAX_PLL_ERROR_TYPE; ++i) {
        table.add_row(
            {std::to_string(i), PLL::get_error_string(static_cast<PLL::PLL_ERROR_TYPE>(i))});
    }
    std::string text;
    table.append_to(&text);
    return text;
}
