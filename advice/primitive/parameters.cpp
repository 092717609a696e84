#include "advice/primitive/parameters.h"

namespace advice {

namespace {

constexpr int MAX_LOG2 = 30;

// The count that a number stands for; 0 where it stands for none.
RATIONAL decode(const RATIONAL& value, PARAMETER_CODE code)
{
    switch (code) {
    case PARAMETER_CODE::COUNT:
        return value;
    case PARAMETER_CODE::COUNT_LESS_1:
        return value + RATIONAL(1);
    case PARAMETER_CODE::LOG2:
        break;
    }
    if (!value.is_integer() || value < RATIONAL(0) || RATIONAL(MAX_LOG2) < value) {
        return RATIONAL(0);
    }
    return {WIDE_INT(1) << value.numerator(), 1};
}

}  // namespace

void PARAMETERS::fail(const std::string& text)
{
    if (m_problem->empty()) {
        *m_problem = text;
    }
}

const PARAMETER* PARAMETERS::find(PARAMETER_ROLE role, const std::string& output) const
{
    return m_sheet.find_parameter(role, output, m_instance.m_primitive);
}

// Null when the source does not write it.
const std::string* PARAMETERS::name_in_source(const PARAMETER& parameter) const
{
    if (m_instance.m_parameters.count(parameter.m_name) > 0) {
        return &parameter.m_name;
    }
    for (const std::string& name : parameter.m_other_names) {
        if (m_instance.m_parameters.count(name) > 0) {
            return &name;
        }
    }
    return nullptr;
}

bool PARAMETERS::is_written(PARAMETER_ROLE role, const std::string& output) const
{
    const PARAMETER* parameter = find(role, output);
    return parameter != nullptr && name_in_source(*parameter) != nullptr;
}

int PARAMETERS::line_of(PARAMETER_ROLE role, const std::string& output) const
{
    const PARAMETER* parameter = find(role, output);
    const std::string* name = parameter == nullptr ? nullptr : name_in_source(*parameter);
    if (name == nullptr) {
        return m_instance.m_line;
    }
    const auto line = m_instance.m_parameter_lines.find(*name);
    return line == m_instance.m_parameter_lines.end() ? m_instance.m_line : line->second;
}

std::optional<std::string> PARAMETERS::text_of(PARAMETER_ROLE role, const std::string& output)
{
    const PARAMETER* parameter = find(role, output);
    if (parameter == nullptr) {
        return std::nullopt;
    }
    const std::string* name = name_in_source(*parameter);
    if (name == nullptr) {
        return parameter->m_absent;
    }
    const VERILOG_VALUE& value = m_instance.m_parameters.at(*name);
    if (value.m_kind != VERILOG_VALUE::KIND::TEXT) {
        fail(*name + " is no string" + (value.is_known() ? "" : ": " + value.m_text));
        return std::nullopt;
    }
    return value.m_text;
}

// Strings hold numbers too, and binary digits where the primitive has such.
std::optional<RATIONAL> PARAMETERS::to_number(const PARAMETER& parameter, const std::string& name)
{
    const VERILOG_VALUE& value = m_instance.m_parameters.at(name);
    if (value.is_number()) {
        return value.m_number;
    }
    if (!value.is_known()) {
        fail(name + " cannot be evaluated: " + value.m_text);
        return std::nullopt;
    }
    const bool is_binary = parameter.m_type == PARAMETER_TYPE::DIGITS;
    const VERILOG_VALUE number = value_of_number(is_binary ? "'b" + value.m_text : value.m_text);
    if (!number.is_known()) {
        fail(name + " is no number: \"" + value.m_text + "\"");
        return std::nullopt;
    }
    return number.m_number;
}

std::optional<RATIONAL> PARAMETERS::number_of(PARAMETER_ROLE role, const std::string& output)
{
    const PARAMETER* parameter = find(role, output);
    if (parameter == nullptr) {
        return std::nullopt;
    }
    if (const std::string* name = name_in_source(*parameter)) {
        return to_number(*parameter, *name);
    }
    return parameter->m_absent ? RATIONAL::parse(*parameter->m_absent) : std::nullopt;
}

std::optional<RATIONAL> PARAMETERS::count_of(PARAMETER_ROLE role, const std::string& output)
{
    const std::optional<RATIONAL> value = number_of(role, output);
    return value ? std::optional(decode(*value, find(role, output)->m_code)) : std::nullopt;
}

}  // namespace advice
