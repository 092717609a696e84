#include "report.h"

#include "format.h"
#include "text_table.h"

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

std::string report_ratios(const INPUT_CLOCK& input, RATIO_FORM form, int* count)
{
    PLL pll(1, PLL_MAX_TAPS);
    int* mults = nullptr;
    int* divs = nullptr;
    *count = pll.find_vco_mult_div_values(&mults, &divs, input.m_library_period);
    std::string text;
    if (form == RATIO_FORM::CSV) {
        text = "vco_mult,vco_div,vco_mhz\n";
    }
    TEXT_TABLE table(
        {{"VCO / input", "", ALIGN::RIGHT}, {"", "", ALIGN::RIGHT}, {"VCO", "MHz", ALIGN::RIGHT}});
    for (int i = 0; i < *count; ++i) {
        const RATIONAL ratio(mults[i], divs[i]);
        const RATIONAL vco = input.m_frequency * ratio;
        if (form == RATIO_FORM::CSV) {
            constexpr int MHZ_EXPONENT = 6;
            text += std::to_string(mults[i]) + "," + std::to_string(divs[i]) + "," +
                    RATIONAL(vco.rounded().numerator(), power_of_ten(MHZ_EXPONENT))
                        .to_decimal(MHZ_EXPONENT) +
                    "\n";
        } else {
            table.add_row({ratio.to_fraction(), ratio.to_decimal(RATIO_DECIMALS), format_mhz(vco)});
        }
    }
    if (form == RATIO_FORM::TABLE && *count > 0) {
        table.append_to(&text);
        text += "\n";
        text += std::to_string(*count);
        text += " ratios\n";
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
