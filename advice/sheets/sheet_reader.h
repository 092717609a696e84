// How the text form of a sheet becomes records: tables of keys, each with the function that reads
// its value. For the files of this folder.
#pragma once

#include "advice/sheets/read_sheet.h"

#include <map>
#include <string>
#include <vector>

namespace advice {

// A value of the text form, with its place.
struct SHEET_NODE
{
    enum class KIND
    {
        TEXT,
        NUMBER,
        BOOLEAN,
        LIST,
        TABLE,
        OTHER  // dates, and numbers that do not fit
    };

    KIND m_kind = KIND::OTHER;
    std::string m_text;
    RATIONAL m_number;  // as it is written; of a truth value 0 or 1
    std::vector<SHEET_NODE> m_list;
    std::map<std::string, SHEET_NODE> m_table;
    int m_line = 0;
    int m_column = 0;

    // The value of a key; null when there is none.
    const SHEET_NODE* find(const std::string& key) const;
};

// The tree of a text in TOML. False when it is none, with the reason in `problems`.
bool parse_toml(const std::string& text, const std::string& path, SHEET_NODE* table,
                std::vector<SHEET_PROBLEM>* problems);

// Gathers what is wrong while one file is read.
class SHEET_READER
{
public:
    SHEET_READER(std::string file, std::vector<SHEET_PROBLEM>* problems)
        : m_file(std::move(file)), m_problems(problems)
    {
    }

    void report(const SHEET_NODE& node, const std::string& text);

    // Each reads a value; reports what is no such value and leaves the target as it was.
    void read(const SHEET_NODE& node, std::string* value);
    void read(const SHEET_NODE& node, int* value);
    void read(const SHEET_NODE& node, RATIONAL* value);  // a number, or "1000/3"
    void read(const SHEET_NODE& node, std::vector<std::string>* values);
    void read(const SHEET_NODE& node, std::vector<int>* values);

    // The tables of a list; reports what is none.
    std::vector<const SHEET_NODE*> list_tables(const SHEET_NODE& node);

private:
    std::string m_file;
    std::vector<SHEET_PROBLEM>* m_problems;
};

// A key of a table and where its value goes.
template <class RECORD>
struct SHEET_KEY
{
    const char* m_name;
    void (*m_read)(SHEET_READER& reader, const SHEET_NODE& node, RECORD* record);
    bool m_required = false;
};

template <class RECORD, auto MEMBER>
void read_member(SHEET_READER& reader, const SHEET_NODE& node, RECORD* record)
{
    reader.read(node, &(record->*MEMBER));
}

// For a member that may be missing.
template <class RECORD, auto MEMBER>
void read_optional(SHEET_READER& reader, const SHEET_NODE& node, RECORD* record)
{
    (record->*MEMBER).emplace();
    reader.read(node, &*(record->*MEMBER));
}

// Reads a table by its keys; an unknown or a missing one is reported.
template <class RECORD, std::size_t COUNT>
void read_table(SHEET_READER& reader, const SHEET_NODE& table,
                const SHEET_KEY<RECORD> (&keys)[COUNT], RECORD* record)
{
    for (const auto& [name, node] : table.m_table) {
        bool known = false;
        for (const SHEET_KEY<RECORD>& key : keys) {
            if (name == key.m_name) {
                key.m_read(reader, node, record);
                known = true;
            }
        }
        if (!known) {
            reader.report(node, "unknown key '" + name + "'");
        }
    }
    for (const SHEET_KEY<RECORD>& key : keys) {
        if (key.m_required && table.find(key.m_name) == nullptr) {
            reader.report(table, "the key '" + std::string(key.m_name) + "' is missing");
        }
    }
}

// Reads an array of tables and appends their records.
template <class RECORD, std::size_t COUNT>
void read_tables(SHEET_READER& reader, const SHEET_NODE& node,
                 const SHEET_KEY<RECORD> (&keys)[COUNT], std::vector<RECORD>* records)
{
    for (const SHEET_NODE* table : reader.list_tables(node)) {
        read_table(reader, *table, keys, &records->emplace_back());
    }
}

// The names of an enumeration, in its order.
template <class ENUM, std::size_t COUNT>
void read_name(SHEET_READER& reader, const SHEET_NODE& node, const char* const (&names)[COUNT],
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
void read_figures(SHEET_READER& reader, const SHEET_NODE& node, std::vector<FIGURE>* figures);

// Tells what does not fit together in a sheet that was read.
void check_sheet(const SHEET& sheet, std::vector<SHEET_PROBLEM>* problems);

}  // namespace advice
