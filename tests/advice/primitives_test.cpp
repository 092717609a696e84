// Reading primitives out of Verilog: expressions, macros, several instances, comments, limits.
#include "advice/primitive/judge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace advice {
namespace {

using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const SHEET_CATALOG& catalog()
{
    static const SHEET_CATALOG CATALOG(PLL_DATA_DIR "/devices");
    return CATALOG;
}

VERILOG_VERDICT verify(const std::string& text, const char* input = "25",
                       const char* device = nullptr)
{
    VERIFY_OPTIONS options;
    options.m_input = input == nullptr ? std::nullopt : RATIONAL::parse(input);
    std::string problem;
    if (device != nullptr) {
        options.m_device = catalog().choose(device, &problem);
    }
    EXPECT_EQ("", problem);
    return verify_verilog(text, catalog(), options);
}

VERILOG_VALUE value_of(const std::string& expression)
{
    const VERILOG_SOURCE source = read_verilog(expression);
    std::size_t at = 0;
    return evaluate(source.m_tokens, &at, [](const std::string& name) {
        return name == "SEVEN" ? VERILOG_VALUE::integer(RATIONAL(7))
                               : VERILOG_VALUE::unknown("no " + name);
    });
}

TEST(VerilogValues, AreThoseOfTheLanguage)
{
    struct CASE
    {
        const char* m_expression;
        RATIONAL m_value;
    };
    // clang-format off
    const CASE CASES[] = {
        {"7'b0111111", RATIONAL(63)},
        {"8 'hFf", RATIONAL(255)},
        {"'d1_000", RATIONAL(1000)},
        {"4'sb0101", RATIONAL(5)},
        {"1 + 2 * 3", RATIONAL(7)},
        {"(1 + 2) * 3", RATIONAL(9)},
        {"7 / 2", RATIONAL(3)},
        {"-7 / 2", RATIONAL(-3)},
        {"7.0 / 2", RATIONAL(7, 2)},
        {"7 % 4", RATIONAL(3)},
        {"2 ** 10", RATIONAL(1024)},
        {"1 << 4 | 1", RATIONAL(17)},
        {"10 - 4 - 3", RATIONAL(3)},
        {"1.5e3", RATIONAL(1500)},
        {"83.333", RATIONAL(83333, 1000)},
        {"SEVEN > 6 ? 10 : 20", RATIONAL(10)},
        {"SEVEN == 6 ? 10 : SEVEN != 7 ? 20 : 30", RATIONAL(30)},
        {"\"A\" == \"A\"", RATIONAL(1)},
        {"!SEVEN || SEVEN && 1", RATIONAL(1)},
        {"$clog2(9)", RATIONAL(4)},
        {"$rtoi(2.9)", RATIONAL(2)},
    };
    // clang-format on
    for (const CASE& each : CASES) {
        const VERILOG_VALUE value = value_of(each.m_expression);
        EXPECT_TRUE(value.is_number()) << each.m_expression << ": " << value.m_text;
        EXPECT_EQ(each.m_value, value.m_number) << each.m_expression;
    }
}

TEST(VerilogValues, ThatAreNoneSayWhy)
{
    for (const char* each : {"", "NINE + 1", "4'bxx01", "4'q3", "(1", "1 +", "1 / 0", "1 ? 2",
                             "2 ** 9999", "1 << 70", "\"A\" + 1", "$time(3)", "1.5 | 1", "5'"}) {
        EXPECT_FALSE(value_of(each).is_known()) << each;
        EXPECT_NE("", value_of(each).m_text) << each;
    }
    EXPECT_FALSE(value_of(std::string(5000, '(') + "1").is_known());
    EXPECT_FALSE(value_of(std::string(5000, '-') + "1").is_known());
}

TEST(VerilogSources, HaveMacrosAndBranches)
{
    const VERILOG_SOURCE source = read_verilog("`define DIV 4 // four\n"
                                               "`ifdef DIV\na `DIV\n`else\nb\n`endif\n"
                                               "`ifndef DIV\nc\n`elsif DIV\nd\n`endif\n"
                                               "`timescale 1 ns / 1 ps\n/* x\ny */ e\n");
    std::string text;
    for (const TOKEN& token : source.m_tokens) {
        text += token.m_text + " ";
    }
    EXPECT_EQ("a 4 d e ", text);
    EXPECT_EQ(14, source.m_tokens.back().m_line);
}

TEST(VerilogSources, ThatExpandWithoutEndAreGivenUp)
{
    EXPECT_THAT(read_verilog("`define A `A `A\n`A\n").m_problem, HasSubstr("nested"));
    std::string text = "`define M0 x x x x x x x x x x\n";
    for (int i = 1; i < 9; ++i) {
        const std::string inner = "`M" + std::to_string(i - 1) + " ";
        text += "`define M" + std::to_string(i);
        for (int k = 0; k < 10; ++k) {
            text += " " + inner;
        }
        text += "\n";
    }
    EXPECT_THAT(read_verilog(text + "`M8\n").m_problem, HasSubstr("too large"));
}

constexpr const char* ECP5_PLL = R"(
module pll(input clkin, output clkout0, output locked);
localparam N = 1, M = 5;
parameter integer K = 4;
wire unused;
(* FREQUENCY_PIN_CLKI="25" *)
(* FREQUENCY_PIN_CLKOP="125" *)
EHXPLLL #(
    .CLKI_DIV(N), .CLKFB_DIV(M), .CLKOP_DIV(K * 1), .CLKOP_ENABLE("ENABLED"),
    .CLKOP_CPHASE(K - 1), .CLKOP_FPHASE(0),
    .CLKOS_DIV(8), .CLKOS_CPHASE(9), .CLKOS_FPHASE(4),
    .CLKOS2_DIV(3), .CLKOS2_ENABLE("DISABLED"), .FEEDBK_PATH("CLKOP")
) pll_i (.CLKI(clkin), .CLKFB(clkout0), .CLKOP(clkout0), .CLKOS(unused), .CLKOS3(), .LOCK(locked));
endmodule
)";

