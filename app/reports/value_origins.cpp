// Where the files of a database set each value of a PLL, and what that overwrote.
#include "app/reports/reports.h"

#include "app/lint/text_database.h"
#include "app/output/text_table.h"
#include "app/words/letter_case.h"

#include <nlohmann/json.hpp>

namespace {

typedef nlohmann::ordered_json JSON;

constexpr int INDENT = 2;
constexpr char INDENT_CHARACTER = ' ';

// A value that counts, and the statements that it overwrote, the latest first.
struct ORIGIN
{
    std::size_t m_keyword;
    int m_post_scale;
    std::vector<const SET_VALUE*> m_statements;  // empty: not set
};

bool is_shown(const KEYWORD& keyword, KEYWORD_SCOPE scope)
{
    return keyword.m_scope == scope && keyword.m_operand != OPERAND::WORD &&
           keyword.m_operand != OPERAND::COUNTERS;
}

// The values of a record by keyword, unset ones included.
std::vector<ORIGIN> find_origins(const SOURCE_MODEL& model, std::uint32_t record,
                                 KEYWORD_SCOPE scope)
{
    std::vector<ORIGIN> origins;
    for (std::size_t i = 0; i < NUMBER_OF_KEYWORDS; ++i) {
        if (!is_shown(get_keyword(i), scope)) {
            continue;
        }
        const bool is_scaled = get_keyword(i).m_operand == OPERAND::POST_SCALE_NUMBER;
        for (int p = is_scaled ? 1 : 0; p <= (is_scaled ? 2 : 0); ++p) {
            ORIGIN origin = {i, p, {}};
            for (std::uint32_t v = record == NO_RECORD ? NO_RECORD : model.record(record).m_last;
                 v != NO_RECORD; v = model.value(v).m_previous) {
                if (model.value(v).m_keyword == i && model.value(v).m_post_scale == p) {
                    origin.m_statements.push_back(&model.value(v));
                }
            }
            origins.push_back(std::move(origin));
        }
    }
    return origins;
}

std::string shown_keyword(const ORIGIN& origin)
{
    const std::string name = get_keyword(origin.m_keyword).m_name;
    return origin.m_post_scale == 0 ? name : name + " " + std::to_string(origin.m_post_scale);
}

// Lists as lists, flags as booleans, numbers as numbers.
JSON json_value(const SOURCE_MODEL& model, const SET_VALUE& value)
{
    switch (get_keyword(value.m_keyword).m_operand) {
    case OPERAND::FLAG:
        return value.m_value != 0.0;
    case OPERAND::LIST:
    case OPERAND::BIT_LIST:
        return model.list_of(value);
    case OPERAND::REAL:
        return value.m_value;
    case OPERAND::NUMBER:
    case OPERAND::POST_SCALE_NUMBER:
        return static_cast<int>(value.m_value);
    case OPERAND::NAME:
    case OPERAND::WORD:
    case OPERAND::COUNTERS:
        break;
    }
    return text_of_value(model, value);
}

// A record of the database and the words for it.
struct OWNER
{
    std::string m_title;
    const FAMILY_FILE* m_file;
    std::uint32_t m_record;
    KEYWORD_SCOPE m_scope;
};

std::vector<OWNER> find_owners(const TEXT_DATABASE& database, const DEVICE_ENTRY& entry,
                               PLL_TYPE_ENUM type)
{
    std::vector<OWNER> owners;
    const auto is_name = [](const char* wanted, std::string_view name) {
        return wanted == nullptr || equal_but_for_case(wanted, name);
    };
    for (const auto& file : database.files()) {
        const SOURCE_MODEL& model = file->model();
        for (const SOURCE_FAMILY& family : model.families()) {
            if (is_name(entry.m_names.m_family, family.m_name) &&
                family.m_types[type] != NO_RECORD) {
                owners.push_back(
                    {std::string(name_of_type(type)) + " of " + std::string(family.m_name),
                     file.get(), family.m_types[type], KEYWORD_SCOPE::TYPE});
            }
        }
        for (const SOURCE_PART& part : model.parts()) {
            if (part.m_type == type &&
                is_name(entry.m_names.m_family, model.families()[part.m_family].m_name) &&
                is_name(entry.m_names.m_part, part.m_name) &&
                is_name(entry.m_names.m_speed_grade, model.grades()[part.m_grade].m_name)) {
                owners.push_back({"part " + std::string(part.m_name), file.get(), part.m_record,
                                  KEYWORD_SCOPE::PART});
            }
        }
    }
    return owners;
}

std::string show_overwritten(const TEXT_DATABASE& database, const SOURCE_MODEL& model,
                             const ORIGIN& origin)
{
    std::string text;
    for (std::size_t i = 1; i < origin.m_statements.size(); ++i) {
        const SET_VALUE& value = *origin.m_statements[i];
        text += (text.empty() ? "" : "; ") + text_of_value(model, value) + " of " +
                database.show_place(value.m_place);
    }
    return text;
}

std::string write_table(const TEXT_DATABASE& database, const std::vector<OWNER>& owners)
{
    TEXT_TABLE table({{"keyword", "", ALIGN::LEFT},
                      {"value", "", ALIGN::LEFT},
                      {"unit", "", ALIGN::LEFT},
                      {"set in", "", ALIGN::LEFT},
                      {"overwrites", "", ALIGN::LEFT}});
    for (const OWNER& owner : owners) {
        const SOURCE_MODEL& model = owner.m_file->model();
        table.add_row({owner.m_title, "", "", "", ""});
        for (const ORIGIN& origin : find_origins(model, owner.m_record, owner.m_scope)) {
            const KEYWORD& keyword = get_keyword(origin.m_keyword);
            const bool is_set = !origin.m_statements.empty();
            table.add_row(
                {"  " + shown_keyword(origin),
                 is_set ? text_of_value(model, *origin.m_statements.front()) : keyword.m_default,
                 keyword.m_unit,
                 is_set ? database.show_place(origin.m_statements.front()->m_place)
                        : "unset, the default",
                 show_overwritten(database, model, origin)});
        }
    }
    std::string text;
    table.append_to(&text);
    return text;
}

JSON write_statement(const TEXT_DATABASE& database, const SOURCE_MODEL& model,
                     const SET_VALUE& value)
{
    return {{"value", json_value(model, value)},
            {"file", database.readings().name_of(value.m_place.m_reading)},
            {"line", value.m_place.m_line}};
}

std::string write_json(const TEXT_DATABASE& database, const std::vector<OWNER>& owners)
{
    JSON list = JSON::array();
    for (const OWNER& owner : owners) {
        const SOURCE_MODEL& model = owner.m_file->model();
        for (const ORIGIN& origin : find_origins(model, owner.m_record, owner.m_scope)) {
            const KEYWORD& keyword = get_keyword(origin.m_keyword);
            JSON entry = {{"owner", owner.m_title}, {"keyword", shown_keyword(origin)}};
            entry["unit"] = *keyword.m_unit == '\0' ? JSON() : JSON(keyword.m_unit);
            entry["is_set"] = !origin.m_statements.empty();
            if (!origin.m_statements.empty()) {
                entry.update(write_statement(database, model, *origin.m_statements.front()));
            }
            entry["overwrites"] = JSON::array();
            for (std::size_t i = 1; i < origin.m_statements.size(); ++i) {
                entry["overwrites"].push_back(
                    write_statement(database, model, *origin.m_statements[i]));
            }
            list.push_back(entry);
        }
    }
    return list.dump(INDENT, INDENT_CHARACTER, false, JSON::error_handler_t::replace) + "\n";
}

}  // namespace

std::string report_value_origins(const DEVICE& device, const std::string& directory, LIST_FORM form)
{
    const TEXT_DATABASE database(directory);
    std::vector<OWNER> owners;
    for (const DEVICE_ENTRY& entry : device.get_entries()) {
        for (const OWNER& owner : find_owners(database, entry, device.get_type())) {
            owners.push_back(owner);
        }
    }
    return form == LIST_FORM::TABLE ? write_table(database, owners) : write_json(database, owners);
}
