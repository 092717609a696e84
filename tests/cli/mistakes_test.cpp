// Mistakes as data: tests/mistakes/ holds a database without a mistake, edits of it that make one
// each, and edits that make none. A mistake gives one message, at its place, and no other.
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>

namespace {

using JSON = nlohmann::json;

const std::filesystem::path MISTAKES =
    std::filesystem::path(PLL_SOURCE_TREE) / "tests" / "mistakes";

constexpr int INPUT_FAILED = 4;  // exit status

struct EDIT
{
    std::string m_name;
    std::string m_file;
    std::string m_how;  // replace, remove, empty, utf-16, crlf
    std::string m_what;
    std::string m_by;
};

struct MISTAKE
{
    EDIT m_edit;
    std::string m_severity;
    std::string m_rule;
    std::string m_file;
    std::string m_anchor;  // the text around the place, which '^' marks
};

// The bytes that \n, \t, \r, \0 and \xHH stand for.
std::string unescaped(const std::string& text)
{
    constexpr int HEXADECIMAL = 16;
    constexpr std::size_t DIGITS = 2;
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            bytes += text[i];
            continue;
        }
        ++i;
        if (text[i] == 'x') {
            bytes += static_cast<char>(std::stoi(text.substr(i + 1, DIGITS), nullptr, HEXADECIMAL));
            i += DIGITS;
        } else {
            bytes += text[i] == 'n' ? '\n' : text[i] == 't' ? '\t' : text[i] == 'r' ? '\r' : '\0';
        }
    }
    return bytes;
}

std::vector<std::string> fields_of(const std::string& line)
{
    const std::string SEPARATOR = " | ";
    std::vector<std::string> fields;
    std::size_t start = 0;
    for (std::size_t end = line.find(SEPARATOR); end != std::string::npos;
         end = line.find(SEPARATOR, start)) {
        fields.push_back(line.substr(start, end - start));
        start = end + SEPARATOR.size();
    }
    fields.push_back(line.substr(start));
    return fields;
}

