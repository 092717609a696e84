// Path files. A line names a family, the sub-directory of its files and its family file; the last
// two may be missing. Words may be quoted, '#' begins a comment.
#include "database/files/path_file.h"

#include "pll_manager.h"

#include "database/files/words.h"
#include "database/memory.h"
#include "platform/report_error.h"

namespace pll_internal {

namespace {

const char PATH_FILE_NAME[] = "ddb_pll_path.txt";

// Puts a new text in the place of an owned one; false when there is none.
bool replace_text(char** text, char* new_text)
{
    if (new_text == nullptr) {
        return false;
    }
    manager_release(*text);
    *text = new_text;
    return true;
}

class PATH_READER
{
public:
    PATH_READER(PLL_MANAGER* manager, const char* directory, PLL_READ_BUDGET* budget,
                PLL_PATH_LISTENER* listener)
        : m_manager(manager), m_directory(directory), m_budget(budget), m_listener(listener)
    {
    }

    PLL_FINDING read(const char* name);

private:
    PLL_FINDING read_line(char* line, bool* names_a_family);
    PLL_FINDING read_family(const char* name, PLL_WORDS* words);
    PLL_FINDING tell(const PLL_FAULT& fault, const char* file, int line = 0);

    PLL_MANAGER* m_manager;
    const char* m_directory;
    PLL_READ_BUDGET* m_budget;
    PLL_PATH_LISTENER* m_listener;  // null: nobody
};

PLL_FINDING PATH_READER::tell(const PLL_FAULT& fault, const char* file, int line)
{
    if (m_listener != nullptr) {
        m_listener->hear_of_file(fault, file, line);
    }
    return fault.m_finding;
}

PLL_FINDING PATH_READER::read(const char* name)
{
    PLL_INPUT_FILE file;
    if (const int error = file.open(name, m_budget); error != 0) {
        return tell(fault_of_system(PLL_FINDING::PATH_FILE_NOT_OPENED, error), name);
    }
    bool names_a_family = false;
    char line[PLL_LINE_SIZE];
    while (!file.is_at_end() && file.read_line(line)) {
        if (m_listener != nullptr) {
            m_listener->begin_line(line, file, name);
        }
        const PLL_FINDING reason = read_line(line, &names_a_family);
        if (reason != PLL_FINDING::NONE) {
            return reason;
        }
    }
    if (file.get_error() != 0) {
        return tell(fault_of_reading(file.get_error(), *m_budget), name, file.line_number() + 1);
    }
    return names_a_family ? PLL_FINDING::NONE : tell({PLL_FINDING::NO_FAMILY}, name);
}

PLL_FINDING PATH_READER::read_line(char* line, bool* names_a_family)
{
    PLL_WORDS words(line, m_listener);
    const char* const name = words.next_name();
    if (name == nullptr) {
        return PLL_FINDING::NONE;
    }
    *names_a_family = true;
    if (!m_budget->take_statement()) {
        return words.tell_limit(PLL_FINDING::TOO_MANY_STATEMENTS, name, 0,
                                m_budget->limits().m_statements);
    }
    const PLL_FINDING reason = read_family(name, &words);
    if (m_listener != nullptr) {
        m_listener->end_line(reason, &words);
    }
    return reason;
}

PLL_FINDING PATH_READER::read_family(const char* name, PLL_WORDS* words)
{
    PLL_FAMILY_INFO* const family = m_manager->create_family_info(name);
    if (!check(family != nullptr, "family_info != NULL", PLL_MANAGER_SOURCE)) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    if (m_listener != nullptr) {
        m_listener->hear_of_family(name, family);
    }
    if (!replace_text(&family->m_database, manager_join(m_directory))) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    const char* const path = words->next_name();
    if (path != nullptr && !replace_text(&family->m_path, manager_join(m_directory, path))) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    const char* const file_name = path == nullptr ? nullptr : words->next_name();
    if (file_name != nullptr && !replace_text(&family->m_file_name, manager_join(file_name))) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    return PLL_FINDING::NONE;
}

}  // namespace

PLL_FINDING read_path_file(PLL_MANAGER* manager, const char* directory, PLL_READ_BUDGET* budget,
                           PLL_PATH_LISTENER* listener)
{
    const PLL_MANAGER_TEXT name(manager_join(directory, PATH_FILE_NAME));
    if (name.get() != nullptr) {
        return PATH_READER(manager, directory, budget, listener).read(name.get());
    }
    if (listener != nullptr) {
        listener->hear_of_file({PLL_FINDING::OUT_OF_MEMORY}, PATH_FILE_NAME, 0);
    }
    return PLL_FINDING::OUT_OF_MEMORY;
}

}  // namespace pll_internal
