#include "app/lint/text_database.h"

#include "app/lint/path_file.h"
#include "app/lint/plausible.h"
#include "app/lint/table_file.h"
#include "app/output/input_error.h"
#include "app/output/input_file.h"
#include "app/words/letter_case.h"

#include <set>

namespace {

class NOTHING_EXPECTED : public FAMILY_NAMES
{
public:
    const std::vector<std::string_view>& expected() const override { return m_none; }
    bool has_other_file(std::string_view) const override { return false; }

private:
    std::vector<std::string_view> m_none;
};

const NOTHING_EXPECTED NOTHING;

class ROW_COLLECTOR : public TABLE_ROW_CHECK
{
public:
    void check_row(const TABLE_FORMAT& format, const TABLE_ROW& row, const OPERAND_WATCH&) override
    {
        const std::size_t first = format.m_has_capacitor ? 1 : 0;
        TEXT_ROW text;
        text.m_settings = "M " + short_number(row.m_values[first]) + ", " +
                          short_number(row.m_values[first + 1]) + " uA, " +
                          short_number(row.m_values[first + 2]) + " ohm";
        if (format.m_has_capacitor) {
            text.m_settings += ", " + short_number(row.m_values[0]) + " pF";
        }
        for (std::size_t i = first + 3; i < row.m_count; ++i) {
            text.m_results += (text.m_results.empty() ? "" : " ") + short_number(row.m_values[i]);
        }
        m_rows.push_back(std::move(text));
    }

    std::vector<TEXT_ROW> m_rows;
};

}  // namespace

std::string text_of_value(const SOURCE_MODEL& model, const SET_VALUE& value)
{
    switch (get_keyword(value.m_keyword).m_operand) {
    case OPERAND::NAME:
    case OPERAND::WORD:
        return value.m_count == 0 ? "" : std::string(model.text_of(value));
    case OPERAND::FLAG:
        return value.m_value == 0.0 ? "no" : "yes";
    case OPERAND::LIST:
    case OPERAND::BIT_LIST: {
        std::string text;
        for (const int number : model.list_of(value)) {
            text += (text.empty() ? "" : " ") + std::to_string(number);
        }
        return text;
    }
    case OPERAND::COUNTERS:
        return std::to_string(value.m_count) + " counters";
    case OPERAND::NUMBER:
    case OPERAND::REAL:
    case OPERAND::POST_SCALE_NUMBER:
        break;
    }
    return short_number(value.m_value);
}

TEXT_DATABASE::TEXT_DATABASE(const std::string& directory)
    : m_messages(&m_readings, LINT_FILTER(), nullptr), m_run{&m_readings, &m_messages, {}, {}, {}}
{
    PATH_FILE_READER path_file(&m_readings, &m_messages);
    if (!path_file.read(directory)) {
        throw INPUT_ERROR("cannot read a database from " + directory);
    }
    std::set<std::string> known;
    for (const PATH_FAMILY& family : path_file.families()) {
        const std::string folder = tidy_path(directory + "/" + std::string(family.m_folder));
        const std::string name = tidy_path(folder + "/" + std::string(family.m_file));
        std::string reason;
        std::optional<std::string> text;
        if (family.m_has_file && known.insert(name).second) {
            text = read_text(name, &reason);
        }
        if (text) {
            m_files.push_back(std::make_unique<FAMILY_FILE>(&m_run, &NOTHING, folder));
            m_files.back()->read(m_readings.add(name), std::move(*text));
        }
    }
}

std::vector<TEXT_ROW> TEXT_DATABASE::read_table(const FAMILY_FILE& file, PLL_TYPE_ENUM type)
{
    const NAMED_TABLE& table = file.statements().tables()[type];
    std::string reason;
    std::optional<std::string> text;
    const bool has_table = !table.m_name.empty() && !equal_but_for_case(table.m_name, "unused");
    const std::string name = tidy_path(file.folder() + "/" + table.m_name);
    if (has_table) {
        text = read_text(name, &reason);
    }
    ROW_COLLECTOR rows;
    if (text) {
        const std::uint32_t reading =
            m_readings.add_named(name, READING_KIND::TABLE, table.m_place);
        TABLE_FILE(reading, &m_messages, &rows).read(*text);
    }
    return std::move(rows.m_rows);
}

std::string TEXT_DATABASE::show_place(const SOURCE_PLACE& place) const
{
    return m_readings.name_of(place.m_reading) + ":" + std::to_string(place.m_line);
}
