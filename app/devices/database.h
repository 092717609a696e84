// A device database in a directory.
#pragma once

#include "app/devices/read_faults.h"

#include "pll_manager.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The file of a database that names its families.
inline constexpr char PATH_FILE[] = "ddb_pll_path.txt";

// The variable of the environment that names the database when the command line does not.
inline constexpr const char* DATABASE_VARIABLE = "PLL_DATABASE";

// The directory of the database, if one is named. An empty word, which would be the root directory
// to the library, throws a USAGE_ERROR; an empty variable names none.
std::optional<std::string> find_database(const std::optional<std::string>& word);

class DATABASE
{
public:
    // Reads the path file. A database that is confined may have no file outside of its directory.
    // Throws an INPUT_ERROR.
    DATABASE(const std::string& directory, bool is_confined);
    DATABASE(const DATABASE&) = delete;
    DATABASE& operator=(const DATABASE&) = delete;

    PLL_MANAGER* get_manager() { return &m_manager; }
    const std::string& get_directory() const { return m_directory; }
    std::vector<std::string_view> list_families() const;

    // The family that the words of `argument` name, read; the only one when they name none. Throws
    // a USAGE_ERROR for an unknown name, an INPUT_ERROR for files that cannot be read.
    const PLL_FAMILY_INFO& find_family(const std::string& argument,
                                       const std::optional<std::string>& name);

private:
    // A family that failed once may count as read afterwards, so it is asked for only once. One
    // that lacks a file that is there, but cannot be read, would promise what it cannot keep.
    const PLL_FAMILY_INFO& read_family(std::string_view name);

    std::string m_directory;
    READ_FAULTS m_faults;
    PLL_MANAGER m_manager;
};

// "legal are A, B, C", at most as many as a message should hold.
std::string list_legal(const std::vector<std::string_view>& names);

// The one of `names` that is `name`, whatever its case. Throws a USAGE_ERROR that lists them and
// suggests the nearest; `place` says where the name was sought.
std::string_view find_name(const std::string& argument, const std::string& name,
                           const std::string& place, const std::vector<std::string_view>& names);