TEST(Primitives, ComeFromConstantsAttributesAndPorts)
{
    const VERILOG_VERDICT verdict = verify(ECP5_PLL, nullptr);
    ASSERT_THAT(verdict.m_instances, SizeIs(1));
    const PRIMITIVE_SETTING& setting = verdict.m_instances[0].m_setting;
    EXPECT_EQ("pll_i", setting.m_name);
    EXPECT_EQ(8, setting.m_line);
    EXPECT_EQ("", setting.m_problem);
    EXPECT_EQ(RATIONAL(25), *setting.m_input);
    EXPECT_EQ(RATIONAL(500), setting.m_vco);
    ASSERT_THAT(setting.m_outputs, SizeIs(2));
    EXPECT_EQ(RATIONAL(125), setting.m_outputs[0].m_frequency);
    EXPECT_EQ(RATIONAL(0), *setting.m_outputs[0].m_phase);
    // 9 - 7 and a half VCO periods of 8
    EXPECT_EQ(RATIONAL(225, 2), *setting.m_outputs[1].m_phase);
    EXPECT_EQ(LEGALITY::LEGAL, verdict.m_instances[0].m_legality);
}

TEST(Primitives, AreFoundSeveralInAFileAndWithDefparams)
{
    const VERILOG_VERDICT verdict = verify(R"(
module a; SB_PLL40_CORE #(.DIVR(4'd0), .DIVF(7'd47), .DIVQ(3'd5)) one (), two (); endmodule
module b;
  defparam three.DIVF = 7'b0111111, three.DIVQ = 4;
  SB_PLL40_PAD three (.PACKAGEPIN(p), .PLLOUTCORE(q));
  rPLL empty (.CLKIN(c));
  SB_PLL40_CORE nothing ();
endmodule
module SB_PLL40_CORE (input x); parameter DIVR = 0; endmodule
)",
                                           "16");
    ASSERT_THAT(verdict.m_instances, SizeIs(3));
    EXPECT_EQ("one", verdict.m_instances[0].m_setting.m_name);
    EXPECT_EQ("two", verdict.m_instances[1].m_setting.m_name);
    EXPECT_EQ("three", verdict.m_instances[2].m_setting.m_name);
    EXPECT_EQ(RATIONAL(64), verdict.m_instances[2].m_setting.m_outputs[0].m_frequency);
}

