// How the text form of a sheet becomes records: tables of keys, each with the function that reads
// its value. For the files of this folder.
#pragma once

#include "advice/sheets/read_sheet.h"

#include <toml++/toml.h>

#include <string>
#include <string_view>
#include <vector>

namespace advice {

// Gathers what is wrong while one file is read.
class SHEET_READER
{
public:
    SHEET_READER(std::string file, std::vector<SHEET_PROBLEM>* problems)
        : m_file(std::move(file)), m_problems(problems)
    {
    }

    void report(const toml::node& node, const std::string& text);

    // Each reads a value; reports what is no such value and leaves the target as it was.
    void read(const toml::node& node, std::string* value);
    void read(const toml::node& node, int* value);
    void read(const toml::node& node, RATIONAL* value);  // a number, or "1000/3"
    void read(const toml::node& node, std::vector<std::string>* values);
    void read(const toml::node& node, std::vector<int>* values);

private:
    std::string m_file;
    std::vector<SHEET_PROBLEM>* m_problems;
};

// A key of a table and where its value goes.
template <class RECORD>
struct SHEET_KEY
{
    const char* m_name;
    void (*m_read)(SHEET_READER& reader, const toml::node& node, RECORD* record);
    bool m_required = false;
};

template <class RECORD, auto MEMBER>
void read_member(SHEET_READER& reader, const toml::node& node, RECORD* record)
{
    reader.read(node, &(record->*MEMBER));
}

// For a member that may be missing.
template <class RECORD, auto MEMBER>
void read_optional(SHEET_READER& reader, const toml::node& node, RECORD* record)
{
    (record->*MEMBER).emplace();
    reader.read(node, &*(record->*MEMBER));
}

// Reads a table by its keys; an unknown or a missing one is reported.
template <class RECORD, std::size_t COUNT>
void read_table(SHEET_READER& reader, const toml::table& table,
                const SHEET_KEY<RECORD> (&keys)[COUNT], RECORD* record)
{
    for (const auto& [name, node] : table) {
        bool known = false;
        for (const SHEET_KEY<RECORD>& key : keys) {
            if (name.str() == key.m_name) {
                key.m_read(reader, node, record);
                known = true;
            }
        }
        if (!known) {
            reader.report(node, "unknown key '" + std::string(name.str()) + "'");
        }
    }
    for (const SHEET_KEY<RECORD>& key : keys) {
        if (key.m_required && !table.contains(key.m_name)) {
            reader.report(table, "the key '" + std::string(key.m_name) + "' is missing");
        }
    }
}

// Reads an array of tables and appends their records.
template <class RECORD, std::size_t COUNT>
void read_tables(SHEET_READER& reader, const toml::node& node,
                 const SHEET_KEY<RECORD> (&keys)[COUNT], std::vector<RECORD>* records)
{
    const toml::array* array = node.as_array();
    if (array == nullptr) {
        reader.report(node, "an array of tables is needed");
        return;
    }
    for (const toml::node& entry : *array) {
        const toml::table* table = entry.as_table();
        if (table == nullptr) {
            reader.report(entry, "a table is needed");
            continue;
        }
        read_table(reader, *table, keys, &records->emplace_back());
    }
}

// The names of an enumeration, in its order.
template <class ENUM, std::size_t COUNT>
void read_name(SHEET_READER& reader, const toml::node& node, const char* const (&names)[COUNT],
               ENUM* value)
{
    std::string text;
    reader.read(node, &text);
    std::string legal;
    for (std::size_t i = 0; i < COUNT; ++i) {
        if (text == names[i]) {
            *value = static_cast<ENUM>(i);
            return;
        }
        legal += (i == 0 ? "" : ", ") + std::string(names[i]);
    }
    reader.report(node, "'" + text + "' is none of " + legal);
}

// Reads one table of [[figure]]; a record of it lies in the figure's file at `m_line`.
void read_figures(SHEET_READER& reader, const toml::node& node, std::vector<FIGURE>* figures);

// Tells what does not fit together in a sheet that was read.
void check_sheet(const SHEET& sheet, std::vector<SHEET_PROBLEM>* problems);

}  // namespace advice
