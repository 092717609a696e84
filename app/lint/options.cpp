#include "app/lint/options.h"

#include "app/words/usage_error.h"

#include <string>
#include <utility>
#include <vector>

namespace {

const char* const PATH_DESCRIPTION = "a database directory, a family file or a table file";

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

}  // namespace

void add_lint_options(CLI::App* app, LINT_REQUEST* request)
{
    app->add_option("PATH", request->m_path, PATH_DESCRIPTION)
        ->required()
        ->option_text("DIRECTORY|FILE");
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
           "-W",
           [request](const std::string& word) {
               if (word != "error") {
                   throw USAGE_ERROR("-W" + word, "unknown; legal is -Werror");
               }
               request->m_warnings_are_errors = true;
           },
           "-Werror: warnings count for the exit status")
        ->option_text("error");
}

void require_lint_path(const LINT_REQUEST& request)
{
    if (request.m_path.empty()) {
        throw USAGE_ERROR("PATH", std::string("needed; ") + PATH_DESCRIPTION);
    }
}