TEST(Primitives, ThatAreNotThereAreMissed)
{
    EXPECT_THAT(verify("module a; endmodule").m_problem, HasSubstr("no PLL primitive"));
    EXPECT_THAT(verify("module a; rPLL p (.CLKIN(c)); endmodule").m_problem,
                HasSubstr("no PLL primitive"));
    EXPECT_THAT(verify("").m_problem, HasSubstr("EHXPLLL"));
}

TEST(Primitives, WhoseParametersCannotBeReadSayWhich)
{
    const VERILOG_VERDICT verdict =
        verify("module a; rPLL #(.FBDIV_SEL(FB), .ODIV_SEL(8)) p (); endmodule");
    ASSERT_THAT(verdict.m_instances, SizeIs(1));
    EXPECT_EQ("FBDIV_SEL cannot be evaluated: 'FB' is no constant of this module",
              verdict.m_instances[0].m_setting.m_problem);
}

LEGALITY legality_of(const std::string& parameters, const char* input, const char* device)
{
    const VERILOG_VERDICT verdict =
        verify("module a; PLLE2_ADV #(" + parameters + ") p (); endmodule", input, device);
    return verdict.m_instances.at(0).m_legality;
}

TEST(Primitives, AreJudgedExactlyAtTheBorder)
{
    // 1866 MHz to the Hz: in whole ps it would be 1869.2.
    const std::string m12 = ".CLKFBOUT_MULT(12), .CLKOUT0_DIVIDE(4)";
    EXPECT_EQ(LEGALITY::LEGAL, legality_of(m12, "155.5", "xc7-plle2:-2"));
    EXPECT_EQ(LEGALITY::ILLEGAL, legality_of(m12, "155.500001", "xc7-plle2:-2"));
    EXPECT_EQ(LEGALITY::LEGAL, legality_of(m12, "155.500001", "xc7-plle2:-3"));
    // The grade is open: -1 refuses, -2 allows.
    EXPECT_EQ(LEGALITY::DEPENDS, legality_of(m12, "155.5", nullptr));
    EXPECT_EQ(LEGALITY::LEGAL, legality_of(m12, "100", nullptr));
    EXPECT_EQ(LEGALITY::ILLEGAL, legality_of(m12, "200", nullptr));
    // No half counts without eighths.
    EXPECT_EQ(LEGALITY::ILLEGAL,
              legality_of(".CLKFBOUT_MULT(12.5), .CLKOUT0_DIVIDE(4)", "100", "xc7-plle2"));
}

TEST(Primitives, CountInEighthsOnMmcms)
{
    const auto legality = [](const std::string& parameters) {
        return verify("module a; MMCME2_ADV #(" + parameters + ") p (); endmodule", "100",
                      "xc7-mmcme2:-1")
            .m_instances.at(0)
            .m_legality;
    };
    EXPECT_EQ(LEGALITY::LEGAL, legality(".CLKFBOUT_MULT_F(10.125), .CLKOUT0_DIVIDE_F(2.125)"));
    EXPECT_EQ(LEGALITY::ILLEGAL, legality(".CLKFBOUT_MULT_F(10.1), .CLKOUT0_DIVIDE_F(4)"));
    EXPECT_EQ(LEGALITY::ILLEGAL, legality(".CLKFBOUT_MULT_F(10), .CLKOUT0_DIVIDE_F(1.875)"));
    EXPECT_EQ(LEGALITY::LEGAL, legality(".CLKFBOUT_MULT_F(10), .CLKOUT0_DIVIDE_F(1)"));
    EXPECT_EQ(LEGALITY::ILLEGAL, legality(".CLKFBOUT_MULT_F(10), .CLKOUT1_DIVIDE(2.5)"));
}

