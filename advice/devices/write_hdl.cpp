#include "advice/devices/write_hdl.h"

#include "advice/devices/hdl_values.h"

namespace advice {

namespace {

const RATIONAL KILO(1000);
constexpr int PERIOD_DECIMALS = 3;
constexpr const char* INDENT = "    ";
constexpr const char* DEEP_INDENT = "        ";

std::string quoted(const std::string& text)
{
    return "\"" + text + "\"";
}

// Lines with `separator` between them, the last without.
std::string join(const std::vector<std::string>& lines, const std::string& separator)
{
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        text += lines[i] + (i + 1 < lines.size() ? separator : "");
        text += i + 1 < lines.size() ? "\n" : "";
    }
    return text;
}

// ---- Verilog and SystemVerilog

std::string to_verilog(const HDL_PARAMETER& parameter)
{
    switch (parameter.m_type) {
    case PARAMETER_TYPE::STRING:
    case PARAMETER_TYPE::DIGITS:
        return quoted(parameter.m_value);
    case PARAMETER_TYPE::BITS:
        return std::to_string(parameter.m_width) + "'b" + parameter.m_value;
    case PARAMETER_TYPE::INTEGER:
    case PARAMETER_TYPE::REAL:
        break;
    }
    return parameter.m_value;
}

std::string to_verilog(const HDL_PORT& port)
{
    const std::string width = std::to_string(port.m_width);
    switch (port.m_net) {
    case HDL_NET::SIGNAL:
        return port.m_signal;
    case HDL_NET::LOW:
        return width + "'b0";
    case HDL_NET::HIGH:
        return width + "'b1";
    case HDL_NET::OPEN:
        break;
    }
    return "";
}

std::string verilog_ports(const HDL_MODULE& hdl, const std::string& type)
{
    std::string text;
    for (std::size_t i = 0; i < hdl.m_ports.size(); ++i) {
        const HDL_MODULE_PORT& port = hdl.m_ports[i];
        const bool is_last = i + 1 == hdl.m_ports.size();
        text.append(INDENT).append(port.m_is_output ? "output " : "input  ").append(type);
        text.append(" ").append(port.m_name).append(is_last ? "" : ",");
        text.append(port.m_comment.empty() ? "" : "  // ").append(port.m_comment);
        text.append(is_last ? "" : "\n");
    }
    return text;
}

std::string verilog_signals(const HDL_MODULE& hdl, const std::string& type)
{
    std::vector<std::string> lines;
    for (const std::string& signal : hdl.m_signals) {
        lines.push_back(INDENT + type + " " + signal + ";");
    }
    for (const std::string& pair : hdl.m_inversions) {
        const std::size_t blank = pair.find(' ');
        lines.push_back(INDENT + std::string("assign ") + pair.substr(0, blank) + " = ~" +
                        pair.substr(blank + 1) + ";");
    }
    return join(lines, "");
}

std::string verilog_body(const HDL_MODULE& hdl, const std::string& type)
{
    std::vector<std::string> parameters;
    for (const HDL_PARAMETER& parameter : hdl.m_parameters) {
        parameters.push_back(INDENT + std::string("parameter ") + parameter.m_name + " = " +
                             to_verilog(parameter));
    }
    std::vector<std::string> ports;
    for (const HDL_PORT& port : hdl.m_connections) {
        const std::string range =
            port.m_width > 1 ? " [" + std::to_string(port.m_width - 1) + ":0]" : "";
        ports.push_back(INDENT + std::string(port.m_is_output ? "output " : "input  ") + type +
                        range + " " + port.m_name);
    }
    return "\n/* verilator lint_off UNUSED */\n/* verilator lint_off UNDRIVEN */\n"
           "// Nothing but the outline of the primitive.\nmodule " +
           hdl.m_primitive + " #(\n" + join(parameters, ",") + "\n) (\n" + join(ports, ",") +
           "\n);\nendmodule\n/* verilator lint_on UNDRIVEN */\n/* verilator lint_on UNUSED */";
}

void add_verilog(const HDL_MODULE& hdl, const std::string& type, bool with_body,
                 TEMPLATE_FIELDS* fields)
{
    std::vector<std::string> parameters;
    for (const HDL_PARAMETER& parameter : hdl.m_parameters) {
        parameters.push_back(DEEP_INDENT + std::string(".") + parameter.m_name + "(" +
                             to_verilog(parameter) + ")");
    }
    std::vector<std::string> connections;
    for (const HDL_PORT& port : hdl.m_connections) {
        connections.push_back(DEEP_INDENT + std::string(".") + port.m_name + "(" +
                              to_verilog(port) + ")");
    }
    std::vector<std::string> attributes;
    for (const std::string& attribute : hdl.m_attributes) {
        attributes.push_back(INDENT + std::string("(* ") + attribute + " *)");
    }
    std::vector<std::string> comments;
    for (const std::string& comment : hdl.m_comments) {
        comments.push_back("// " + comment);
    }
    (*fields)["comment"] = join(comments, "");
    (*fields)["ports"] = verilog_ports(hdl, type);
    (*fields)["signals"] = verilog_signals(hdl, type);
    (*fields)["attributes"] = join(attributes, "");
    (*fields)["parameters"] = join(parameters, ",");
    (*fields)["connections"] = join(connections, ",");
    (*fields)["generics"] = "";
    (*fields)["component_ports"] = "";
    (*fields)["body"] = with_body ? verilog_body(hdl, type) : "";
}

// ---- VHDL

std::string to_vhdl(const HDL_PARAMETER& parameter)
{
    switch (parameter.m_type) {
    case PARAMETER_TYPE::STRING:
    case PARAMETER_TYPE::DIGITS:
        return quoted(parameter.m_value);
    case PARAMETER_TYPE::BITS:
        return parameter.m_width == 1 ? "'" + parameter.m_value + "'" : quoted(parameter.m_value);
    case PARAMETER_TYPE::INTEGER:
    case PARAMETER_TYPE::REAL:
        break;
    }
    return parameter.m_value;
}

std::string vhdl_type(const HDL_PARAMETER& parameter)
{
    switch (parameter.m_type) {
    case PARAMETER_TYPE::STRING:
    case PARAMETER_TYPE::DIGITS:
        return "string";
    case PARAMETER_TYPE::BITS:
        return parameter.m_width == 1
                   ? "bit"
                   : "bit_vector(" + std::to_string(parameter.m_width - 1) + " downto 0)";
    case PARAMETER_TYPE::REAL:
        return "real";
    case PARAMETER_TYPE::INTEGER:
        break;
    }
    return "integer";
}

std::string vhdl_type(const HDL_PORT& port)
{
    return port.m_width > 1 ? "std_logic_vector(" + std::to_string(port.m_width - 1) + " downto 0)"
                            : "std_logic";
}

std::string to_vhdl(const HDL_PORT& port)
{
    const bool is_vector = port.m_width > 1;
    switch (port.m_net) {
    case HDL_NET::SIGNAL:
        return port.m_signal;
    case HDL_NET::LOW:
        return is_vector ? "(others => '0')" : "'0'";
    case HDL_NET::HIGH:
        return is_vector ? "(others => '1')" : "'1'";
    case HDL_NET::OPEN:
        break;
    }
    return "open";
}

std::string vhdl_ports(const HDL_MODULE& hdl)
{
    std::string text;
    for (std::size_t i = 0; i < hdl.m_ports.size(); ++i) {
        const HDL_MODULE_PORT& port = hdl.m_ports[i];
        const bool is_last = i + 1 == hdl.m_ports.size();
        text.append(DEEP_INDENT).append(port.m_name);
        text.append(port.m_is_output ? " : out std_logic" : " : in std_logic");
        text.append(is_last ? "" : ";");
        text.append(port.m_comment.empty() ? "" : "  -- ").append(port.m_comment);
        text.append(is_last ? "" : "\n");
    }
    return text;
}

void add_vhdl_declarations(const HDL_MODULE& hdl, TEMPLATE_FIELDS* fields)
{
    std::vector<std::string> generics;
    for (const HDL_PARAMETER& parameter : hdl.m_parameters) {
        generics.push_back(std::string(DEEP_INDENT) + INDENT + parameter.m_name + " : " +
                           vhdl_type(parameter) + " := " + to_vhdl(parameter));
    }
    std::vector<std::string> ports;
    for (const HDL_PORT& port : hdl.m_connections) {
        ports.push_back(std::string(DEEP_INDENT) + INDENT + port.m_name +
                        (port.m_is_output ? " : out " : " : in ") + vhdl_type(port));
    }
    std::vector<std::string> signals;
    for (const std::string& signal : hdl.m_signals) {
        signals.push_back(INDENT + std::string("signal ") + signal + " : std_logic;");
    }
    for (const std::string& attribute : hdl.m_attributes) {
        const std::string name = attribute.substr(0, attribute.find(' '));
        const std::string value = attribute.substr(attribute.find('"'));
        signals.push_back(INDENT + std::string("attribute ") + name + " : string;");
        signals.push_back(INDENT + std::string("attribute ") + name + " of pll_i : label is " +
                          value + ";");
    }
    (*fields)["generics"] = join(generics, ";");
    (*fields)["component_ports"] = join(ports, ";");
    (*fields)["signals"] = join(signals, "");
}

void add_vhdl(const HDL_MODULE& hdl, TEMPLATE_FIELDS* fields)
{
    add_vhdl_declarations(hdl, fields);
    std::vector<std::string> parameters;
    for (const HDL_PARAMETER& parameter : hdl.m_parameters) {
        parameters.push_back(std::string(DEEP_INDENT) + INDENT + parameter.m_name + " => " +
                             to_vhdl(parameter));
    }
    std::vector<std::string> connections;
    for (const HDL_PORT& port : hdl.m_connections) {
        connections.push_back(std::string(DEEP_INDENT) + INDENT + port.m_name + " => " +
                              to_vhdl(port));
    }
    std::vector<std::string> comments;
    for (const std::string& comment : hdl.m_comments) {
        comments.push_back("-- " + comment);
    }
    std::vector<std::string> inversions;
    for (const std::string& pair : hdl.m_inversions) {
        const std::size_t blank = pair.find(' ');
        inversions.push_back(INDENT + pair.substr(0, blank) + " <= not " + pair.substr(blank + 1) +
                             ";");
    }
    (*fields)["comment"] = join(comments, "");
    (*fields)["ports"] = vhdl_ports(hdl);
    (*fields)["attributes"] = "";
    (*fields)["inversions"] = join(inversions, "");
    (*fields)["parameters"] = join(parameters, ",");
    (*fields)["connections"] = join(connections, ",");
    (*fields)["body"] = "";
}

// The line that a place of a text lies in is otherwise empty.
bool stands_alone(const std::string& text, std::size_t begin, std::size_t end)
{
    return (begin == 0 || text[begin - 1] == '\n') && end < text.size() && text[end] == '\n';
}

}  // namespace

