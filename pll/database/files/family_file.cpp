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
//
// Whoever finds something wrong tells the listener of it and returns it; nobody looks at a line a
// second time to find out. Without a listener the telling is one test of a pointer.
#include "database/files/family_file.h"

#include "gen_string.h"

#include "database/files/table_file.h"
#include "database/memory.h"

#include <cstring>
#include <exception>

namespace pll_internal {

namespace {

typedef MEM_ALLOCATOR<PLL_TYPE_BANDWIDTH_FILE_NAME*> TABLE_FILE_ALLOCATOR;

// The first selection that is missing on the way to a scope.
PLL_SELECTION missing_selection(const PLL_FAMILY_FILE_READER& reader, PLL_SCOPE scope)
{
    switch (scope) {
    case PLL_SCOPE::ANYWHERE:
        break;
    case PLL_SCOPE::FAMILY:
    case PLL_SCOPE::PLL_TYPE:
    case PLL_SCOPE::SPEED_GRADE:
        return reader.m_family == nullptr      ? PLL_SELECTION::FAMILY
               : reader.m_type == PLL_TYPE_MAX ? PLL_SELECTION::PLL_TYPE
                                               : PLL_SELECTION::SPEED_GRADE;
    case PLL_SCOPE::PART:
        return PLL_SELECTION::PART;
    case PLL_SCOPE::RECONFIG:
        return PLL_SELECTION::RECONFIG;
    }
    return PLL_SELECTION::NOTHING;
}

}  // namespace

PLL_FAMILY_FILE_READER::PLL_FAMILY_FILE_READER(PLL_MANAGER* manager, const char* path,
                                               PLL_READ_BUDGET* budget)
    : m_manager(manager),
      m_family(nullptr),
      m_type(PLL_TYPE_MAX),
      m_speed_grade(nullptr),
      m_part(nullptr),
      m_reconfig(nullptr),
      m_budget(budget),
      m_listener(nullptr),
      m_words(nullptr, nullptr),
      m_path(path),
      m_file_name(nullptr),
      m_foreign_family(nullptr),
      m_table_files(TABLE_FILE_ALLOCATOR(PLL_MANAGER_SOURCE))
{
}

PLL_FAMILY_FILE_READER::~PLL_FAMILY_FILE_READER()
{
    for (PLL_TYPE_BANDWIDTH_FILE_NAME* table_file : m_table_files) {
        manager_destroy(table_file);
    }
}

PLL_FINDING PLL_FAMILY_FILE_READER::read(const char* file_name, PLL_LINE_LISTENER* listener)
{
    m_file_name = file_name;
    m_listener = listener;
    const PLL_FINDING reason = open_top_file(file_name);
    return reason == PLL_FINDING::NONE ? read_statements() : reason;
}

PLL_FINDING PLL_FAMILY_FILE_READER::open_top_file(const char* file_name)
{
    char* const full_name = manager_join(m_path, "/", file_name);
    if (full_name == nullptr) {
        return tell_of_file({PLL_FINDING::OUT_OF_MEMORY});
    }
    const PLL_FINDING place = m_budget->judge_place(full_name, m_listener != nullptr);
    if (place != PLL_FINDING::NONE) {
        tell_of_file({place});
    }
    if (place == PLL_FINDING::FILE_REFUSED) {
        manager_release(full_name);
        return place;
    }
    const int error = m_files.open(full_name, m_budget, place != PLL_FINDING::NONE);
    return error == 0 ? PLL_FINDING::NONE
                      : tell_of_file(fault_of_system(PLL_FINDING::FAMILY_FILE_NOT_OPENED, error));
}

// Of the file at the bottom, as a whole. Its full name is made for the telling alone.
PLL_FINDING PLL_FAMILY_FILE_READER::tell_of_file(const PLL_FAULT& fault)
{
    if (m_listener != nullptr) {
        const PLL_MANAGER_TEXT name(manager_join(m_path, "/", m_file_name));
        m_listener->hear_of_file(fault, name.get() == nullptr ? m_file_name : name.get(), 0);
    }
    return fault.m_finding;
}

// A file without a statement is an error.
PLL_FINDING PLL_FAMILY_FILE_READER::read_statements()
{
    bool has_statement = false;
    char line[PLL_LINE_SIZE];
    while (m_files.read_line(line)) {
        const PLL_FINDING reason = read_line(line, &has_statement);
        if (pll_is_read_error(reason)) {
            return reason;
        }
    }
    if (const int error = m_files.get_error(); error != 0) {
        const PLL_FAULT fault = fault_of_reading(error, *m_budget);
        if (m_listener != nullptr) {
            m_listener->hear_of_file(fault, m_files.current_name(),
                                     m_files.current().line_number() + 1);
        }
        return fault.m_finding;
    }
    return has_statement ? PLL_FINDING::NONE : tell_of_file({PLL_FINDING::NO_STATEMENT});
}

PLL_FINDING PLL_FAMILY_FILE_READER::read_line(char* line, bool* has_statement)
{
    if (m_listener != nullptr) {
        m_listener->begin_line(line, m_files.current(), m_files.current_name());
    }
    m_words = PLL_WORDS(line, m_listener);
    m_statement.m_word = m_words.next_word();
    if (m_statement.m_word == nullptr) {
        return PLL_FINDING::NONE;
    }
    *has_statement = true;
    if (!m_budget->take_statement()) {
        return m_words.tell_limit(PLL_FINDING::TOO_MANY_STATEMENTS, m_statement.m_word, 0,
                                  m_budget->limits().m_statements);
    }
    const PLL_FINDING reason = read_statement();
    if (m_listener != nullptr) {
        m_listener->end_line(reason, &m_words);
    }
    return reason;
}

PLL_FINDING PLL_FAMILY_FILE_READER::read_statement()
{
    const PLL_KEYWORD* const keyword = find_keyword(m_statement.m_word);
    m_statement.m_keyword = keyword;
    m_statement.m_is_in_scope = keyword != nullptr && is_in_scope(keyword->m_scope);
    if (keyword == nullptr) {
        return m_words.tell(PLL_FINDING::UNKNOWN_KEYWORD, m_statement.m_word);
    }
    if (!m_statement.m_is_in_scope) {
        return refuse_scope(keyword->m_scope);
    }
    PLL_OPERANDS operands;
    const PLL_FINDING reason = pll_read_operands(keyword->m_kind, &m_words, &operands);
    return reason == PLL_FINDING::NONE ? keyword->m_set(*this, operands) : reason;
}

PLL_FINDING PLL_FAMILY_FILE_READER::refuse_scope(PLL_SCOPE scope)
{
    PLL_FAULT fault{PLL_FINDING::OUT_OF_SCOPE, m_statement.m_word};
    if (m_listener != nullptr) {
        fault.m_needed = pll_keyword_of(missing_selection(*this, scope));
    }
    return m_words.tell_fault(fault);
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

// The name is read after the room on the stack is looked at: a full stack refuses any include.
PLL_FINDING PLL_FAMILY_FILE_READER::include(const char* name)
{
    if (const PLL_FINDING refusal = m_files.refuse_file(); refusal != PLL_FINDING::NONE) {
        return m_words.tell(refusal, name);
    }
    if (name == nullptr) {
        return m_words.tell(PLL_FINDING::INCLUDE_NOT_OPENED, name);
    }
    char* const full_name = manager_join(m_path, "/", name);
    if (full_name == nullptr) {
        return PLL_FINDING::OUT_OF_MEMORY;
    }
    const PLL_FINDING place = m_budget->judge_place(full_name, m_listener != nullptr);
    if (place != PLL_FINDING::NONE) {
        m_words.tell(place, name);
    }
    if (place == PLL_FINDING::FILE_REFUSED) {
        manager_release(full_name);
        return place;
    }
    PLL_FAULT fault{PLL_FINDING::INCLUDE_NOT_OPENED, name};
    fault.m_system_error = m_files.open(full_name, m_budget, place != PLL_FINDING::NONE);
    return fault.m_system_error == 0 ? PLL_FINDING::NONE : m_words.tell_fault(fault);
}

// A part may be known already, in another speed grade, and its family may have another file.
void PLL_FAMILY_FILE_READER::tell_of_part(const char* name)
{
    if (m_listener == nullptr) {
        return;
    }
    if (gen_stricmp(m_part->m_speed_grade, m_speed_grade) != 0) {
        m_words.tell(PLL_FINDING::PART_IN_OTHER_GRADE, name);
    }
    if (m_family->m_file_name != nullptr && m_family != m_foreign_family &&
        !is_of_this_file(*m_family)) {
        m_foreign_family = m_family;
        m_words.tell(PLL_FINDING::FOREIGN_FAMILY, name);
    }
}

bool PLL_FAMILY_FILE_READER::is_of_this_file(const PLL_FAMILY_INFO& family) const
{
    return family.m_path != nullptr && std::strcmp(family.m_path, m_path) == 0 &&
           std::strcmp(family.m_file_name, m_file_name) == 0;
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

}  // namespace pll_internal
