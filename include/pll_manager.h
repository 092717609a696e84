// The device database in memory: families, parts and speed grades, the query that selects from it,
// and the readers of its files. Names are compared without regard to case, copied when kept, and
// owned by the manager; pointers handed out live as long as it does.
#pragma once

#include "mem_alloc_sys.h"
#include "pll_export.h"
#include "pll_info.h"

#include <cstddef>
#include <iosfwd>

class PLL;
class PLL_MANAGER;
class PLL_READ_OBSERVER;

namespace pll_internal {
class PLL_NAME_INDEX;
}  // namespace pll_internal

// One part in one PLL type.
class PLL_API PLL_PART_INFO
{
public:
    PLL_PART_INFO();

    char* m_name;               // owned by the manager
    const char* m_speed_grade;  // the family's name of it
    bool m_not_listed;
    PLL_TYPE_ENUM m_type;
    PLL_TIMING_INFO m_timing_info;
};

// One device family. Owns all that it points to.
class PLL_API PLL_FAMILY_INFO
{
public:
    PLL_FAMILY_INFO();
    ~PLL_FAMILY_INFO();
    PLL_FAMILY_INFO(const PLL_FAMILY_INFO&) = delete;
    PLL_FAMILY_INFO& operator=(const PLL_FAMILY_INFO&) = delete;

    char* m_name;
    char* m_path;       // directory of its files; null until a path file names it
    char* m_file_name;  // null until a path file names it
    char* m_database;   // directory of the path file that names it, null until one does
    int m_number_of_parts;
    PLL_PART_INFO** m_parts;  // in creation order
    int m_number_of_speed_grades;
    char** m_speed_grades;  // in creation order
    int m_number_of_listed_speed_grades;
    const char** m_listed_speed_grades;  // names of m_speed_grades
    PLL_BASIC_INFO m_basic_infos[PLL_TYPE_MAX];

private:
    friend class PLL_MANAGER;

    // Both owned, null until something was found or created by name.
    pll_internal::PLL_NAME_INDEX* m_part_index;
    pll_internal::PLL_NAME_INDEX* m_speed_grade_index;
};

// One device that a design must also fit. The names are borrowed.
struct PLL_MIGRATION_PART_INFO
{
    const char* m_family;
    const char* m_part;         // null: every part
    const char* m_speed_grade;  // null: every speed grade
};

class PLL_API PLL_MIGRATION_INFO
{
public:
    PLL_MIGRATION_INFO();

    MEM_VECTOR<PLL_MIGRATION_PART_INFO> m_parts;  // in the order added
};

// Selects devices of the database. The names are borrowed and must outlive the query.
class PLL_API PLL_QUERY
{
public:
    PLL_QUERY();
    ~PLL_QUERY();
    PLL_QUERY(const PLL_QUERY& other);
    PLL_QUERY& operator=(const PLL_QUERY& other);

    // Adds a device that the design must also fit. A null family is an internal error and is added
    // all the same.
    void add_migration_part(const char* family, const char* part, const char* speed_grade);

    unsigned get_number_of_migration_parts() const;

    // The names of a migration part; three nulls after an internal error for a bad index.
    void get_migration_part_info(unsigned index, const char** family, const char** part,
                                 const char** speed_grade) const;

    const char* m_family;
    PLL_TYPE_ENUM m_type;
    const char* m_part;                    // null: every part
    const char* m_speed_grade;             // null: every speed grade
    PLL_MIGRATION_INFO* m_migration_info;  // owned
};

// The order of migration parts, by bandwidth table size, family, part and speed grade. Entries that
// are equal in all of them each go before the other: use it only with the manager's own sort.
class PLL_API PLL_MIGRATION_PART_INFO_COMPARE
{
public:
    PLL_MIGRATION_PART_INFO_COMPARE(PLL_MANAGER* manager, PLL_TYPE_ENUM type);

    // True when `a` goes before `b`. Loads both families when their names differ.
    bool operator()(const PLL_MIGRATION_PART_INFO& a, const PLL_MIGRATION_PART_INFO& b) const;

    PLL_MANAGER* m_manager;  // not owned
    PLL_TYPE_ENUM m_type;
};

// What reading a family may take, for hosts that read databases which they did not write: the file,
// all that it includes and its tables together. Numbers of 0 or below are no limit, which is how
// the library reads unless it is told otherwise. Beyond a limit reading fails, as at an error in
// the file; observers hear which limit it was. See docs/limits.md for what each of them costs.
struct PLL_READ_LIMITS
{
    long long m_bytes = 0;         // also of a path file
    long long m_statements = 0;    // lines that hold something
    long long m_table_groups = 0;  // one for each M that the counters of a PLL type allow

