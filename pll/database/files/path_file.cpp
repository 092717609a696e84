// The path file of a database directory and the loading of families on first use.
//
// A line of the path file names a family, the sub-directory of its files and its family file; the
// last two may be missing. Words may be quoted, '#' begins a comment.
#include "pll_manager.h"

#include "database/files/input_file.h"
#include "database/memory.h"
#include "database/watch/line_watch.h"
#include "platform/report_error.h"

#include <cstring>

namespace {

const char PATH_FILE_NAME[] = "ddb_pll_path.txt";

bool ends_with_slash(const char* path)
{
    const std::size_t length = std::strlen(path);
    return length > 0 && path[length - 1] == '/';
}

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

enum class PATH_LINE
{
    BLANK,
    FAMILY,
    OUT_OF_MEMORY
};

PATH_LINE read_path_line(PLL_MANAGER* manager, const char* directory, char* line)
{
    const char* const name = manager->find_string_token(&line);
    if (name == nullptr) {
        return PATH_LINE::BLANK;
    }
    PLL_FAMILY_INFO* const family = manager->create_family_info(name);
    if (!check(family != nullptr, "family_info != NULL", PLL_MANAGER_SOURCE)) {
        return PATH_LINE::OUT_OF_MEMORY;
    }
    const char* const path = manager->find_string_token(&line);
    if (path != nullptr && !replace_text(&family->m_path, manager_join(directory, path))) {
        return PATH_LINE::OUT_OF_MEMORY;
    }
    const char* const file_name = path == nullptr ? nullptr : manager->find_string_token(&line);
    if (file_name != nullptr && !replace_text(&family->m_file_name, manager_join(file_name))) {
        return PATH_LINE::OUT_OF_MEMORY;
    }
    return PATH_LINE::FAMILY;
}

// What can be told of a line that named a family.
void watch_path_line(PLL_LINE_WATCH* watch, PLL_MANAGER* manager)
{
    PLL_READ_STATEMENT event;
    event.m_kind = PLL_READ_KIND::PATH_LINE;
    const char* const name = watch->next_name();
    event.m_place = watch->place_of(name);
    event.m_family = manager->create_family_info(name);
    watch->next_name();  // sub-directory
    watch->next_name();  // file
    watch->tell_of_rest("");
    tell(watch->get_observer(), event);
}

// Reads the lines of an open path file; false when it names no family.
bool read_path_lines(PLL_MANAGER* manager, const char* directory, const char* name,
                     PLL_INPUT_FILE* file)
{
    PLL_LINE_WATCH watch(manager->get_observer(), *manager);
    bool names_a_family = false;
    while (!file->is_at_end()) {
        char line[PLL_LINE_SIZE];
        file->read_line(line);
        if (watch.get_observer() != nullptr) {
            watch.copy(line, *file, name);
        }
        const PATH_LINE result = read_path_line(manager, directory, line);
        if (result == PATH_LINE::OUT_OF_MEMORY) {
            return false;
        }
        if (result == PATH_LINE::FAMILY && watch.get_observer() != nullptr) {
            watch_path_line(&watch, manager);
        }
        names_a_family = names_a_family || result == PATH_LINE::FAMILY;
    }
    if (!names_a_family && manager->get_observer() != nullptr) {
        tell_of_file(manager->get_observer(), PLL_FINDING::NO_FAMILY, name);
    }
    return names_a_family;
}

}  // namespace

bool PLL_MANAGER::read(const char* path)
{
    if (!check(path != nullptr, "path != NULL", PLL_MANAGER_SOURCE)) {
        return false;
    }
    const PLL_MANAGER_TEXT directory(manager_join(path, ends_with_slash(path) ? "" : "/"));
    const PLL_MANAGER_TEXT name(manager_join(directory.get(), PATH_FILE_NAME));
    if (name.get() == nullptr) {
        return false;
    }
    PLL_INPUT_FILE file;
    if (!file.open(name.get())) {
        if (m_observer != nullptr) {
            tell_of_file(m_observer, PLL_FINDING::PATH_FILE_NOT_OPENED, name.get());
        }
        return false;
    }
    return read_path_lines(this, directory.get(), name.get(), &file);
}

PLL_FAMILY_INFO* PLL_MANAGER::read_family_info(const char* family)
{
    PLL_FAMILY_INFO* const record = create_family_info(family);
    if (!check(record != nullptr, "family_info != NULL", PLL_MANAGER_SOURCE)) {
        return nullptr;
    }
    if (record->m_number_of_parts > 0) {
        return record;
    }
    if (record->m_file_name == nullptr) {
        if (m_observer != nullptr) {
            tell_of_file(m_observer, PLL_FINDING::FAMILY_WITHOUT_FILE, record->m_name, record);
        }
        return nullptr;
    }
    return read_family_info_from_file(record->m_path, record->m_file_name) ? record : nullptr;
}
