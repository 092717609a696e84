#include "app/output/text_table.h"

#include "app/output/characters.h"

#include <algorithm>

namespace {

constexpr std::size_t GAP = 2;  // blanks between columns

std::size_t width_of(const std::string& cell)
{
    return count_characters(cell, cell.size());
}

void append_cell(std::string* line, const std::string& cell, std::size_t width, ALIGN align)
{
    const std::size_t fill = width - width_of(cell);
    if (align == ALIGN::RIGHT) {
        line->append(fill, ' ');
        line->append(cell);
    } else {
        line->append(cell);
        line->append(fill, ' ');
    }
}

void append_line(std::string* text, std::string line)
{
    line.erase(line.find_last_not_of(' ') + 1);
    text->append(line);
    text->push_back('\n');
}

}  // namespace

void TEXT_TABLE::add_row(const std::vector<std::string>& cells)
{
    std::vector<std::string>& row = m_rows.emplace_back();
    for (const std::string& cell : cells) {
        row.push_back(make_visible(cell));
    }
}

void TEXT_TABLE::append_to(std::string* text) const
{
    std::vector<std::vector<std::string>> lines(2);
    bool has_units = false;
    for (const TABLE_COLUMN& column : m_columns) {
        lines[0].emplace_back(column.m_head);
        lines[1].emplace_back(column.m_unit);
        has_units = has_units || *column.m_unit != '\0';
    }
    if (!has_units) {
        lines.pop_back();
    }
    lines.insert(lines.end(), m_rows.begin(), m_rows.end());

    std::vector<std::size_t> widths(m_columns.size());
    for (const std::vector<std::string>& cells : lines) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], width_of(cells[i]));
        }
    }
    for (const std::vector<std::string>& cells : lines) {
        std::string line;
        for (std::size_t i = 0; i < widths.size(); ++i) {
            line.append(i == 0 ? 0 : GAP, ' ');
            append_cell(&line, cells[i], widths[i], m_columns[i].m_align);
        }
        append_line(text, std::move(line));
    }
}
