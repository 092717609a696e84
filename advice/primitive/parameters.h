// The parameters of an instance by what they are for.
#pragma once

#include "advice/primitive/instances.h"
#include "advice/sheets/sheet.h"

#include <optional>
#include <string>

namespace advice {

// Reads parameters as a sheet describes them. The first value that cannot be read is told in
// `problem`, which like instance and sheet must outlive this.
class PARAMETERS
{
public:
    PARAMETERS(const INSTANCE& instance, const SHEET& sheet, std::string* problem)
        : m_instance(instance), m_sheet(sheet), m_problem(problem)
    {
    }

    // Keeps the first problem only.
    void fail(const std::string& text);

    // The parameter of the instance's primitive; null when it has none.
    const PARAMETER* find(PARAMETER_ROLE role, const std::string& output) const;

    bool is_written(PARAMETER_ROLE role, const std::string& output) const;

    // The line of a parameter, else of the instance.
    int line_of(PARAMETER_ROLE role, const std::string& output) const;

    // What is written, else the primitive's default; none without either.
    std::optional<std::string> text_of(PARAMETER_ROLE role, const std::string& output);
    std::optional<RATIONAL> number_of(PARAMETER_ROLE role, const std::string& output);
    std::optional<RATIONAL> count_of(PARAMETER_ROLE role, const std::string& output);  // decoded

private:
    const std::string* name_in_source(const PARAMETER& parameter) const;
    std::optional<RATIONAL> to_number(const PARAMETER& parameter, const std::string& name);

    const INSTANCE& m_instance;
    const SHEET& m_sheet;
    std::string* m_problem;
};

}  // namespace advice
