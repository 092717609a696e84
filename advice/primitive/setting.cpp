// From parameters to frequencies. With the input at f, the PFD runs at f / N and the VCO at
//
//   f / N x M x K      K: the division of the output that is fed back, 1 for M alone
//
// and each output divides the VCO by its count.

#include "advice/primitive/setting.h"

#include "advice/primitive/parameters.h"

#include <algorithm>

namespace advice {

namespace {

const RATIONAL TURN(360);
const RATIONAL HALF(50);  // percent
const RATIONAL SIXTEENTH(1, 16);
const RATIONAL EIGHTH(1, 8);
const RATIONAL PERCENT(100);
constexpr int KILO = 1000;
constexpr int MAX_DECIMALS = 6;

// Which clock an output of several takes, and what that divides by.
constexpr const char* HALF_CLOCK = "GENCLK_HALF";
constexpr const char* SHIFTED_CLOCKS = "SHIFTREG";
constexpr const char* SHIFTED_BY_90 = "SHIFTREG_90deg";
constexpr const char* FULL_CLOCK = "GENCLK";
constexpr const char* INTERNAL_PATH = "INT_";
constexpr const char* OFF_WORD = "DISABLED";
const RATIONAL QUARTER_TURN(90);

// A value with few digits is written as given: only periods of three decimals and more are rounded.
bool has_many_decimals(const RATIONAL& value)
{
    return !(value * PERCENT).is_integer();
}

class COMPUTATION
{
public:
    COMPUTATION(const INSTANCE& instance, const SHEET& sheet, PRIMITIVE_SETTING* setting)
        : m_instance(instance),
          m_sheet(sheet),
          m_setting(*setting),
          m_parameters(instance, sheet, &setting->m_problem)
    {
    }

    void run(const std::optional<RATIONAL>& input)
    {
        find_input(input);
        m_setting.m_n = m_parameters.count_of(PARAMETER_ROLE::N, "").value_or(RATIONAL(1));
        m_setting.m_m = m_parameters.count_of(PARAMETER_ROLE::M, "").value_or(RATIONAL(1));
        find_path();
        for (const SHEET_OUTPUT& output : m_sheet.m_outputs) {
            if (covers(output.m_primitives, m_instance.m_primitive) && is_in_use(output)) {
                add_output(output);
            }
        }
        close_loop();
        compute_frequencies();
        compare_filter_range();
    }

private:
    void fail(const std::string& text) { m_parameters.fail(text); }

    void note(int line, const std::string& text) { m_setting.m_notes.push_back({line, text}); }

    // ---- The input

    void find_input(const std::optional<RATIONAL>& option)
    {
        std::optional<RATIONAL> written = input_in_source();
        if (option) {
            if (written && !is_near(*option, *written)) {
                note(m_instance.m_line,
                     "the source gives an input of " + written->to_decimal(MAX_DECIMALS) + " MHz");
            }
            written = option;
        }
        if (written && written->is_positive()) {
            m_setting.m_input = written;
        }
    }

    // Periods are rarely written with all their digits.
    static bool is_near(const RATIONAL& a, const RATIONAL& b)
    {
        return (a - b).magnitude() * RATIONAL(KILO) < b;
    }

    std::optional<RATIONAL> input_in_source()
    {
        if (m_parameters.is_written(PARAMETER_ROLE::INPUT_MHZ, "")) {
            return m_parameters.number_of(PARAMETER_ROLE::INPUT_MHZ, "");
        }
        if (m_parameters.is_written(PARAMETER_ROLE::PERIOD_NS, "")) {
            const std::optional<RATIONAL> period =
                m_parameters.number_of(PARAMETER_ROLE::PERIOD_NS, "");
            const bool is_period = period && (RATIONAL(KILO) / *period).is_positive();
            return is_period ? std::optional(rounded_period(*period)) : std::nullopt;
        }
        const auto attribute = m_instance.m_attributes.find(m_sheet.m_input_attribute);
        return attribute == m_instance.m_attributes.end() ? std::nullopt
                                                          : RATIONAL::parse(attribute->second);
    }