TEMPLATE_FIELDS list_fields(const HDL_MODULE& hdl, HDL_LANGUAGE language, bool with_body)
{
    TEMPLATE_FIELDS fields;
    fields["module"] = hdl.m_name;
    fields["primitive"] = hdl.m_primitive;
    fields["input"] = hdl.m_input_name;
    fields["input_mhz"] = format_decimal(rounded_megahertz(hdl.m_input));
    fields["period_ns"] = (KILO / hdl.m_input).to_decimal(PERIOD_DECIMALS);
    fields["inversions"] = "";
    switch (language) {
    case HDL_LANGUAGE::VERILOG:
        add_verilog(hdl, "wire", with_body, &fields);
        break;
    case HDL_LANGUAGE::SYSTEM_VERILOG:
        add_verilog(hdl, "logic", with_body, &fields);
        break;
    case HDL_LANGUAGE::VHDL:
        add_vhdl(hdl, &fields);
        break;
    }
    return fields;
}

std::optional<std::string> fill_template(const std::string& text, const TEMPLATE_FIELDS& fields,
                                         std::string* unknown_field)
{
    const std::string OPEN = "{{";
    const std::string CLOSE = "}}";
    std::string filled;
    std::size_t at = 0;
    for (std::size_t open = text.find(OPEN); open != std::string::npos;
         open = text.find(OPEN, at)) {
        const std::size_t close = text.find(CLOSE, open);
        if (close == std::string::npos) {
            break;
        }
        const std::string name = text.substr(open + OPEN.size(), close - open - OPEN.size());
        const auto field = fields.find(name);
        if (field == fields.end()) {
            *unknown_field = name;
            return std::nullopt;
        }
        filled += text.substr(at, open - at) + field->second;
        at = close + CLOSE.size();
        if (field->second.empty() && stands_alone(text, open, at)) {
            ++at;
        }
    }
    return filled + text.substr(at);
}

}  // namespace advice
