// The devices that have sheets: a database folder whose families each have a sheet beside them.
#pragma once

#include "advice/sheets/read_sheet.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace advice {

// A device as a user names it: "xc7-plle2:-2".
struct DEVICE_CHOICE
{
    const SHEET* m_sheet = nullptr;  // of the catalog
    std::string m_grade;             // of the sheet
    bool m_grade_was_named = false;  // else it is the first
};

// Reads a sheet only when it is needed, and once.
class SHEET_CATALOG
{
public:
    // Of the sheets below a database folder: DIRECTORY/NAME/NAME.toml, in the order of their names.
    // A folder that does not exist has none.
    explicit SHEET_CATALOG(const std::string& directory);

    const std::string& get_directory() const { return m_directory; }
    const std::vector<std::string>& get_names() const { return m_names; }

    // All sheets that can be read.
    std::vector<const SHEET*> get_sheets() const;

    // Of the sheets that were needed so far and could not be read.
    const std::vector<SHEET_PROBLEM>& get_problems() const { return m_problems; }

    // Null when there is none or it cannot be read. Case does not matter.
    const SHEET* find(const std::string& name) const;

    // The device of a word; none with the reason in `problem`.
    std::optional<DEVICE_CHOICE> choose(const std::string& word, std::string* problem) const;

    // The sheets whose primitive has this name.
    std::vector<const SHEET*> find_primitive(const std::string& primitive) const;

private:
    std::string m_directory;
    std::vector<std::string> m_names;
    mutable std::map<std::string, std::unique_ptr<SHEET>> m_read;  // null: it cannot be
    mutable std::vector<SHEET_PROBLEM> m_problems;
};

// The first existing folder of: the variable PLL_DEVICES of the environment; beside the program,
// ../share/libpll/devices; data/devices of the source tree that a folder above the program
// belongs to. Empty when there is none.
std::string find_devices_directory();

}  // namespace advice
