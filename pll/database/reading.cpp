// Reading a database: the readers of its files, and who watches them. Only here readers and watches
// meet; both know no more of each other than that somebody listens.
#include "gen_string.h"
#include "pll_manager.h"

#include "database/files/family_file.h"
#include "database/files/locale.h"
#include "database/files/path_file.h"
#include "database/files/table_file.h"
#include "database/memory.h"
#include "database/records.h"
#include "database/watch/path_watch.h"
#include "database/watch/statement_watch.h"
#include "database/watch/table_watch.h"
#include "database/watch/tell.h"
#include "platform/host_state.h"
#include "platform/report_error.h"

#include <cstring>

using namespace pll_internal;

namespace {

bool ends_with_slash(const char* path)
{
    const std::size_t length = std::strlen(path);
    return length > 0 && path[length - 1] == '/';
}

// `family` is null where there is no record of that name.
PLL_FINDING tell_of_family(PLL_READ_OBSERVER* observer, PLL_FINDING finding, const char* name,
                           const PLL_FAMILY_INFO* family)
{
    if (observer != nullptr) {
        PLL_READ_FINDING event;
        event.m_finding = finding;
        event.m_place.m_file = name;
        event.m_word = name;
        event.m_family = family;
        tell(observer, event);
    }
    return finding;
}

// Reads a table, or takes note that there is none.
PLL_FINDING read_table(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type, const char* file_name,
                       PLL_READ_BUDGET* budget, PLL_READ_OBSERVER* observer)
{
    PLL_BASIC_INFO* const info = &family->m_basic_infos[type];
    if (gen_stricmp(file_name, UNUSED_TABLE_FILE) == 0) {
        info->set_bandwidth_settings_table(0, nullptr);
        info->m_use_bandwidth_settings_table = false;
        return PLL_FINDING::NONE;
    }
    if (observer == nullptr) {
        return read_table_file(info, file_name, budget, nullptr);
    }
    PLL_TABLE_WATCH watch(observer, family, type, file_name);
    return read_table_file(info, file_name, budget, &watch);
}

// Reads every table, whatever becomes of the others; gives the first reason why one cannot be read.
PLL_FINDING read_tables(PLL_FAMILY_INFO* family, const PLL_TYPE_BANDWIDTH_FILE_LIST& files,
                        PLL_READ_BUDGET* budget, PLL_READ_OBSERVER* observer)
{
    PLL_FINDING first = PLL_FINDING::NONE;
    for (const PLL_TYPE_BANDWIDTH_FILE_NAME* file : files) {
        const PLL_FINDING reason =
            read_table(family, file->m_type, file->m_file_name.c_str(), budget, observer);
        first = first == PLL_FINDING::NONE ? reason : first;
    }
    return first;
}

// Reads the statements of a family file, then what belongs to the family that is current at its
// end: speed grades and tables.
PLL_FINDING read_family_file(PLL_FAMILY_FILE_READER* reader, const char* file_name,
                             PLL_READ_BUDGET* budget, PLL_LINE_LISTENER* listener,
                             PLL_READ_OBSERVER* observer)
{
    const PLL_FINDING reason = reader->read(file_name, listener);
    if (reason != PLL_FINDING::NONE || reader->m_family == nullptr) {
        return reason;
    }
    if (!rebuild_listed_speed_grades(reader->m_family)) {
        return tell_of_family(observer, PLL_FINDING::OUT_OF_MEMORY, reader->m_family->m_name,
                              reader->m_family);
    }
    return read_tables(reader->m_family, reader->table_files(), budget, observer);
}

// `directory` is that of the database; null where that is not known.
bool read_family_from(PLL_MANAGER* manager, const char* path, const char* file_name,
                      const char* directory)
{
    PLL_READ_OBSERVER* const observer = manager->get_observer();
    const PLL_NUMERIC_LOCALE locale;
    PLL_READ_BUDGET budget(manager->get_read_limits(), directory);
    PLL_FAMILY_FILE_READER reader(manager, path, &budget);
    PLL_STATEMENT_WATCH watch(reader, observer);
    PLL_LINE_LISTENER* const listener = observer == nullptr ? nullptr : &watch;
    if (!locale.is_set()) {
        if (listener != nullptr) {
            listener->hear_of_file({PLL_FINDING::OUT_OF_MEMORY}, file_name, 0);
        }
        return false;
    }
    return read_family_file(&reader, file_name, &budget, listener, observer) == PLL_FINDING::NONE;
}

}  // namespace

