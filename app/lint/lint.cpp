#include "app/lint/lint.h"

#include "app/lint/database_check.h"
#include "app/output/input_file.h"
#include "app/output/text_table.h"
#include "app/source/text_file.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include <filesystem>
#include <unistd.h>

namespace {

constexpr char PATH_FILE_NAME[] = "ddb_pll_path.txt";

bool look_at(const std::string& path, LINT_TARGET target, DATABASE_CHECK* check)
{
    std::error_code ignored;
    if (path.empty()) {
        return check->check_file(path);
    }
    if (std::filesystem::is_directory(path, ignored)) {
        return check->check_directory(path);
    }
    const std::filesystem::path file = path;
    if (file.filename() == PATH_FILE_NAME) {
        return check->check_directory(file.has_parent_path() ? file.parent_path().string() : ".");
    }
    switch (target) {
    case LINT_TARGET::BY_CONTENT:
        return check->check_file(path);
    case LINT_TARGET::FAMILY_FILE:
        return check->check_family_file(path);
    case LINT_TARGET::TABLE_FILE:
        return check->check_table_file(path);
    }
    return false;
}

// The paths to read, and the one file that messages are wanted of, if there is one.
std::vector<std::string> find_paths(const LINT_REQUEST& request, LINT_FILTER* filter)
{
    if (!request.m_within) {
        return request.m_paths;
    }
    filter->m_only_file = tidy_path(request.m_paths.front());
    return {*request.m_within};
}

LINT_VERDICT judge(const LINT_SUMMARY& summary, bool is_unreadable, bool warnings_are_errors)
{
    if (is_unreadable) {
        return LINT_VERDICT::UNREADABLE;
    }
    if (summary.count(LINT_SEVERITY::ERROR) > 0) {
        return LINT_VERDICT::ERRORS;
    }
    return warnings_are_errors && summary.count(LINT_SEVERITY::WARNING) > 0 ? LINT_VERDICT::WARNINGS
                                                                            : LINT_VERDICT::CLEAN;
}

}  // namespace

LINT_VERDICT lint(const LINT_REQUEST& request, OUTPUT_STREAM* output, std::string* problem)
{
    LINT_FILTER filter = request.m_filter;
    const std::vector<std::string> paths = find_paths(request, &filter);
    const bool carets = request.m_caret == LINT_CARET::ALWAYS ||
                        (request.m_caret == LINT_CARET::ON_TERMINALS && isatty(STDOUT_FILENO) == 1);
    READINGS readings;
    const auto printer = make_lint_printer(request.m_format, carets, &readings, output);
    printer->begin();
    LINT_MESSAGES messages(&readings, std::move(filter), printer.get());
    DATABASE_CHECK check(&readings, &messages);
    for (const std::string& path : paths) {
        if (!look_at(path, request.m_target, &check)) {
            *problem = "cannot read " + (path.empty() ? "''" : path);
            messages.m_summary.m_is_unreadable = true;
        }
    }
    if (request.m_within && !readings.has_file(tidy_path(request.m_paths.front()))) {
        *problem = *request.m_within + " does not include " + request.m_paths.front();
        messages.m_summary.m_is_unreadable = true;
    }
    check.finish();
    return judge(messages.m_summary, messages.m_summary.m_is_unreadable,
                 request.m_warnings_are_errors);
}

std::string explain_rule(const std::string& name)
{
    if (name.empty()) {
        TEXT_TABLE table(
            {{"rule", "", ALIGN::LEFT}, {"severity", "", ALIGN::LEFT}, {"", "", ALIGN::LEFT}});
        for (std::size_t i = 0; i < NUMBER_OF_LINT_RULES; ++i) {
            const LINT_RULE_TEXT& rule = describe(static_cast<LINT_RULE>(i));
            table.add_row({rule.m_name, name_of(rule.m_severity), rule.m_description});
        }
        std::string text;
        table.append_to(&text);
        return text;
    }
    const std::optional<LINT_RULE> found = find_rule(name);
    if (!found) {
        throw USAGE_ERROR("--explain", "unknown rule '" + name + "'" + suggest(name, list_rules()));
    }
    const LINT_RULE_TEXT& rule = describe(*found);
    return std::string(rule.m_name) + " (" + name_of(rule.m_severity) + ")\n  " +
           rule.m_description + "\n  cause: " + rule.m_cause + "\n  cure:  " + rule.m_cure + "\n";
}
