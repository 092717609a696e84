// Transcripts of the program: files of "$ pllcalc ..." lines, each followed by what the program
// writes to standard output, to standard error, and its exit status. @DATA@ stands for the folder
// data of the tree. PLL_UPDATE_GOLDEN=1 writes them anew.

#include "golden.h"
#include "program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace {

const std::string PROMPT = "$ pllcalc";
constexpr std::size_t LEAST_TRANSCRIPTS = 10;

// The transcript with its commands run anew; lines before the first command are kept.
std::string replay(const std::string& transcript)
{
    std::string text;
    bool in_header = true;
    for (const std::string& line : split(transcript, '\n')) {
        if (line.rfind(PROMPT, 0) == 0) {
            in_header = false;
            const std::string words =
                line.size() > PROMPT.size() ? line.substr(PROMPT.size() + 1) : std::string();
            const RUN run = run_pllcalc(words);
            text += line + "\n" + hide_data_folder(run.m_output + run.m_errors) + "[exit status " +
                    std::to_string(run.m_status) + "]\n\n";
        } else if (in_header) {
            text += line + "\n";
        }
    }
    return text;
}

std::vector<std::string> list_transcripts()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(golden_path("golden"))) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(CliTranscripts, AreAllFound)
{
    EXPECT_LE(LEAST_TRANSCRIPTS, list_transcripts().size());
}

class CLI_TRANSCRIPT : public testing::TestWithParam<std::string>
{
};

TEST_P(CLI_TRANSCRIPT, IsWhatTheProgramWrites)
{
    const std::string name = "golden/" + GetParam();
    const std::string transcript = read_file(golden_path(name));
    ASSERT_NE(std::string::npos, transcript.find(PROMPT));
    expect_golden(replay(transcript), name);
}

std::string name_of(const testing::TestParamInfo<std::string>& info)
{
    return info.param.substr(0, info.param.find('.'));
}

INSTANTIATE_TEST_SUITE_P(All, CLI_TRANSCRIPT, testing::ValuesIn(list_transcripts()), name_of);

}  // namespace
