#include "advice/sheets/sheet.h"

#include <algorithm>

namespace advice {

namespace {

constexpr int DECIMALS = 6;

bool contains(const std::vector<std::string>& list, const std::string& name)
{
    return std::find(list.begin(), list.end(), name) != list.end();
}

// "3.125": as few digits as the value has; a fraction where six do not do.
std::string to_short_text(const RATIONAL& value)
{
    if (!(value * RATIONAL(power_of_ten(DECIMALS))).is_integer()) {
        return value.to_fraction();
    }
    std::string text = value.to_decimal(DECIMALS);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

std::string join(const std::vector<int>& values)
{
    std::string text;
    for (const int value : values) {
        text += (text.empty() ? "" : ", ") + std::to_string(value);
    }
    return text;
}

// How exactly a figure is for what is asked; one for a path goes before one for all.
bool is_for(const FIGURE& figure, FIGURE_KIND kind, const std::string& grade,
            const std::string& output)
{
    return figure.m_kind == kind && covers(figure.m_grades, grade) &&
           (output.empty() ? figure.m_outputs.empty() : covers(figure.m_outputs, output));
}

}  // namespace

bool covers(const std::vector<std::string>& list, const std::string& name)
{
    return list.empty() || contains(list, name);
}

bool FIGURE_RANGE::holds(const RATIONAL& value) const
{
    if (!m_values.empty()) {
        return std::any_of(m_values.begin(), m_values.end(),
                           [&](int legal) { return value == RATIONAL(legal); });
    }
    return value.is_valid() && !(m_least && value < *m_least) && !(m_most && *m_most < value);
}

const SHEET_OUTPUT* SHEET::find_output(const std::string& name) const
{
    for (const SHEET_OUTPUT& output : m_outputs) {
        if (output.m_name == name) {
            return &output;
        }
    }
    return nullptr;
}

const GRADE* SHEET::find_grade(const std::string& name) const
{
    for (const GRADE& grade : m_grades) {
        if (grade.m_name == name) {
            return &grade;
        }
    }
    return nullptr;
}

const PARAMETER* SHEET::find_parameter(PARAMETER_ROLE role, const std::string& output,
                                       const std::string& primitive) const
{
    for (const PARAMETER& parameter : m_parameters) {
        if (parameter.m_role == role && parameter.m_output == output &&
            covers(parameter.m_primitives, primitive)) {
            return &parameter;
        }
    }
    return nullptr;
}

const FIGURE* SHEET::find_figure(FIGURE_KIND kind, const std::string& grade,
                                 const std::string& output, const std::string& path) const
{
    const FIGURE* general = nullptr;
    for (const FIGURE& figure : m_figures) {
        if (!is_for(figure, kind, grade, output)) {
            continue;
        }
        if (contains(figure.m_paths, path)) {
            return &figure;
        }
        if (figure.m_paths.empty() && general == nullptr) {
            general = &figure;
        }
    }
    return general;
}

bool SHEET::counts_eighths(const std::string& what) const
{
    return contains(m_eighths, what);
}

const char* name_of(FIGURE_KIND kind)
{
    switch (kind) {
    case FIGURE_KIND::INPUT:
        return "input";
    case FIGURE_KIND::PFD:
        return "pfd";
    case FIGURE_KIND::VCO:
        return "vco";
    case FIGURE_KIND::OUTPUT:
        return "output";
    case FIGURE_KIND::FEEDBACK_OUTPUT:
        return "feedback_output";
    case FIGURE_KIND::N:
        return "n";
    case FIGURE_KIND::M:
        return "m";
    case FIGURE_KIND::COUNT:
        return "count";
    }
    return "";
}

const char* unit_of(FIGURE_KIND kind)
{
    return kind < FIGURE_KIND::N ? "MHz" : "";
}

std::string to_text(const FIGURE_RANGE& range)
{
    if (!range.m_values.empty()) {
        return join(range.m_values);
    }
    if (range.m_least && range.m_most) {
        return to_short_text(*range.m_least) + " to " + to_short_text(*range.m_most);
    }
    if (range.m_least) {
        return "from " + to_short_text(*range.m_least);
    }
    return range.m_most ? "up to " + to_short_text(*range.m_most) : "no limit";
}

}  // namespace advice