    // Files outside of the database's directory are refused, links followed. That is the directory
    // of the path file, or of a family file that is read by its name.
    bool m_is_confined = false;
};

class PLL_API PLL_MANAGER
{
public:
    PLL_MANAGER();
    virtual ~PLL_MANAGER();
    PLL_MANAGER(const PLL_MANAGER&) = delete;
    PLL_MANAGER& operator=(const PLL_MANAGER&) = delete;

    // Reads the path file of a database directory. True when it names at least one family.
    bool read(const char* path);

    // The record of a family, its file read on first use; created when the name is new. Null when
    // it has no file or the file fails.
    PLL_FAMILY_INFO* read_family_info(const char* family);

    // Reads one family file and what it includes; false at its first error.
    bool read_family_info_from_file(const char* path, const char* file_name);

    int get_number_of_families() const;
    const char* get_family(int index) const;
    int get_number_of_speed_grades(const char* family);
    const char* get_speed_grade(const char* family, int index);
    int get_number_of_listed_speed_grades(const char* family);
    const char* get_listed_speed_grade(const char* family, int index);

    // Find or append. Null when memory is exhausted or an argument is null.
    PLL_FAMILY_INFO* create_family_info(const char* name);
    const char* create_speed_grade(PLL_FAMILY_INFO* family, const char* speed_grade);
    PLL_PART_INFO* create_part_info(PLL_FAMILY_INFO* family, const char* part,
                                    const char* speed_grade, PLL_TYPE_ENUM type);

    // Rebuilds the list of speed grades that have a listed part.
    void create_listed_speed_grades(PLL_FAMILY_INFO* family);

    // Combines the limits of the queried devices: widest over the records of one entry, narrowest
    // over the entries. False when a family cannot be read or nothing matches. After false the
    // record's m_basic_info may already be that of the queried family; its m_timing_info is as it
    // was.
    bool init_pll_info(PLL_INFO* info, const PLL_QUERY& query);

    // Likewise, and gives the limits and components to `pll`; unchanged when false.
    bool init_pll(PLL* pll, const PLL_QUERY& query);

    // Token readers: `line` is the caller's cursor into a writable buffer, in which tokens are
    // ended by NULs. Arrays that they hand out are the caller's and are released with
    // MEM_MANAGER::delete_wrapper(array, "pll_manager").
    char* find_unquoted_string_token(char** line) const;
    char* find_string_token(char** line) const;
    bool find_number_token(char** line, int* value) const;
    bool find_float_token(char** line, double* value) const;
    int find_int_array(char** line, int** array) const;
    int find_int_array_and_sort(char** line, int** array) const;
    static int compact_int_array_from_bits_array_and_sort(int count, const int* bits_array,
                                                          int** array);
    int find_counter_type_array(char** line, CDB_PLL_COUNTER_TYPE_ENUM** array) const;
    bool find_bool_token(char** line) const;
    PLL_TYPE_ENUM find_pll_type_enum(const char* name) const;
    PLL_RECONFIG_TYPE_ENUM find_reconfig_type_enum(const char* name) const;
    CDB_PLL_COUNTER_TYPE_ENUM find_counter_type_enum(const char* name) const;

    // From now on `observer`, which must outlive the reading, hears what the readers see; null: no
    // one does. See pll_observer.h.
    void set_observer(PLL_READ_OBSERVER* observer);
    PLL_READ_OBSERVER* get_observer() const;

    // Limits of every later reading. What was read before stays.
    void set_read_limits(const PLL_READ_LIMITS& limits);
    const PLL_READ_LIMITS& get_read_limits() const;

    int m_number_of_families;
    PLL_FAMILY_INFO** m_families;  // owned, in creation order

    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* pointer) noexcept;

private:
    pll_internal::PLL_NAME_INDEX* m_family_index;  // owned, null until a family was looked up
    PLL_READ_OBSERVER* m_observer;                 // not owned
    PLL_READ_LIMITS m_read_limits;
};

// Reads the table file of every entry into the family; false when one of them fails.
PLL_API bool pll_read_bandwidth_settings_table_files(PLL_FAMILY_INFO* family,
                                                     PLL_TYPE_BANDWIDTH_FILE_LIST* files);

// Reads one table file into the family's record of `type`.
PLL_API bool pll_read_bandwidth_settings_table_file(PLL_FAMILY_INFO* family, PLL_TYPE_ENUM type,
                                                    const char* file_name);

// Read one number, or the format word, which ends at the first blank. True when the stream is still
// good afterwards.
PLL_API bool pll_read_field(std::istream& stream, int& value);
PLL_API bool pll_read_field(std::istream& stream, double& value);
PLL_API bool pll_read_field(std::istream& stream, MEM_STRING& value);