    RATIONAL rounded_period(const RATIONAL& period)
    {
        const RATIONAL frequency = frequency_of_period(period);
        if (frequency.is_valid() && !(frequency * period == RATIONAL(KILO))) {
            note(m_parameters.line_of(PARAMETER_ROLE::PERIOD_NS, ""),
                 "the period of " + period.to_decimal(MAX_DECIMALS) + " ns is taken for " +
                     frequency.to_decimal(MAX_DECIMALS) + " MHz");
        }
        return frequency;
    }

    // ---- The loop

    void find_path()
    {
        if (!m_sheet.m_feedback.empty()) {
            m_setting.m_fed_back = m_sheet.m_feedback;
            return;
        }
        const std::optional<std::string> path = m_parameters.text_of(PARAMETER_ROLE::PATH, "");
        if (!path) {
            return;
        }
        m_setting.m_path = *path;
        const auto found = m_sheet.m_paths.find(*path);
        if (found == m_sheet.m_paths.end()) {
            fail("the feedback \"" + *path + "\" is not known");
        } else if (found->second == PATH_UNKNOWN) {
            fail("the feedback \"" + *path + "\" leaves the device, so its division is not known");
        } else if (found->second == PATH_SHIFT_REGISTER) {
            m_setting.m_fed_back = m_sheet.m_outputs.front().m_name;
            m_setting.m_loop = shift_division();
        } else {
            m_setting.m_fed_back = found->second;
        }
    }

    RATIONAL shift_division()
    {
        const std::optional<RATIONAL> mode = m_parameters.number_of(PARAMETER_ROLE::SHIFT_MODE, "");
        const auto found = mode && mode->is_integer()
                               ? m_sheet.m_shift_register.find(static_cast<int>(mode->numerator()))
                               : m_sheet.m_shift_register.end();
        if (found == m_sheet.m_shift_register.end()) {
            fail("the mode of the shift register is not known");
            return RATIONAL(1);
        }
        return RATIONAL(found->second);
    }

    void close_loop()
    {
        m_setting.m_loop = m_setting.m_loop * m_setting.m_m;
        if (!m_setting.m_fed_back.empty()) {
            m_setting.m_loop = m_setting.m_loop *
                               m_parameters.count_of(PARAMETER_ROLE::COUNT, m_setting.m_fed_back)
                                   .value_or(RATIONAL(1));
        }
    }

    void compute_frequencies()
    {
        if (!m_setting.m_input) {
            return;
        }
        m_setting.m_pfd = *m_setting.m_input / m_setting.m_n;
        m_setting.m_vco = m_setting.m_pfd * m_setting.m_loop;
        for (PRIMITIVE_OUTPUT& output : m_setting.m_outputs) {
            output.m_frequency = m_setting.m_vco / output.m_division;
        }
        if (!m_setting.m_vco.is_positive()) {
            fail("the counters give no VCO frequency");
        }
    }

    // ---- Outputs

    // What an output leads to; of several ports one that leads anywhere. Null: no port is written.
    const CONNECTION* connection_of(const std::string& output) const
    {
        const CONNECTION* connection = nullptr;
        for (const PORT& port : m_sheet.m_ports) {
            const auto found = m_instance.m_ports.find(port.m_name);
            if (port.m_role == PORT_ROLE::OUTPUT && port.m_output == output &&
                found != m_instance.m_ports.end() &&
                (connection == nullptr || connection->m_text.empty())) {
                connection = &found->second;
            }
        }
        return connection;
    }

    // An output counts when its parameters are written or its port is connected; a port that is
    // left open or a switch that is off say that it does not.
    bool is_in_use(const SHEET_OUTPUT& output)
    {
        const std::string& name = output.m_name;
        if (name == m_setting.m_fed_back || is_the_only_one(output)) {
            return true;
        }
        if (m_parameters.text_of(PARAMETER_ROLE::ENABLE, name) == OFF_WORD) {
            return false;
        }
        const CONNECTION* connection = connection_of(name);
        if (connection != nullptr) {
            return !connection->m_text.empty();
        }
        return m_parameters.is_written(PARAMETER_ROLE::COUNT, name) ||
               m_parameters.is_written(PARAMETER_ROLE::SELECT, name) ||
               m_parameters.is_written(PARAMETER_ROLE::SIXTEENTHS_PHASE, name);
    }