TEST(Primitives, OfAnOlderDeviceAreJudgedForTheNamedOne)
{
    const std::string text =
        "module a; MMCME2_ADV #(.CLKFBOUT_MULT_F(15), .CLKOUT0_DIVIDE_F(4)) p (); endmodule";
    EXPECT_EQ(LEGALITY::ILLEGAL, verify(text, "100", "xc7-mmcme2:-1").m_instances.at(0).m_legality);
    EXPECT_EQ(LEGALITY::LEGAL, verify(text, "100", "xcup-mmcme4:-1").m_instances.at(0).m_legality);
    const VERILOG_VERDICT other = verify(text, "100", "ecp5");
    EXPECT_THAT(other.m_instances.at(0).m_setting.m_notes,
                Contains(Field(&PRIMITIVE_NOTE::m_text, HasSubstr("ecp5 has no MMCME2_ADV"))));
}

TEST(Primitives, AreComparedWithTheCommentsBeside)
{
    const VERILOG_VERDICT verdict = verify(R"(
module pll(input clkin,    // 25 MHz
           output fast,    // 130 MHz
           output slow);   // 62.5MHz
// VCO 500 MHz, for a pixel clock of 65 MHz
EHXPLLL #(.CLKFB_DIV(5), .CLKOP_DIV(4), /* 0.10 GHz */
          .CLKOS_DIV(8)) p (.CLKI(clkin), .CLKOP(fast), .CLKOS(slow));
// 77 MHz
endmodule
)");
    const std::vector<PRIMITIVE_NOTE>& notes = verdict.m_instances.at(0).m_setting.m_notes;
    ASSERT_THAT(notes, SizeIs(3));
    EXPECT_EQ(3, notes[0].m_line);
    EXPECT_EQ("the comment says 130 MHz, CLKOP is 125.000000 MHz", notes[0].m_text);
    EXPECT_EQ("the comment says 65 MHz, which is no clock of this PLL", notes[1].m_text);
    EXPECT_EQ("the comment says 0.10 GHz, CLKOP is 125.000000 MHz", notes[2].m_text);
}

TEST(Primitives, TakeRoundedPeriodsForTheFrequencyThatIsMeant)
{
    EXPECT_EQ(RATIONAL(12), frequency_of_period(RATIONAL(83333, 1000)));
    EXPECT_EQ(RATIONAL(297, 2), frequency_of_period(RATIONAL(6734, 1000)));
    EXPECT_EQ(RATIONAL(125), frequency_of_period(RATIONAL(8)));
    EXPECT_EQ(RATIONAL(10000, 33), frequency_of_period(RATIONAL(33, 10)));
    EXPECT_EQ(RATIONAL(200000, 2469), frequency_of_period(RATIONAL(12345, 1000)));
}

