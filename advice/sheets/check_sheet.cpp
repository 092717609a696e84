// What must hold between the records of a sheet.

#include "advice/sheets/sheet_reader.h"

#include <algorithm>

namespace advice {

namespace {

class SHEET_CHECK
{
public:
    SHEET_CHECK(const SHEET& sheet, std::vector<SHEET_PROBLEM>* problems)
        : m_sheet(sheet), m_problems(problems)
    {
    }

    void check()
    {
        check_head();
        check_outputs();
        check_parameters();
        check_paths();
        for (const FIGURE& figure : m_sheet.m_figures) {
            check_figure(figure);
        }
        check_limits();
    }

private:
    void report(int line, const std::string& text)
    {
        m_problems->push_back({m_sheet.m_file, line, 0, text});
    }

    void need(bool holds, int line, const std::string& text)
    {
        if (!holds) {
            report(line, text);
        }
    }

    void check_head()
    {
        need(!m_sheet.m_name.empty(), 0, "the key 'name' is missing");
        need(!m_sheet.m_title.empty(), 0, "the key 'title' is missing");
        need(!m_sheet.m_grades.empty(), 0, "there is no [[grade]]");
        need(!m_sheet.m_outputs.empty(), 0, "there is no output");
        need(!m_sheet.m_primitives.empty(), 0, "the list 'primitives' is missing");
        need(!m_sheet.m_filter.empty(), 0,
             "the key 'filter' is missing: \"not published\", or what is");
    }

    void check_output_name(const std::string& name, const std::string& place)
    {
        need(name.empty() || m_sheet.find_output(name) != nullptr, 0,
             place + " names the unknown output '" + name + "'");
    }

    void check_outputs()
    {
        for (const SHEET_OUTPUT& output : m_sheet.m_outputs) {
            check_output_name(output.m_of, "output " + output.m_name);
            need(output.m_divides > 0, 0, "output " + output.m_name + " divides by 0");
        }
        check_output_name(m_sheet.m_feedback, "'feedback'");
        for (const PORT& port : m_sheet.m_ports) {
            check_output_name(port.m_output, "port " + port.m_name);
        }
    }

    void check_parameters()
    {
        for (const PARAMETER& parameter : m_sheet.m_parameters) {
            check_output_name(parameter.m_output, "parameter " + parameter.m_name);
            const bool has_width = parameter.m_type == PARAMETER_TYPE::BITS ||
                                   parameter.m_type == PARAMETER_TYPE::DIGITS;
            need(!has_width || (parameter.m_width > 0 && parameter.m_width <= MAX_WIDTH), 0,
                 "parameter " + parameter.m_name + " needs a width of 1 to 32");
            need(parameter.m_role != PARAMETER_ROLE::FIXED || !parameter.m_value.empty(), 0,
                 "parameter " + parameter.m_name + " is fixed and has no value");
        }
    }

    void check_paths()
    {
        for (const auto& [value, output] : m_sheet.m_paths) {
            if (output != PATH_UNKNOWN && output != PATH_SHIFT_REGISTER) {
                check_output_name(output, "path " + value);
            }
        }
    }

    void check_sources(const std::vector<std::string>& sources, int line)
    {
        need(!sources.empty(), line, "a figure needs a source");
        for (const std::string& source : sources) {
            need(m_sheet.m_sources.count(source) > 0, line,
                 "the source '" + source + "' is not listed under [sources]");
        }
    }

    void check_range(const FIGURE_RANGE& range, int line)
    {
        need(!(range.m_least && range.m_most && *range.m_most < *range.m_least), line,
             "the limits are crossed: " + to_text(range));
        need(std::is_sorted(range.m_values.begin(), range.m_values.end()), line,
             "the values must ascend");
    }

    void check_figure(const FIGURE& figure)
    {
        const FIGURE_RANGE& range = figure.m_range;
        need(range.m_least || range.m_most || !range.m_values.empty(), figure.m_line,
             "a figure needs 'min', 'max' or 'values'");
        check_range(range, figure.m_line);
        check_sources(figure.m_sources, figure.m_line);
        for (const OTHER_FIGURE& other : figure.m_others) {
            check_range(other.m_range, figure.m_line);
            check_sources(other.m_sources, figure.m_line);
        }
        for (const std::string& grade : figure.m_grades) {
            need(m_sheet.find_grade(grade) != nullptr, figure.m_line,
                 "there is no grade '" + grade + "'");
        }
        for (const std::string& output : figure.m_outputs) {
            need(m_sheet.find_output(output) != nullptr, figure.m_line,
                 "there is no output '" + output + "'");
        }
        for (const std::string& path : figure.m_paths) {
            need(m_sheet.m_paths.count(path) > 0, figure.m_line, "there is no path '" + path + "'");
        }
    }

    // Without these no setting can be judged.
    void check_limits()
    {
        for (const GRADE& grade : m_sheet.m_grades) {
            for (const FIGURE_KIND kind :
                 {FIGURE_KIND::VCO, FIGURE_KIND::PFD, FIGURE_KIND::N, FIGURE_KIND::M}) {
                need(m_sheet.find_figure(kind, grade.m_name, "", "") != nullptr, 0,
                     "grade " + grade.m_name + " has no figure '" + name_of(kind) + "'");
            }
        }
    }

    static constexpr int MAX_WIDTH = 32;

    const SHEET& m_sheet;
    std::vector<SHEET_PROBLEM>* m_problems;
};

}  // namespace

void check_sheet(const SHEET& sheet, std::vector<SHEET_PROBLEM>* problems)
{
    SHEET_CHECK(sheet, problems).check();
}

}  // namespace advice