    bool is_the_only_one(const SHEET_OUTPUT& output) const
    {
        return output.m_of.empty() &&
               std::count_if(m_sheet.m_outputs.begin(), m_sheet.m_outputs.end(),
                             [](const SHEET_OUTPUT& each) { return each.m_of.empty(); }) == 1;
    }

    void add_output(const SHEET_OUTPUT& sheet_output)
    {
        PRIMITIVE_OUTPUT output;
        output.m_name = sheet_output.m_name;
        output.m_sheet_name = sheet_output.m_name;
        const std::optional<RATIONAL> own =
            m_parameters.count_of(PARAMETER_ROLE::COUNT, output.m_sheet_name);
        output.m_has_counter = own.has_value();
        output.m_count = own.value_or(RATIONAL(sheet_output.m_divides));
        output.m_division = output.m_count;
        output.m_is_feedback_only = is_feedback_only(output.m_sheet_name);
        if (!sheet_output.m_of.empty()) {
            output.m_division =
                output.m_division * m_parameters.count_of(PARAMETER_ROLE::COUNT, sheet_output.m_of)
                                        .value_or(RATIONAL(1));
        }
        if (output.m_division.is_positive()) {
            find_phase(&output);
            find_duty(&output);
            take_selection(&output);
            m_setting.m_outputs.push_back(output);
        } else {
            m_setting.m_impossible.push_back(output);
        }
    }

    bool is_feedback_only(const std::string& name) const
    {
        if (name != m_setting.m_fed_back || m_setting.m_path.rfind(INTERNAL_PATH, 0) != 0) {
            return false;
        }
        const CONNECTION* connection = connection_of(name);
        return connection == nullptr || connection->m_text.empty() || !connection->m_is_used;
    }

    // The clock that a port takes where it has a choice.
    void take_selection(PRIMITIVE_OUTPUT* output)
    {
        const std::optional<std::string> choice =
            m_parameters.text_of(PARAMETER_ROLE::SELECT, output->m_sheet_name);
        if (!choice || m_sheet.find_output(*choice) != nullptr) {
            return;
        }
        const bool is_second = !m_sheet.find_output(output->m_sheet_name)->m_of.empty();
        if (is_second || *choice != FULL_CLOCK) {
            output->m_name += " (" + *choice + ")";
        }
        if (*choice == HALF_CLOCK) {
            output->m_division = output->m_division * RATIONAL(2);
        } else if (choice->rfind(SHIFTED_CLOCKS, 0) == 0) {
            output->m_division = output->m_division * shift_division();
            output->m_phase = *choice == SHIFTED_BY_90 ? QUARTER_TURN : RATIONAL(0);
        } else if (*choice != FULL_CLOCK) {
            fail("the clock \"" + *choice + "\" is not known");
        }
    }

    // The delay of an output in VCO periods; none where its phase is not given so.
    std::optional<RATIONAL> delay_of(const std::string& name)
    {
        const std::optional<RATIONAL> coarse =
            m_parameters.number_of(PARAMETER_ROLE::COARSE_PHASE, name);
        const std::optional<RATIONAL> count = m_parameters.count_of(PARAMETER_ROLE::COUNT, name);
        if (!coarse || !count) {
            return std::nullopt;
        }
        const RATIONAL fine =
            m_parameters.number_of(PARAMETER_ROLE::FINE_PHASE, name).value_or(RATIONAL(0)) * EIGHTH;
        return *coarse + fine - (*count - RATIONAL(1));
    }

