// Reads family files: one statement a line, a keyword and its operands. '#' begins a comment, and
// what follows the last operand is ignored.
//
//   family NAME
//   pll ENHANCED_PLL           limits and components of this PLL type from here on
//   m_counter_max 512
//   speed_grade 6
//   part NAME                  timing limits of this part, in this PLL type, from here on
//   vco_min 1000
//
// A statement that nothing before it gives a place to is skipped, so that one file can serve
// several scopes. The first error ends the reading; what was stored before stays.
#include "database/files/family_file.h"

#include "gen_string.h"

#include "database/files/locale.h"
#include "database/files/table_file.h"
#include "database/memory.h"
#include "database/records.h"
#include "database/watch/line_watch.h"
#include "platform/report_error.h"

#include <cstring>
#include <exception>

namespace {

typedef MEM_ALLOCATOR<PLL_TYPE_BANDWIDTH_FILE_NAME*> TABLE_FILE_ALLOCATOR;

}  // namespace

PLL_OPERANDS::~PLL_OPERANDS()
{
    manager_release(m_numbers);
    manager_release(m_counters);
}

bool read_operands(const PLL_MANAGER& manager, PLL_OPERAND_KIND kind, char* line,
                   PLL_OPERANDS* operands)
{
    switch (kind) {
    case PLL_OPERAND_KIND::NAME:
        operands->m_name = manager.find_string_token(&line);
        return true;
    case PLL_OPERAND_KIND::WORD:
        operands->m_name = manager.find_unquoted_string_token(&line);
        return true;
    case PLL_OPERAND_KIND::NUMBER:
        return manager.find_number_token(&line, &operands->m_number);
    case PLL_OPERAND_KIND::POST_SCALE_NUMBER:
        return manager.find_number_token(&line, &operands->m_post_scale) &&
               manager.find_number_token(&line, &operands->m_number);
    case PLL_OPERAND_KIND::REAL:
        return manager.find_float_token(&line, &operands->m_real);
    case PLL_OPERAND_KIND::FLAG:
        operands->m_flag = manager.find_bool_token(&line);
        return true;
    case PLL_OPERAND_KIND::SORTED_NUMBERS:
        operands->m_count = manager.find_int_array_and_sort(&line, &operands->m_numbers);
        return operands->m_count > 0;
    case PLL_OPERAND_KIND::NUMBERS:
        operands->m_count = manager.find_int_array(&line, &operands->m_numbers);
        return operands->m_count > 0;
    case PLL_OPERAND_KIND::COUNTERS:
        operands->m_count = manager.find_counter_type_array(&line, &operands->m_counters);
        return operands->m_count > 0;
    }
    return false;
}

PLL_INCLUDE_STACK::PLL_INCLUDE_STACK() : m_depth(0), m_opened_files(0), m_names() {}

PLL_INCLUDE_STACK::~PLL_INCLUDE_STACK()
{
    for (int i = 0; i < m_depth; ++i) {
        manager_release(m_names[i]);
    }
}

bool PLL_INCLUDE_STACK::is_full() const
{
    return m_depth >= MAX_DEPTH || m_opened_files >= MAX_OPENED_FILES;
}

bool PLL_INCLUDE_STACK::open(char* name)
{
    if (!m_files[m_depth].open(name)) {
        manager_release(name);
        return false;
    }
    m_names[m_depth] = name;
    ++m_depth;
    ++m_opened_files;
    return true;
}

bool PLL_INCLUDE_STACK::read_line(char* line)
{
    while (m_depth > 0 && m_files[m_depth - 1].is_at_end()) {
        --m_depth;
        m_files[m_depth].close();
        manager_release(m_names[m_depth]);
    }
    if (m_depth == 0) {
        return false;
    }
    m_files[m_depth - 1].read_line(line);
    return true;
}

PLL_FAMILY_FILE_READER::PLL_FAMILY_FILE_READER(PLL_MANAGER* manager, const char* path)
    : m_manager(manager),
      m_family(nullptr),
      m_type(PLL_TYPE_MAX),
      m_speed_grade(nullptr),
      m_part(nullptr),
      m_reconfig(nullptr),
      m_path(path),
      m_file_name(nullptr),
      m_table_files(TABLE_FILE_ALLOCATOR(PLL_MANAGER_SOURCE))
{
}

PLL_FAMILY_FILE_READER::~PLL_FAMILY_FILE_READER()
{
    for (PLL_TYPE_BANDWIDTH_FILE_NAME* table_file : m_table_files) {
        manager_destroy(table_file);
    }
}

bool PLL_FAMILY_FILE_READER::read(const char* file_name)
{
    m_file_name = file_name;
    if (m_manager->get_observer() == nullptr) {
        return read_file(nullptr);
    }
    PLL_STATEMENT_WATCH watch(*this, m_manager->get_observer());
    return read_file(&watch);
}