std::string content_of(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The lines of a data file that hold as many fields as they should.
std::vector<std::vector<std::string>> read_data(const std::filesystem::path& file,
                                                std::size_t count)
{
    std::vector<std::vector<std::string>> rows;
    for (const std::string& line : split(content_of(file), '\n')) {
        if (line.empty() || line[0] == '#') {
            continue;
        }
        rows.push_back(fields_of(line));
        rows.back().resize(std::max(rows.back().size(), count));
        EXPECT_EQ(count, rows.back().size()) << line;
    }
    return rows;
}

EDIT edit_of(const std::vector<std::string>& row)
{
    return {row[0], row[1], row[2], unescaped(row[3]), unescaped(row[4])};
}

std::string replace_once(const std::string& text, const EDIT& edit)
{
    const std::size_t at = text.find(edit.m_what);
    EXPECT_NE(std::string::npos, at) << "nothing to replace";
    EXPECT_EQ(std::string::npos, text.find(edit.m_what, at + 1)) << "more than one to replace";
    return at == std::string::npos
               ? text
               : text.substr(0, at) + edit.m_by + text.substr(at + edit.m_what.size());
}

std::string as_utf_16(const std::string& text)
{
    std::string wide = "\xFF\xFE";
    for (const char c : text) {
        wide += c;
        wide += '\0';
    }
    return wide;
}

// A copy of the database with an edit in it.
class EDITED_DATABASE
{
public:
    explicit EDITED_DATABASE(const EDIT& edit)
    {
        std::filesystem::copy(MISTAKES / "base", m_directory.path(),
                              std::filesystem::copy_options::recursive);
        const std::string file = m_directory.file(edit.m_file);
        if (edit.m_how == "remove") {
            std::filesystem::remove(file);
            return;
        }
        const std::string text = content_of(file);
        write_file(file, edit.m_how == "replace"  ? replace_once(text, edit)
                         : edit.m_how == "utf-16" ? as_utf_16(text)
                         : edit.m_how == "crlf"   ? replace_all(text, "\n", "\r\n")
                                                  : "");
    }

    JSON lint() const
    {
        return JSON::parse(
            run_program(PLLCALC, {"lint", m_directory.path(), "--format", "json"}).m_output);
    }

    // False when the library cannot read one of its families.
    bool can_be_read() const
    {
        return run_program(PLLCALC, {"devices", "--database", m_directory.path()}).m_status !=
               INPUT_FAILED;
    }

    std::string content(const std::string& file) const
    {
        return content_of(m_directory.file(file));
    }

    const TEMP_DIR m_directory;
};

// "error: unknown-keyword basil/basil_pll.txt:5:1"
std::string describe(const std::string& severity, const std::string& rule, const std::string& file,
                     std::size_t line, std::size_t column)
{
    return severity + ": " + rule + " " + file + ":" + std::to_string(line) + ":" +
           std::to_string(column);
}

bool is_continuation(char c)
{
    constexpr unsigned MASK = 0xC0;
    constexpr unsigned CONTINUATION = 0x80;
    return (static_cast<unsigned char>(c) & MASK) == CONTINUATION;
}

std::string describe_wanted(const MISTAKE& mistake, const EDITED_DATABASE& database)
{
    std::string anchor = mistake.m_anchor;
    const std::size_t mark = anchor.find('^');
    EXPECT_NE(std::string::npos, mark);
    anchor.erase(mark, 1);
    if (anchor.empty()) {
        return describe(mistake.m_severity, mistake.m_rule, mistake.m_file, 1, 1);
    }
    const std::string text = database.content(mistake.m_file);
    const std::size_t found = text.find(anchor);
    EXPECT_NE(std::string::npos, found) << "the place is nowhere";
    EXPECT_EQ(std::string::npos, text.find(anchor, found + 1)) << "the place is not the only one";
    const std::string before = text.substr(0, found + mark);
    const auto lines = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    const std::string line = before.substr(before.rfind('\n') + 1);
    const auto column = static_cast<std::size_t>(
        std::count_if(line.begin(), line.end(), [](char c) { return !is_continuation(c); }));
    return describe(mistake.m_severity, mistake.m_rule, mistake.m_file, lines + 1, column + 1);
}

std::string describe_messages(const JSON& report, const EDITED_DATABASE& database)
{
    std::string text;
    for (const JSON& message : report["messages"]) {
        const std::string file = replace_all(message["file"], database.m_directory.file(""), "");
        text += (text.empty() ? "" : "\n") + describe(message["severity"], message["name"], file,
                                                      message["line"], message["column"]);
    }
    return text;
}

std::vector<MISTAKE> read_mistakes(const std::filesystem::path& file)
{
    constexpr std::size_t FIELDS = 8;
    std::vector<MISTAKE> mistakes;
    for (const std::vector<std::string>& row : read_data(file, FIELDS)) {
        const std::vector<std::string> message = words_of(row[5]);
        mistakes.push_back({edit_of(row), message.at(0), message.at(1), row[6], unescaped(row[7])});
    }
    return mistakes;
}

std::vector<std::filesystem::path> list_data()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(MISTAKES)) {
        if (entry.path().extension() == ".txt") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

class MISTAKES_OF : public testing::TestWithParam<std::filesystem::path>
{
};

TEST_P(MISTAKES_OF, GiveOneMessageEachAtTheirPlace)
{
    for (const MISTAKE& mistake : read_mistakes(GetParam())) {
        SCOPED_TRACE(mistake.m_edit.m_name);
        const EDITED_DATABASE database(mistake.m_edit);
        const JSON report = database.lint();
        EXPECT_EQ(describe_wanted(mistake, database), describe_messages(report, database));
        EXPECT_TRUE(database.can_be_read() || report["errors"] > 0);
    }
}

INSTANTIATE_TEST_SUITE_P(All, MISTAKES_OF, testing::ValuesIn(list_data()),
                         [](const testing::TestParamInfo<std::filesystem::path>& file) {
                             return file.param.stem().string();
                         });

TEST(Mistakes, AreNotSeenWhereThereAreNone)
{
    constexpr std::size_t FIELDS = 5;
    for (const std::vector<std::string>& row :
         read_data(MISTAKES / "allowed" / "edits.txt", FIELDS)) {
        SCOPED_TRACE(row[0]);
        const EDITED_DATABASE database(edit_of(row));
        EXPECT_EQ("", describe_messages(database.lint(), database));
        EXPECT_TRUE(database.can_be_read());
    }
}

}  // namespace
