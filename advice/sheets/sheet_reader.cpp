#include "advice/sheets/sheet_reader.h"

#include <limits>

namespace advice {

std::string to_text(const SHEET_PROBLEM& problem)
{
    std::string text = problem.m_file;
    if (problem.m_line > 0) {
        text += ":" + std::to_string(problem.m_line);
    }
    if (problem.m_column > 0) {
        text += ":" + std::to_string(problem.m_column);
    }
    return text + ": " + problem.m_text;
}

const SHEET_NODE* SHEET_NODE::find(const std::string& key) const
{
    const auto found = m_table.find(key);
    return found == m_table.end() ? nullptr : &found->second;
}

void SHEET_READER::report(const SHEET_NODE& node, const std::string& text)
{
    m_problems->push_back({m_file, node.m_line, node.m_column, text});
}

void SHEET_READER::read(const SHEET_NODE& node, std::string* value)
{
    if (node.m_kind == SHEET_NODE::KIND::TEXT) {
        *value = node.m_text;
        return;
    }
    report(node, "a text in quotes is needed");
}

void SHEET_READER::read(const SHEET_NODE& node, int* value)
{
    const RATIONAL largest(std::numeric_limits<int>::max());
    if (node.m_kind == SHEET_NODE::KIND::NUMBER && node.m_number.is_integer() &&
        RATIONAL(0) <= node.m_number && node.m_number <= largest) {
        *value = static_cast<int>(node.m_number.numerator());
        return;
    }
    report(node, "a whole number from 0 to 2147483647 is needed");
}

void SHEET_READER::read(const SHEET_NODE& node, RATIONAL* value)
{
    if (node.m_kind == SHEET_NODE::KIND::NUMBER) {
        *value = node.m_number;
        return;
    }
    if (node.m_kind == SHEET_NODE::KIND::TEXT) {
        if (const std::optional<RATIONAL> number = RATIONAL::parse(node.m_text)) {
            *value = *number;
            return;
        }
    }
    report(node, "a number is needed, such as 3.125 or \"1000/3\"");
}

void SHEET_READER::read(const SHEET_NODE& node, std::vector<std::string>* values)
{
    if (node.m_kind != SHEET_NODE::KIND::LIST) {
        report(node, "a list of texts is needed");
        return;
    }
    for (const SHEET_NODE& entry : node.m_list) {
        read(entry, &values->emplace_back());
    }
}

void SHEET_READER::read(const SHEET_NODE& node, std::vector<int>* values)
{
    if (node.m_kind != SHEET_NODE::KIND::LIST) {
        report(node, "a list of whole numbers is needed");
        return;
    }
    for (const SHEET_NODE& entry : node.m_list) {
        read(entry, &values->emplace_back());
    }
}

std::vector<const SHEET_NODE*> SHEET_READER::list_tables(const SHEET_NODE& node)
{
    std::vector<const SHEET_NODE*> tables;
    if (node.m_kind != SHEET_NODE::KIND::LIST) {
        report(node, "an array of tables is needed");
        return tables;
    }
    for (const SHEET_NODE& entry : node.m_list) {
        if (entry.m_kind == SHEET_NODE::KIND::TABLE) {
            tables.push_back(&entry);
        } else {
            report(entry, "a table is needed");
        }
    }
    return tables;
}

}  // namespace advice
