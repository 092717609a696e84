#include "app/lint/options.h"

#include "app/words/quantity.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

const char* const PATH_DESCRIPTION =
    "a database directory, a family file or a table file, or several; "
    "- is the standard input";

// An option whose value is one of a few words.
template <class T>
void add_choice(CLI::App* app, const std::string& name, const std::string& description,
                const std::vector<std::pair<std::string, T>>& choices, T* value)
{
    std::string legal;
    for (const auto& choice : choices) {
        legal += (legal.empty() ? "" : ", ") + choice.first;
    }
    const auto choose = [name, choices, legal, value](const std::string& word) {
        for (const auto& choice : choices) {
            if (choice.first == word) {
                *value = choice.second;
                return;
            }
        }
        throw USAGE_ERROR(name, "'" + word + "' is not legal; legal are " + legal);
    };
    app->add_option_function<std::string>(name, choose, description + " (" + legal + ")")
        ->option_text("WHICH");
}

std::size_t index_of_rule(const std::string& word, const std::string& name)
{
    const std::optional<LINT_RULE> rule = find_rule(name);
    if (!rule) {
        throw USAGE_ERROR("-W" + word, "unknown rule '" + name + "'" + suggest(name, list_rules()));
    }
    return static_cast<std::size_t>(*rule);
}

// "error", "error=RULE" or "no-RULE".
void read_warning_word(const std::string& word, LINT_REQUEST* request)
{
    const std::string ERROR_OF = "error=";
    const std::string NO = "no-";
    if (word == "error") {
        request->m_warnings_are_errors = true;
    } else if (word.compare(0, ERROR_OF.size(), ERROR_OF) == 0) {
        request->m_filter.m_errors.set(index_of_rule(word, word.substr(ERROR_OF.size())));
    } else if (word.compare(0, NO.size(), NO) == 0) {
        request->m_filter.m_disabled.set(index_of_rule(word, word.substr(NO.size())));
    } else {
        throw USAGE_ERROR("-W" + word, "unknown; legal are -Werror, -Werror=RULE and -Wno-RULE");
    }
}

}  // namespace

void add_lint_options(CLI::App* app, LINT_REQUEST* request)
{
    app->add_option("PATH", request->m_paths, PATH_DESCRIPTION)->option_text("DIRECTORY|FILE ...");
    add_choice<LINT_FORMAT>(
        app, "--format", "how messages are written",
        {{"text", LINT_FORMAT::TEXT}, {"json", LINT_FORMAT::JSON}, {"sarif", LINT_FORMAT::SARIF}},
        &request->m_format);
    add_choice<LINT_CARET>(app, "--caret", "the source line below each message",
                           {{"auto", LINT_CARET::ON_TERMINALS},
                            {"always", LINT_CARET::ALWAYS},
                            {"never", LINT_CARET::NEVER}},
                           &request->m_caret);
    add_choice<LINT_TARGET>(app, "--as", "what a file is taken for",
                            {{"auto", LINT_TARGET::BY_CONTENT},
                             {"family", LINT_TARGET::FAMILY_FILE},
                             {"table", LINT_TARGET::TABLE_FILE}},
                            &request->m_target);
    app->add_option_function<std::string>(
           "--within", [request](const std::string& word) { request->m_within = word; },
           "the family file that includes PATH; messages on PATH alone are shown")
        ->option_text("FILE");
    app->add_option_function<std::string>(
           "--max-messages",
           [request](const std::string& word) {
               request->m_filter.m_most = static_cast<std::size_t>(
                   read_integer("--max-messages", word, 0, std::numeric_limits<int>::max()));
           },
           "messages that are shown; the others are counted")
        ->option_text("COUNT");
    app->add_option_function<std::vector<std::string>>(
           "-W",
           [request](const std::vector<std::string>& words) {
               for (const std::string& word : words) {
                   read_warning_word(word, request);
               }
           },
           "-Werror: warnings count for the exit status; -Werror=RULE, -Wno-RULE: of one rule")
        ->option_text("WHICH")
        ->allow_extra_args(false);
    app->add_option_function<std::string>(
           "--explain", [request](const std::string& word) { request->m_explain = word; },
           "cause and cure of a rule; 'all' lists the rules")
        ->option_text("RULE");
}

void require_lint_path(const LINT_REQUEST& request)
{
    if (request.m_explain) {
        return;
    }
    const bool has_empty =
        std::find(request.m_paths.begin(), request.m_paths.end(), "") != request.m_paths.end();
    if (request.m_paths.empty() || has_empty) {
        throw USAGE_ERROR("PATH", std::string("needed; ") + PATH_DESCRIPTION);
    }
    if (request.m_within && request.m_paths.size() > 1) {
        throw USAGE_ERROR("--within", "takes one PATH, the file that is included");
    }
}
