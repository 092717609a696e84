// The device that a request is for: chosen from a database by names, alone or together with devices
// that the design must fit too.
#pragma once

#include "advice/limits/limits.h"
#include "app/devices/database.h"

#include "pll_info.h"
#include "pll_manager.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

// What the command line holds, unread.
struct DEVICE_WORDS
{
    std::optional<std::string> m_database;
    std::optional<std::string> m_family;
    std::optional<std::string> m_type;
    std::optional<std::string> m_part;
    std::optional<std::string> m_speed_grade;
    std::vector<std::string> m_migrate;  // FAMILY:PART:GRADE, the last two optional
    bool m_is_confined = false;          // to the directory of the database
};

// One of the devices that a design must fit. Its limits are the widest of its records.
struct DEVICE_ENTRY
{
    PLL_MIGRATION_PART_INFO m_names;  // as the database spells them; null: every one
    int m_records;                    // that the names select
    PLL_INFO m_info;                  // of this device alone
};

class DEVICE
{
public:
    // Throws a USAGE_ERROR for names that the database does not know or that leave a choice, an
    // INPUT_ERROR for files that cannot be read.
    DEVICE(const std::string& directory, const DEVICE_WORDS& words);
    DEVICE(const DEVICE&) = delete;
    DEVICE& operator=(const DEVICE&) = delete;

    PLL_TYPE_ENUM get_type() const { return m_type; }
    // The device named first, then those of --migrate.
    const std::vector<DEVICE_ENTRY>& get_entries() const { return m_entries; }
    // The limits of all entries combined, and the counters and components of the family that the
    // library takes them from.
    const PLL_INFO& get_info() const { return m_info; }
    const PLL_BASIC_INFO& get_basic_info() const { return *m_info.m_basic_info; }
    const std::string& get_directory() const { return m_database.get_directory(); }
    const char* get_basic_family() const;
    int get_max_outputs() const;

    // Makes the limits and components those in force. Throws an INPUT_ERROR when the database
    // leaves out what no PLL can be set without.
    void give_to(advice::LIMITS* limits) const;

private:
    void add_entry(const PLL_FAMILY_INFO& family, const std::optional<std::string>& part,
                   const std::optional<std::string>& speed_grade, const std::string& argument);
    void add_migration(const std::string& argument, const std::string& words);
    PLL_QUERY query() const;

    // The library's calls take a changeable manager, though a device changes nothing once it is
    // chosen.
    mutable DATABASE m_database;
    PLL_TYPE_ENUM m_type;
    std::vector<DEVICE_ENTRY> m_entries;
    PLL_INFO m_info;
};

// The device of the words; null when they name none. A database in the environment counts only once
// another word names a device, so that it does not change requests that name none. Throws as DEVICE
// does.
std::unique_ptr<DEVICE> open_device(const DEVICE_WORDS& words);

// What to say of a database in the environment that no word makes use of, or that is not there.
std::optional<std::string> find_unused_database(const DEVICE_WORDS& words);

// The directory of the database; a USAGE_ERROR when neither the words nor the environment name one.
std::string require_database(const DEVICE_WORDS& words);

// Likewise for the device, where one is needed.
std::unique_ptr<DEVICE> require_device(const DEVICE_WORDS& words);

// The name of a PLL type as databases spell it.
const char* name_of_type(PLL_TYPE_ENUM type);

// The PLL types of which a family has parts.
std::vector<std::string_view> list_types(const PLL_FAMILY_INFO& family);

// "Sorrel, part SR20-6, speed grade 6", with the number of records where they are several.
std::string describe(const DEVICE_ENTRY& entry);

// Whether the database gave a limit; combined limits that nobody gave have either mark.
bool is_given(int limit);
