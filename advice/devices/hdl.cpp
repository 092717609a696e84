#include "advice/devices/hdl.h"

#include "advice/devices/hdl_values.h"

#include <algorithm>
#include <set>

namespace advice {

namespace {

const RATIONAL KILO(1000);
constexpr const char* INPUT_NAME = "clk_in";
constexpr const char* RESET_NAME = "reset";
constexpr const char* STANDBY_NAME = "standby";
constexpr const char* LOCK_NAME = "locked";
constexpr const char* FEEDBACK_NAME = "feedback";

class HDL_MAKER
{
public:
    HDL_MAKER(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer)
        : m_request(request), m_answer(answer), m_sheet(*request.m_device.m_sheet)
    {
    }

    HDL_MODULE make(const std::string& module)
    {
        m_hdl.m_name = module;
        m_hdl.m_primitive = primitive_of(m_request, m_answer);
        m_hdl.m_input = m_request.m_request.m_input.m_frequency / (KILO * KILO);
        m_hdl.m_input_name = INPUT_NAME;
        name_clocks();
        add_comments();
        add_parameters();
        add_ports();
        add_connections();
        return m_hdl;
    }

private:
    // ---- Names

    void name_clocks()
    {
        std::set<std::string> taken = {INPUT_NAME,    RESET_NAME,  STANDBY_NAME, LOCK_NAME,
                                       FEEDBACK_NAME, "reset_low", "standby_low"};
        for (std::size_t i = 0; i < m_answer.m_clocks.size(); ++i) {
            const std::string fallback = "clk_out" + std::to_string(i + 1);
            const std::string wanted =
                to_identifier(m_request.m_request.m_outputs[i].m_name, fallback);
            m_names.push_back(taken.insert(wanted).second ? wanted : fallback);
            taken.insert(m_names.back());
        }
    }

    void add_comments()
    {
        m_hdl.m_comments.push_back(m_sheet.m_title + ": " + format_decimal(m_hdl.m_input) +
                                   " MHz / " + format_decimal(m_answer.m_n) + " x " +
                                   format_decimal(m_answer.m_loop) + " = VCO " +
                                   format_decimal(m_answer.m_vco) + " MHz");
        for (std::size_t i = 0; i < m_answer.m_clocks.size(); ++i) {
            m_hdl.m_comments.push_back(m_names[i] + ": " + describe(m_answer.m_clocks[i]));
        }
        if (!m_answer.m_spare.empty()) {
            m_hdl.m_comments.push_back(m_answer.m_spare + " is spare and makes the M counter");
        }
    }

    static std::string describe(const DEVICE_CLOCK& clock)
    {
        std::string text = format_decimal(clock.m_frequency) + " MHz";
        if (!clock.m_phase.is_zero()) {
            text += ", " + format_decimal(clock.m_phase) + " deg";
        }
        return text;
    }

    // ---- Parameters

    void add_parameters()
    {
        for (const PARAMETER& parameter : m_sheet.m_parameters) {
            if (!covers(parameter.m_primitives, m_hdl.m_primitive)) {
                continue;
            }
            HDL_PARAMETER written;
            written.m_name = parameter.m_name;
            written.m_type = parameter.m_type;
            written.m_width = parameter.m_width;
            written.m_value = hdl_value(m_request, m_answer, parameter);
            m_hdl.m_parameters.push_back(written);
        }
        if (!m_sheet.m_input_attribute.empty()) {
            m_hdl.m_attributes.push_back(m_sheet.m_input_attribute + " = \"" +
                                         format_decimal(rounded_megahertz(m_hdl.m_input)) + "\"");
        }
    }

    // ---- Ports

    bool has_port(PORT_ROLE role) const
    {
        return std::any_of(m_sheet.m_ports.begin(), m_sheet.m_ports.end(), [&](const PORT& port) {
            return port.m_role == role && covers(port.m_primitives, m_hdl.m_primitive);
        });
    }

    void add_ports()
    {
        m_hdl.m_ports.push_back({INPUT_NAME, false, format_decimal(m_hdl.m_input) + " MHz"});
        if (has_port(PORT_ROLE::RESET) || has_port(PORT_ROLE::RESET_LOW)) {
            m_hdl.m_ports.push_back({RESET_NAME, false, "active when high"});
        }
        if (has_port(PORT_ROLE::STANDBY) || has_port(PORT_ROLE::STANDBY_LOW)) {
            m_hdl.m_ports.push_back({STANDBY_NAME, false, "active when high"});
        }
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            m_hdl.m_ports.push_back({m_names[i], true, describe(m_answer.m_clocks[i])});
        }
        if (has_port(PORT_ROLE::LOCK)) {
            m_hdl.m_ports.push_back({LOCK_NAME, true, ""});
        }
    }

    void add_connections()
    {
        for (const PORT& port : m_sheet.m_ports) {
            if (covers(port.m_primitives, m_hdl.m_primitive)) {
                connect(port);
            }
        }
    }

