// The walk of docs/database-format.md, from an empty folder to a device: its files are written, its
// commands are run, and the program prints what the document shows.
#include "document.h"
#include "program.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

const std::string FOLDER = "basil_db";
const std::string PROMPT = DOCUMENT_INDENT + "$ pllcalc ";
const std::string FENCE = "```";

class DatabaseWalk : public testing::Test
{
protected:
    // A line "`name`:" and the fenced text after it are a file. Returns the line behind it.
    std::size_t write_shown_file(std::size_t at) const
    {
        const std::filesystem::path path =
            m_folder.file(m_lines[at].substr(1, m_lines[at].size() - 3));
        std::filesystem::create_directories(path.parent_path());
        std::string text;
        while (m_lines.at(at).rfind(FENCE, 0) != 0) {
            ++at;
        }
        for (++at; m_lines.at(at) != FENCE; ++at) {
            text += m_lines[at] + "\n";
        }
        write_file(path, text);
        return at;
    }

    const std::vector<std::string> m_lines = split(
        read_file(std::filesystem::path(PLL_SOURCE_TREE) / "docs" / "database-format.md"), '\n');
    const TEMP_DIR m_folder;
};

TEST_F(DatabaseWalk, ShowsWhatTheProgramPrints)
{
    int files = 0;
    int commands = 0;
    for (std::size_t at = 0; at < m_lines.size(); ++at) {
        const std::string& line = m_lines[at];
        SCOPED_TRACE(line);
        if (line.rfind('`', 0) == 0 && line.size() > 3 && line.substr(line.size() - 2) == "`:") {
            at = write_shown_file(at);
            ++files;
        } else if (line.rfind(PROMPT, 0) == 0) {
            const std::string words =
                replace_all(line.substr(PROMPT.size()), FOLDER, m_folder.path());
            const RUN run = run_pllcalc(words);
            EXPECT_EQ(0, run.m_status) << run.m_errors;
            EXPECT_EQ(block_from(m_lines, at + 1),
                      replace_all(run.m_output, m_folder.path(), FOLDER));
            ++commands;
        }
    }
    EXPECT_EQ(3, files);
    EXPECT_LE(3, commands);
}

}  // namespace
