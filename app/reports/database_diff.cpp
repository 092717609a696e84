// Two databases by what they say: every value, part and table row, wherever it stands.
#include "app/reports/reports.h"

#include "app/lint/text_database.h"
#include "app/output/text_table.h"
#include "app/words/letter_case.h"

#include <map>
#include <tuple>

namespace {

// What a value is about. Parts and rows are values of their own: a part has its speed grade, a row
// has its results.
struct SUBJECT
{
    std::string m_family;
    std::string m_type;
    std::string m_part;  // empty: the type
    std::string m_what;  // a keyword, "part" or the settings of a row

    bool operator<(const SUBJECT& other) const
    {
        return std::tie(m_family, m_type, m_part, m_what) <
               std::tie(other.m_family, other.m_type, other.m_part, other.m_what);
    }
};

typedef std::multimap<SUBJECT, std::string> CONTENTS;

std::string shown_keyword(const SET_VALUE& value)
{
    std::string text = get_keyword(value.m_keyword).m_name;
    return value.m_post_scale == 0 ? text : text + " " + std::to_string(value.m_post_scale);
}

// The last statements of a record.
void add_values(const SOURCE_MODEL& model, std::uint32_t record, const SUBJECT& owner,
                CONTENTS* contents)
{
    for (std::uint32_t i = record == NO_RECORD ? NO_RECORD : model.record(record).m_last;
         i != NO_RECORD; i = model.value(i).m_previous) {
        SUBJECT subject = owner;
        subject.m_what = shown_keyword(model.value(i));
        if (contents->count(subject) == 0) {
            contents->emplace(subject, text_of_value(model, model.value(i)));
        }
    }
}

void add_file(TEXT_DATABASE* database, const FAMILY_FILE& file, CONTENTS* contents)
{
    const SOURCE_MODEL& model = file.model();
    for (std::size_t i = 0; i < model.families().size(); ++i) {
        const SOURCE_FAMILY& family = model.families()[i];
        for (int j = ENHANCED_PLL; j < PLL_TYPE_MAX; ++j) {
            const auto type = static_cast<PLL_TYPE_ENUM>(j);
            const SUBJECT owner = {std::string(family.m_name), name_of_type(type), "", ""};
            add_values(model, family.m_types[type], owner, contents);
            if (file.statements().get_family() == i) {
                for (const TEXT_ROW& row : database->read_table(file, type)) {
                    SUBJECT subject = owner;
                    subject.m_what = "row " + row.m_settings;
                    contents->emplace(subject, row.m_results.empty() ? "listed" : row.m_results);
                }
            }
        }
    }
    for (const SOURCE_PART& part : model.parts()) {
        SUBJECT owner = {std::string(model.families()[part.m_family].m_name),
                         name_of_type(part.m_type), std::string(part.m_name), ""};
        add_values(model, part.m_record, owner, contents);
        owner.m_what = "part";
        contents->emplace(owner, "speed grade " + std::string(model.grades()[part.m_grade].m_name));
    }
}

CONTENTS read_contents(const std::string& directory)
{
    TEXT_DATABASE database(directory);
    CONTENTS contents;
    for (const auto& file : database.files()) {
        add_file(&database, *file, &contents);
    }
    return contents;
}

struct DIFFERENCE
{
    SUBJECT m_subject;
    std::string m_old;  // empty: not there
    std::string m_new;
};

std::vector<DIFFERENCE> compare(const CONTENTS& before, const CONTENTS& after)
{
    std::vector<DIFFERENCE> differences;
    auto a = before.begin();
    auto b = after.begin();
    while (a != before.end() || b != after.end()) {
        const bool is_old = b == after.end() || (a != before.end() && a->first < b->first);
        const bool is_new = a == before.end() || (!is_old && b->first < a->first);
        if (is_old) {
            differences.push_back({a->first, a->second, ""});
        } else if (is_new) {
            differences.push_back({b->first, "", b->second});
        } else if (a->second != b->second) {
            differences.push_back({a->first, a->second, b->second});
        }
        a = is_new ? a : std::next(a);
        b = is_old ? b : std::next(b);
    }
    return differences;
}

RECORD_VALUE text_or_none(const std::string& text)
{
    return text.empty() ? RECORD_VALUE::none() : RECORD_VALUE::text(text);
}

}  // namespace

std::string report_database_diff(const std::string& before, const std::string& after,
                                 LIST_FORM form, int* count)
{
    const std::vector<DIFFERENCE> differences =
        compare(read_contents(before), read_contents(after));
    *count = static_cast<int>(differences.size());
    RECORD_LIST records({"family", "type", "part", "what", "old", "new"});
    TEXT_TABLE table({{"family", "", ALIGN::LEFT},
                      {"type", "", ALIGN::LEFT},
                      {"part", "", ALIGN::LEFT},
                      {"what", "", ALIGN::LEFT},
                      {"old", "", ALIGN::LEFT},
                      {"new", "", ALIGN::LEFT}});
    const auto or_dash = [](const std::string& text) { return text.empty() ? "-" : text; };
    for (const DIFFERENCE& difference : differences) {
        const SUBJECT& subject = difference.m_subject;
        records.add({RECORD_VALUE::text(subject.m_family), RECORD_VALUE::text(subject.m_type),
                     text_or_none(subject.m_part), RECORD_VALUE::text(subject.m_what),
                     text_or_none(difference.m_old), text_or_none(difference.m_new)});
        table.add_row({subject.m_family, subject.m_type, or_dash(subject.m_part), subject.m_what,
                       or_dash(difference.m_old), or_dash(difference.m_new)});
    }
    if (form != LIST_FORM::TABLE) {
        return records.write(form);
    }
    std::string text;
    if (differences.empty()) {
        return "no difference\n";
    }
    table.append_to(&text);
    return text;
}