    // Phases count from the edge that the loop holds on the input's.
    void find_phase(PRIMITIVE_OUTPUT* output)
    {
        const std::string& name = output->m_sheet_name;
        if (const std::optional<RATIONAL> degrees =
                m_parameters.number_of(PARAMETER_ROLE::DEGREES, name)) {
            output->m_phase = degrees;
        } else if (const auto steps =
                       m_parameters.number_of(PARAMETER_ROLE::SIXTEENTHS_PHASE, name)) {
            output->m_phase = *steps * SIXTEENTH * TURN;
        } else if (const std::optional<RATIONAL> delay = delay_of(name)) {
            const RATIONAL held = delay_of(m_setting.m_fed_back).value_or(RATIONAL(0));
            const RATIONAL turns = (*delay - held) / output->m_count;
            output->m_phase = (turns - turns.floor()) * TURN;
        }
    }

    void find_duty(PRIMITIVE_OUTPUT* output)
    {
        const std::string& name = output->m_sheet_name;
        output->m_duty = HALF;
        if (const std::optional<RATIONAL> share =
                m_parameters.number_of(PARAMETER_ROLE::DUTY_SHARE, name)) {
            output->m_duty = *share * PERCENT;
        } else if (const auto steps =
                       m_parameters.number_of(PARAMETER_ROLE::SIXTEENTHS_DUTY, name)) {
            output->m_duty = *steps * SIXTEENTH * PERCENT;
        } else if (m_sheet.find_output(name)->m_divides > 1) {
            output->m_duty = std::nullopt;
        }
    }

    // ---- The filter

    // At a border the sources do not agree which code it belongs to, so either will do.
    void compare_filter_range()
    {
        if (!m_parameters.is_written(PARAMETER_ROLE::FILTER_RANGE, "") ||
            !m_setting.m_pfd.is_positive()) {
            return;
        }
        const std::optional<RATIONAL> code =
            m_parameters.number_of(PARAMETER_ROLE::FILTER_RANGE, "");
        std::string expected;
        for (const FILTER_RANGE& range : m_sheet.m_filter_ranges) {
            const bool is_last = !range.m_below || m_setting.m_pfd < *range.m_below;
            const bool is_border = range.m_below && m_setting.m_pfd == *range.m_below;
            if (!is_last && !is_border) {
                continue;
            }
            if (code && *code == RATIONAL(range.m_code)) {
                return;
            }
            expected += (expected.empty() ? "" : " or ") + std::to_string(range.m_code);
            if (is_last) {
                break;
            }
        }
        note(m_parameters.line_of(PARAMETER_ROLE::FILTER_RANGE, ""),
             m_parameters.find(PARAMETER_ROLE::FILTER_RANGE, "")->m_name +
                 " is for another PFD frequency; " + expected + " is for this one");
    }

    const INSTANCE& m_instance;
    const SHEET& m_sheet;
    PRIMITIVE_SETTING& m_setting;
    PARAMETERS m_parameters;
};

}  // namespace

RATIONAL frequency_of_period(const RATIONAL& period)
{
    const RATIONAL exact = RATIONAL(KILO) / period;
    if (!has_many_decimals(period)) {
        return exact;
    }
    int decimals = 0;
    while (decimals < MAX_DECIMALS && !(period * RATIONAL(power_of_ten(decimals))).is_integer()) {
        ++decimals;
    }
    const RATIONAL half_digit(1, 2 * power_of_ten(decimals));
    const RATIONAL least = RATIONAL(KILO) / (period + half_digit);
    const RATIONAL most = RATIONAL(KILO) / (period - half_digit);
    for (int digits = 0; digits <= MAX_DECIMALS; ++digits) {
        const RATIONAL scale(power_of_ten(digits));
        const RATIONAL first = (least * scale).ceil() / scale;
        const RATIONAL last = (most * scale).floor() / scale;
        if (first == last) {
            return first;
        }
        if (first < last) {
            break;
        }
    }
    return exact;
}

PRIMITIVE_SETTING compute_setting(const INSTANCE& instance, const SHEET& sheet,
                                  const std::optional<RATIONAL>& input)
{
    PRIMITIVE_SETTING setting;
    setting.m_primitive = instance.m_primitive;
    setting.m_name = instance.m_name;
    setting.m_line = instance.m_line;
    COMPUTATION(instance, sheet, &setting).run(input);
    return setting;
}

}  // namespace advice
