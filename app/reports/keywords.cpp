#include "app/reports/reports.h"

#include "app/output/text_table.h"
#include "app/source/keywords.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include <algorithm>

namespace {

// Text of the document without the marks around its words.
std::string plain(std::string text)
{
    text.erase(std::remove(text.begin(), text.end(), '`'), text.end());
    return text;
}

std::string or_dash(const char* text)
{
    return *text == '\0' ? "-" : text;
}

std::string describe_keyword(const KEYWORD& keyword)
{
    std::string text = std::string(keyword.m_name) + "\n  operand: " + name_of(keyword.m_operand);
    if (*keyword.m_unit != '\0') {
        text += std::string("\n  unit:    ") + keyword.m_unit;
    }
    if (*keyword.m_range != '\0') {
        text += std::string("\n  range:   ") + keyword.m_range;
    }
    if (*keyword.m_default != '\0') {
        text += std::string("\n  default: ") + keyword.m_default;
    }
    return text + "\n  scope:   " + name_of(keyword.m_scope) +
           "\n  effect:  " + plain(keyword.m_effect) + "\n";
}

std::string list_in_table()
{
    TEXT_TABLE table({{"keyword", "", ALIGN::LEFT},
                      {"operand", "", ALIGN::LEFT},
                      {"unit", "", ALIGN::LEFT},
                      {"range", "", ALIGN::LEFT},
                      {"default", "", ALIGN::LEFT}});
    KEYWORD_SCOPE scope = KEYWORD_SCOPE::ANYWHERE;
    for (std::size_t i = 0; i < NUMBER_OF_KEYWORDS; ++i) {
        const KEYWORD& entry = get_keyword(i);
        if (i == 0 || entry.m_scope != scope) {
            scope = entry.m_scope;
            table.add_row({"", "", "", "", ""});
            table.add_row({name_of(scope), "", "", "", ""});
        }
        table.add_row({std::string("  ") + entry.m_name, name_of(entry.m_operand),
                       or_dash(entry.m_unit), or_dash(entry.m_range), or_dash(entry.m_default)});
    }
    std::string text;
    table.append_to(&text);
    return text;
}

RECORD_VALUE text_or_none(const char* text)
{
    return *text == '\0' ? RECORD_VALUE::none() : RECORD_VALUE::text(text);
}

void add_record(const KEYWORD& keyword, RECORD_LIST* records)
{
    records->add({RECORD_VALUE::text(keyword.m_name), RECORD_VALUE::text(name_of(keyword.m_scope)),
                  RECORD_VALUE::text(name_of(keyword.m_operand)), text_or_none(keyword.m_unit),
                  text_or_none(keyword.m_range), text_or_none(keyword.m_default),
                  RECORD_VALUE::text(plain(keyword.m_effect))});
}

}  // namespace

std::string report_keywords(const std::string& word, LIST_FORM form)
{
    const std::optional<std::size_t> found = find_keyword(word);
    if (!word.empty() && !found) {
        throw USAGE_ERROR("keywords",
                          "unknown keyword '" + word + "'" + suggest(word, list_keywords()));
    }
    if (form == LIST_FORM::TABLE) {
        return found ? describe_keyword(get_keyword(*found)) : list_in_table();
    }
    RECORD_LIST records({"keyword", "scope", "operand", "unit", "range", "default", "effect"});
    for (std::size_t i = 0; i < NUMBER_OF_KEYWORDS; ++i) {
        if (!found || *found == i) {
            add_record(get_keyword(i), &records);
        }
    }
    return records.write(form);
}