bool PLL_MANAGER::read(const char* path)
{
    const HOST_STATE state;
    if (!check(path != nullptr, "path != NULL", PLL_MANAGER_SOURCE)) {
        return false;
    }
    const PLL_MANAGER_TEXT directory(manager_join(path, ends_with_slash(path) ? "" : "/"));
    PLL_READ_BUDGET budget(m_read_limits, nullptr);
    if (m_observer == nullptr) {
        return read_path_file(this, directory.get(), &budget, nullptr) == PLL_FINDING::NONE;
    }
    PLL_PATH_WATCH watch(m_observer);
    return read_path_file(this, directory.get(), &budget, &watch) == PLL_FINDING::NONE;
}

PLL_FAMILY_INFO* PLL_MANAGER::read_family_info(const char* family)
{
    const HOST_STATE state;
    PLL_FAMILY_INFO* const record = create_family_info(family);
    if (!check(record != nullptr, "family_info != NULL", PLL_MANAGER_SOURCE)) {
        if (family != nullptr) {
            tell_of_family(m_observer, PLL_FINDING::OUT_OF_MEMORY, family, nullptr);
        }
        return nullptr;
    }
    if (record->m_number_of_parts > 0) {
        return record;
    }
    if (record->m_file_name == nullptr) {
        tell_of_family(m_observer, PLL_FINDING::FAMILY_WITHOUT_FILE, record->m_name, record);
        return nullptr;
    }
    const bool has_path =
        check(record->m_path != nullptr, "path != NULL && file_name != NULL", PLL_MANAGER_SOURCE);
    return has_path &&
                   read_family_from(this, record->m_path, record->m_file_name, record->m_database)
               ? record
               : nullptr;
}

bool PLL_MANAGER::read_family_info_from_file(const char* path, const char* file_name)
{
    const HOST_STATE state;
    if (!check(path != nullptr && file_name != nullptr, "path != NULL && file_name != NULL",
               PLL_MANAGER_SOURCE)) {
        return false;
    }
    return read_family_from(this, path, file_name, m_read_limits.m_is_confined ? path : nullptr);
}

bool pll_observe_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                               const char* file_name, PLL_READ_OBSERVER* observer)
{
    const HOST_STATE state;
    const bool has_family = check(family != nullptr, "family_info != 0", PLL_MANAGER_SOURCE);
    const bool has_name =
        check(file_name != nullptr, "bandwidth_settings_table_file_name != 0", PLL_MANAGER_SOURCE);
    PLL_READ_BUDGET budget(PLL_READ_LIMITS(), nullptr);
    return has_family && has_name && type >= ENHANCED_PLL && type < PLL_TYPE_MAX &&
           read_table(family, type, file_name, &budget, observer) == PLL_FINDING::NONE;
}

bool pll_read_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                            const char* file_name)
{
    const HOST_STATE state;
    return pll_observe_bandwidth_settings_table_file(family, type, file_name, nullptr);
}

bool pll_read_bandwidth_settings_table_files(PLL_FAMILY_INFO* family,
                                             PLL_TYPE_BANDWIDTH_FILE_LIST* files)
{
    const HOST_STATE state;
    if (!check(files != nullptr, "pll_type_bandwidth_file_list != 0", PLL_MANAGER_SOURCE)) {
        return false;
    }
    bool are_read = true;
    for (const PLL_TYPE_BANDWIDTH_FILE_NAME* file : *files) {
        are_read = check(file != nullptr, "pll_type_bandwidth_file != 0", PLL_MANAGER_SOURCE) &&
                   pll_read_bandwidth_settings_table_file(family, file->m_type,
                                                          file->m_file_name.c_str()) &&
                   are_read;
    }
    return are_read;
}
