// Aligned columns: two lines of heads, the second for the units, and rows of texts.
#pragma once

#include <string>
#include <vector>

enum class ALIGN
{
    LEFT,
    RIGHT
};

struct TABLE_COLUMN
{
    const char* m_head;
    const char* m_unit;  // empty: none
    ALIGN m_align;
};

class TEXT_TABLE
{
public:
    explicit TEXT_TABLE(std::vector<TABLE_COLUMN> columns) : m_columns(std::move(columns)) {}

    // As many cells as columns. What would control a terminal is made visible.
    void add_row(const std::vector<std::string>& cells);

    // Appends heads and rows; columns are as wide as their widest cell, lines carry no blanks at
    // their ends. The line of units is left out when all are empty.
    void append_to(std::string* text) const;

private:
    std::vector<TABLE_COLUMN> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};
