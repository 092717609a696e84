// What the README shows is what there is: its transcripts, its host and what that prints, its map.
#include "document.h"
#include "program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

const std::filesystem::path TREE = PLL_SOURCE_TREE;
const std::string PROMPT = DOCUMENT_INDENT + "$ pllcalc ";

std::vector<std::string> read_readme()
{
    return split(read_file(TREE / "README.md"), '\n');
}

// What stands between the fence that opens with "```cpp" and its end.
std::string fenced_code(const std::vector<std::string>& lines)
{
    std::string text;
    const auto fence = std::find(lines.begin(), lines.end(), "```cpp");
    for (auto line = fence; line != lines.end(); ++line) {
        if (line == fence) {
            continue;
        }
        if (*line == "```") {
            break;
        }
        text += *line + "\n";
    }
    return text;
}

TEST(Readme, ShowsWhatTheProgramPrints)
{
    const std::vector<std::string> lines = read_readme();
    int transcripts = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i].rfind(PROMPT, 0) != 0) {
            continue;
        }
        SCOPED_TRACE(lines[i]);
        const std::string words = from_anywhere(lines[i].substr(PROMPT.size()));
        EXPECT_EQ(run_pllcalc(words).m_output, block_from(lines, i + 1));
        ++transcripts;
    }
    EXPECT_LT(0, transcripts);
}

TEST(Readme, NamesCommandsThatAreMet)
{
    const std::string start = DOCUMENT_INDENT + std::string("pllcalc ");
    int commands = 0;
    for (const std::string& line : read_readme()) {
        if (line.rfind(start, 0) == 0) {
            SCOPED_TRACE(line);
            // Of a pipe the first command, which does not need the others.
            const std::string command = line.substr(0, line.find(" | ")).substr(start.size());
            EXPECT_EQ(0, run_pllcalc(from_anywhere(command)).m_status);
            ++commands;
        }
    }
    EXPECT_LT(0, commands);
}

TEST(Readme, ShowsTheHostThatIsAnExample)
{
    const std::string code = fenced_code(read_readme());
    EXPECT_NE("", code);
    EXPECT_EQ(read_file(TREE / "examples" / "host.cpp"), code);
}

#ifdef PLL_EXAMPLE_HOST
TEST(Readme, ShowsWhatTheHostPrints)
{
    const std::vector<std::string> lines = read_readme();
    const auto head = std::find(lines.begin(), lines.end(), "It prints:");
    ASSERT_NE(lines.end(), head);
    const std::size_t block = static_cast<std::size_t>(head - lines.begin()) + 2;
    const RUN run = run_program(PLL_EXAMPLE_HOST, {});
    EXPECT_EQ(0, run.m_status);
    EXPECT_EQ(run.m_output, block_from(lines, block));
}
#endif

// The folders with sources in them: those of the tree, and the kinds of tests.
std::vector<std::string> list_folders()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TREE)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory() && name.front() != '.' && name != "build") {
            names.push_back(name);
        }
    }
    for (const auto& entry : std::filesystem::directory_iterator(TREE / "tests")) {
        if (entry.is_directory()) {
            names.push_back("tests/" + entry.path().filename().string());
        }
    }
    return names;
}

TEST(Readme, MapsEveryFolder)
{
    const std::string readme = read_file(TREE / "README.md");
    for (const std::string& folder : list_folders()) {
        EXPECT_NE(std::string::npos, readme.find("\n| `" + folder + "/` | ")) << folder;
    }
    for (const std::string& line : split(readme, '\n')) {
        if (line.rfind("| `", 0) == 0) {
            const std::string folder = line.substr(3, line.find("/`") - 3);
            EXPECT_TRUE(std::filesystem::is_directory(TREE / folder)) << line;
        }
    }
}

}  // namespace