    void use_signal(const std::string& name)
    {
        std::vector<std::string>& signals = m_hdl.m_signals;
        if (std::find(signals.begin(), signals.end(), name) == signals.end()) {
            signals.push_back(name);
        }
    }

    void use_inverted(const std::string& name, HDL_PORT* port)
    {
        port->m_net = HDL_NET::SIGNAL;
        port->m_signal = name + "_low";
        use_signal(port->m_signal);
        m_hdl.m_inversions.push_back(port->m_signal + " " + name);
    }

    void use(const std::string& name, HDL_PORT* port)
    {
        port->m_net = HDL_NET::SIGNAL;
        port->m_signal = name;
    }

    void connect(const PORT& port)
    {
        HDL_PORT made;
        made.m_name = port.m_name;
        made.m_width = port.m_width;
        switch (port.m_role) {
        case PORT_ROLE::INPUT:
            use(INPUT_NAME, &made);
            break;
        case PORT_ROLE::OUTPUT:
            made.m_is_output = true;
            connect_output(port.m_output, &made);
            break;
        case PORT_ROLE::FEEDBACK_IN:
            use(feedback_signal(), &made);
            break;
        case PORT_ROLE::FEEDBACK_OUT:
        case PORT_ROLE::INTERNAL_FEEDBACK_OUT:
        case PORT_ROLE::INTERNAL_FEEDBACK_OF:
            made.m_is_output = true;
            connect_feedback(port, &made);
            break;
        case PORT_ROLE::LOCK:
            made.m_is_output = true;
            use(LOCK_NAME, &made);
            break;
        case PORT_ROLE::RESET:
            use(RESET_NAME, &made);
            break;
        case PORT_ROLE::RESET_LOW:
            use_inverted(RESET_NAME, &made);
            break;
        case PORT_ROLE::STANDBY:
            use(STANDBY_NAME, &made);
            break;
        case PORT_ROLE::STANDBY_LOW:
            use_inverted(STANDBY_NAME, &made);
            break;
        case PORT_ROLE::LOW:
            made.m_net = HDL_NET::LOW;
            break;
        case PORT_ROLE::HIGH:
            made.m_net = HDL_NET::HIGH;
            break;
        }
        m_hdl.m_connections.push_back(made);
    }

    // Of several ports of an output the first one is used.
    void connect_output(const std::string& output, HDL_PORT* port)
    {
        const bool is_used = std::any_of(
            m_hdl.m_connections.begin(), m_hdl.m_connections.end(), [&](const HDL_PORT& each) {
                return each.m_is_output && each.m_signal == signal_of(output);
            });
        if (!is_used && !signal_of(output).empty()) {
            use(signal_of(output), port);
        }
    }

    // The name of the clock that an output makes; empty when it makes none.
    std::string signal_of(const std::string& output) const
    {
        for (std::size_t i = 0; i < m_names.size(); ++i) {
            if (m_answer.m_clocks[i].m_output == output) {
                return m_names[i];
            }
        }
        return "";
    }

    bool is_fed_back_inside() const { return m_answer.m_fed_back == m_answer.m_spare; }

    std::string feedback_signal()
    {
        if (!is_fed_back_inside()) {
            return signal_of(m_answer.m_fed_back);
        }
        use_signal(FEEDBACK_NAME);
        return FEEDBACK_NAME;
    }

    void connect_feedback(const PORT& port, HDL_PORT* made)
    {
        const bool is_of_another =
            port.m_role == PORT_ROLE::INTERNAL_FEEDBACK_OF && port.m_output != m_answer.m_fed_back;
        if (is_fed_back_inside() && !is_of_another) {
            use(feedback_signal(), made);
        }
    }

    const DEVICE_REQUEST& m_request;
    const DEVICE_ANSWER& m_answer;
    const SHEET& m_sheet;
    HDL_MODULE m_hdl;
    std::vector<std::string> m_names;  // of the clocks
};

}  // namespace

std::string to_identifier(const std::string& name, const std::string& otherwise)
{
    // Words of the languages that people call clocks by, in lower case.
    static const std::set<std::string> KEYWORDS = {"in",   "out",    "input",  "output", "reg",
                                                   "wire", "signal", "port",   "logic",  "bus",
                                                   "all",  "open",   "module", "entity"};
    std::string made;
    for (const char letter : name) {
        const bool is_letter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
        const bool is_digit = letter >= '0' && letter <= '9';
        const bool doubles = !made.empty() && made.back() == '_';
        if (is_letter || (is_digit && !made.empty())) {
            made += letter;
        } else if (!made.empty() && !doubles) {
            made += '_';
        }
    }
    while (!made.empty() && made.back() == '_') {
        made.pop_back();
    }
    return made.empty() || KEYWORDS.count(made) > 0 ? otherwise : made;
}

HDL_MODULE make_hdl(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer,
                    const std::string& module)
{
    return HDL_MAKER(request, answer).make(module);
}

}  // namespace advice
