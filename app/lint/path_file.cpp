#include "app/lint/path_file.h"

#include "app/lint/words.h"
#include "app/output/input_file.h"
#include "app/source/text_file.h"
#include "app/words/letter_case.h"

#include <optional>

namespace {

constexpr char PATH_FILE_NAME[] = "ddb_pll_path.txt";

}  // namespace

bool PATH_FILE_READER::read(const std::string& directory)
{
    const std::string name = tidy_path(directory + "/" + PATH_FILE_NAME);
    m_reading = m_readings->add(name);
    std::string reason;
    const std::optional<std::string> text = read_text(name, &reason);
    if (!text) {
        m_messages->add(LINT_RULE::PATH_FILE_NOT_OPENED, {m_reading, 1, 1, 1},
                        "cannot open the path file '" + name + "': " + reason);
        return false;
    }
    std::string_view rest = *text;
    if (!check_encoding(m_reading, &rest, m_messages)) {
        return true;
    }
    TEXT_LINES lines(rest);
    TEXT_LINE line;
    while (lines.next(&line)) {
        check_line(m_reading, line, m_messages);
        read_line(line);
    }
    if (m_families.empty()) {
        m_messages->add(LINT_RULE::NO_FAMILY, {m_reading, 1, 1, 1},
                        "the path file names no family; a line holds a family, its sub-directory "
                        "and its file");
    }
    return true;
}

std::uint32_t PATH_FILE_READER::find_or_add(std::string_view name, std::uint32_t next)
{
    return m_index.find_or_add(0, name, next, [&](std::uint32_t candidate) {
        return candidate < m_families.size() &&
               equal_but_for_case(m_families[candidate].m_name, name);
    });
}

std::uint32_t PATH_FILE_READER::find(std::string_view name)
{
    return m_index.find(0, name, [&](std::uint32_t candidate) {
        return equal_but_for_case(m_families[candidate].m_name, name);
    });
}

void PATH_FILE_READER::read_line(const TEXT_LINE& line)
{
    const OPERAND_WATCH watch = {m_reading, line, m_messages};
    WORD_READER words(readable_part(line.m_text));
    TEXT_WORD name;
    if (!words.next_name(&name)) {
        return;
    }
    watch.check_name(name);
    const auto next = static_cast<std::uint32_t>(m_families.size());
    const std::uint32_t index = find_or_add(name.m_text, next);
    if (index == next) {
        m_families.emplace_back();
        m_families.back().m_name = m_names.keep(name.m_text);
    } else {
        m_messages->add(LINT_RULE::FAMILY_TWICE, watch.place_of(name),
                        in_quotes(name.m_text) + " stands in line " +
                            std::to_string(m_families[index].m_place.m_line) +
                            " already; this line counts");
    }
    PATH_FAMILY& family = m_families[index];
    family.m_place = watch.place_of(name);
    TEXT_WORD folder;
    TEXT_WORD file;
    TEXT_WORD extra;
    if (words.next_name(&folder)) {
        watch.check_name(folder);
        family.m_folder = m_names.keep(folder.m_text);
        family.m_folder_place = watch.place_of(folder);
    }
    if (words.next_name(&file)) {
        watch.check_name(file);
        family.m_file = m_names.keep(file.m_text);
        family.m_has_file = true;
        family.m_file_place = watch.place_of(file);
        watch.check_end(file, &words);
    }
}
