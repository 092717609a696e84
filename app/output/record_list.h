// A list of records for other programs to read, as CSV or JSON.
#pragma once

#include <string>
#include <vector>

enum class LIST_FORM
{
    TABLE,
    CSV,
    JSON
};

class RECORD_VALUE
{
public:
    static RECORD_VALUE none() { return {KIND::NONE, ""}; }
    static RECORD_VALUE number(const std::string& digits) { return {KIND::NUMBER, digits}; }
    static RECORD_VALUE number(int value) { return {KIND::NUMBER, std::to_string(value)}; }
    // Rounded to `decimals`; nothing for what is not a number or infinite.
    static RECORD_VALUE number(double value, int decimals);
    static RECORD_VALUE text(const std::string& text) { return {KIND::TEXT, text}; }
    static RECORD_VALUE truth(bool value) { return {KIND::NUMBER, value ? "true" : "false"}; }

    // Nothing, a number as it is, or a text: quoted where it must be, its control characters made
    // visible, with an apostrophe before what a spreadsheet would take for a formula.
    std::string to_csv() const;
    std::string to_json() const;

private:
    enum class KIND
    {
        NONE,
        NUMBER,  // and truth: stands as it is
        TEXT
    };

    RECORD_VALUE(KIND kind, const std::string& text) : m_kind(kind), m_text(text) {}

    KIND m_kind;
    std::string m_text;
};

class RECORD_LIST
{
public:
    explicit RECORD_LIST(std::vector<std::string> keys) : m_keys(std::move(keys)) {}

    // As many values as keys.
    void add(std::vector<RECORD_VALUE> values) { m_records.push_back(std::move(values)); }

    // CSV: a line of keys and a line for each record. JSON: an array with an object for each
    // record. A table is for people, and not written here.
    std::string write(LIST_FORM form) const;

private:
    std::string to_csv() const;
    std::string to_json() const;

    std::vector<std::string> m_keys;
    std::vector<std::vector<RECORD_VALUE>> m_records;
};