TEST(Primitives, OfIce40FollowTheFeedbackPathAndTheShiftRegister)
{
    const auto setting = [](const std::string& parameters) {
        return verify("module a; SB_PLL40_2F_CORE #(.DIVR(0), .DIVF(3), .DIVQ(3)," + parameters +
                          ") p (); endmodule",
                      "25")
            .m_instances.at(0)
            .m_setting;
    };
    EXPECT_EQ(RATIONAL(100), setting(".FEEDBACK_PATH(\"SIMPLE\")").m_vco);
    EXPECT_EQ(RATIONAL(800), setting(".FEEDBACK_PATH(\"DELAY\")").m_vco);
    const PRIMITIVE_SETTING shifted =
        setting(".FEEDBACK_PATH(\"PHASE_AND_DELAY\"), .SHIFTREG_DIV_MODE(2'b00),"
                ".PLLOUT_SELECT_PORTA(\"SHIFTREG_0deg\"),"
                ".PLLOUT_SELECT_PORTB(\"SHIFTREG_90deg\")");
    EXPECT_EQ(RATIONAL(3200), shifted.m_vco);
    ASSERT_THAT(shifted.m_outputs, SizeIs(2));
    EXPECT_EQ("PLLOUT_B (SHIFTREG_90deg)", shifted.m_outputs[1].m_name);
    EXPECT_EQ(RATIONAL(100), shifted.m_outputs[1].m_frequency);
    EXPECT_EQ(RATIONAL(90), *shifted.m_outputs[1].m_phase);
    EXPECT_NE("", setting(".FEEDBACK_PATH(\"EXTERNAL\")").m_problem);
    EXPECT_NE("", setting(".FEEDBACK_PATH(\"NONE\")").m_problem);
}

TEST(Primitives, OfIce40NoteAFilterRangeOfAnotherPfd)
{
    const auto notes = [](const char* input, const char* range) {
        return verify(std::string("module a; SB_PLL40_CORE #(.DIVF(7'd47), .DIVQ(5), "
                                  ".FILTER_RANGE(") +
                          range + ")) p (); endmodule",
                      input)
            .m_instances.at(0)
            .m_setting.m_notes;
    };
    EXPECT_THAT(notes("16", "3'b001"), IsEmpty());
    EXPECT_THAT(notes("17", "3'b001"), IsEmpty());  // the border belongs to either
    EXPECT_THAT(notes("17", "3'b010"), IsEmpty());
    ASSERT_THAT(notes("18", "3'b001"), SizeIs(1));
    EXPECT_EQ("FILTER_RANGE is for another PFD frequency; 2 is for this one",
              notes("18", "3'b001")[0].m_text);
}

TEST(Primitives, OfGowinChooseTheirSheetByDevice)
{
    const auto verdict = [](const char* device) {
        return verify(std::string("module a; rPLL #(.FCLKIN(\"24\"), .DEVICE(\"") + device +
                          "\"), .IDIV_SEL(7), .FBDIV_SEL(2), .ODIV_SEL(48), .PSDA_SEL(\"1010\"), "
                          ".DUTYDA_SEL(\"0100\"), .DYN_SDIV_SEL(6)) "
                          "p (.CLKOUT(o), .CLKOUTP(q), .CLKOUTD(r), .CLKOUTD3(s)); endmodule",
                      nullptr)
            .m_instances.at(0);
    };
    const JUDGED_INSTANCE nine = verdict("GW1NR-9");
    EXPECT_EQ(LEGALITY::LEGAL, nine.m_legality);  // a PFD of exactly 3
    ASSERT_THAT(nine.m_setting.m_outputs, SizeIs(4));
    EXPECT_EQ(RATIONAL(225), *nine.m_setting.m_outputs[1].m_phase);
    EXPECT_EQ(RATIONAL(25), *nine.m_setting.m_outputs[1].m_duty);
    EXPECT_EQ(RATIONAL(3, 2), nine.m_setting.m_outputs[2].m_frequency);
    EXPECT_EQ(RATIONAL(3), nine.m_setting.m_outputs[3].m_frequency);
    EXPECT_EQ(LEGALITY::ILLEGAL, verdict("GW2A-18").m_legality);
    EXPECT_EQ(LEGALITY::DEPENDS, verdict("GW1NSR-4C").m_legality);  // VCO 432, from 400 or 600
    EXPECT_EQ(LEGALITY::DEPENDS, verdict("GW9X-1").m_legality);
}

TEST(Primitives, CutAtAnyLengthAreReadSafely)
{
    const std::string whole = ECP5_PLL;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        static_cast<void>(verify(whole.substr(0, length)));
    }
    EXPECT_THAT(verify(whole).m_instances, SizeIs(1));
}

}  // namespace
}  // namespace advice