bool PLL_FAMILY_FILE_READER::read_file(PLL_STATEMENT_WATCH* watch)
{
    bool is_out_of_memory = false;
    if (!open(m_file_name, &is_out_of_memory)) {
        if (watch != nullptr && !is_out_of_memory) {
            watch->tell_of_top_file(PLL_FINDING::FAMILY_FILE_NOT_OPENED, m_path, m_file_name);
        }
        return false;
    }
    return read_statements(watch) && finish_family();
}

bool PLL_FAMILY_FILE_READER::open(const char* name, bool* is_out_of_memory)
{
    char* const full_name = manager_join(m_path, "/", name);
    *is_out_of_memory = full_name == nullptr;
    return !*is_out_of_memory && m_files.open(full_name);
}

bool PLL_FAMILY_FILE_READER::is_reading(const char* path, const char* file_name) const
{
    return path != nullptr && std::strcmp(path, m_path) == 0 &&
           std::strcmp(file_name, m_file_name) == 0;
}

// A file without a statement is an error.
bool PLL_FAMILY_FILE_READER::read_statements(PLL_STATEMENT_WATCH* watch)
{
    bool has_statement = false;
    char line[PLL_LINE_SIZE];
    while (m_files.read_line(line)) {
        const bool is_watched = watch != nullptr && watch->begin(line);
        char* operands = line;
        const char* const keyword = m_manager->find_unquoted_string_token(&operands);
        if (keyword == nullptr) {
            continue;
        }
        const bool is_ok = read_statement(keyword, operands);
        if (is_watched) {
            watch->end(is_ok);
        }
        if (!is_ok) {
            return false;
        }
        has_statement = true;
    }
    if (!has_statement && watch != nullptr) {
        watch->tell_of_top_file(PLL_FINDING::NO_STATEMENT, m_path, m_file_name);
    }
    return has_statement;
}

bool PLL_FAMILY_FILE_READER::read_statement(const char* keyword, char* operands)
{
    const PLL_KEYWORD* const row = find_keyword(keyword);
    if (row == nullptr) {
        return false;
    }
    if (!is_in_scope(row->m_scope)) {
        return true;
    }
    PLL_OPERANDS values;
    return read_operands(*m_manager, row->m_kind, operands, &values) && row->m_set(*this, values);
}

bool PLL_FAMILY_FILE_READER::is_in_scope(PLL_SCOPE scope) const
{
    switch (scope) {
    case PLL_SCOPE::ANYWHERE:
        return true;
    case PLL_SCOPE::FAMILY:
        return m_family != nullptr;
    case PLL_SCOPE::PLL_TYPE:
        return m_family != nullptr && m_type != PLL_TYPE_MAX;
    case PLL_SCOPE::SPEED_GRADE:
        return m_family != nullptr && m_type != PLL_TYPE_MAX && m_speed_grade != nullptr;
    case PLL_SCOPE::PART:
        return m_part != nullptr;
    case PLL_SCOPE::RECONFIG:
        return m_reconfig != nullptr;
    }
    return false;
}

// Speed grades and tables go to the family that is current at the end of the file.
bool PLL_FAMILY_FILE_READER::finish_family()
{
    return m_family == nullptr ||
           (rebuild_listed_speed_grades(m_family) &&
            read_table_files(m_family, m_table_files, m_manager->get_observer()));
}

bool PLL_FAMILY_FILE_READER::set_table_file(const char* name)
{
    PLL_TYPE_BANDWIDTH_FILE_NAME* entry = nullptr;
    for (PLL_TYPE_BANDWIDTH_FILE_NAME* table_file : m_table_files) {
        if (table_file->m_type == m_type) {
            entry = table_file;
        }
    }
    try {
        MEM_STRING file_name(UNUSED_TABLE_FILE, MEM_ALLOCATOR<char>(PLL_MANAGER_SOURCE));
        if (gen_stricmp(name, UNUSED_TABLE_FILE) != 0) {
            file_name.assign(m_path).append("/").append(name);
        }
        if (entry == nullptr) {
            m_table_files.reserve(PLL_TYPE_MAX);
            entry = manager_create<PLL_TYPE_BANDWIDTH_FILE_NAME>(PLL_TYPE_BANDWIDTH_FILE_NAME{
                m_type, MEM_STRING(MEM_ALLOCATOR<char>(PLL_MANAGER_SOURCE))});
            if (entry == nullptr) {
                return false;
            }
            m_table_files.push_back(entry);
        }
        entry->m_file_name.swap(file_name);
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

bool PLL_MANAGER::read_family_info_from_file(const char* path, const char* file_name)
{
    if (!check(path != nullptr && file_name != nullptr, "path != NULL && file_name != NULL",
               PLL_MANAGER_SOURCE)) {
        return false;
    }
    const PLL_NUMERIC_LOCALE locale;
    if (!locale.is_set()) {
        return false;
    }
    PLL_FAMILY_FILE_READER reader(this, path);
    return reader.read(file_name);
}
