// Instances written by templates: texts with fields in double braces, such as {{parameters}}. Users
// can add their own.
#pragma once

#include "advice/devices/hdl.h"

#include <map>
#include <optional>
#include <string>

namespace advice {

enum class HDL_LANGUAGE
{
    VERILOG,
    SYSTEM_VERILOG,
    VHDL
};

typedef std::map<std::string, std::string> TEMPLATE_FIELDS;

// What the templates may name: module, primitive, comment, ports, signals, attributes, parameters,
// connections, generics, component_ports, body, input, input_mhz, period_ns.
TEMPLATE_FIELDS list_fields(const HDL_MODULE& hdl, HDL_LANGUAGE language, bool with_body);

// The text with its fields filled in; none with the name of a field that there is not. A line that
// holds nothing but an empty field is left out.
std::optional<std::string> fill_template(const std::string& text, const TEMPLATE_FIELDS& fields,
                                         std::string* unknown_field);

}  // namespace advice
