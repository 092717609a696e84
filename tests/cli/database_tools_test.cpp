// What helps those who write databases beside lint: keywords, differences, origins of values.
#include "program.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

namespace {

using JSON = nlohmann::json;
using testing::HasSubstr;

constexpr int NOT_MET = 1;
constexpr int USAGE = 2;

std::string content_of(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The rows of the tables of keywords in the document: the cells by keyword.
std::map<std::string, std::vector<std::string>> read_documented_keywords()
{
    std::map<std::string, std::vector<std::string>> rows;
    const std::string document = content_of(PLL_SOURCE_TREE "/docs/database-format.md");
    const std::size_t start = document.find("### Anywhere");
    const std::size_t end = document.find("## Table files", start);
    for (const std::string& line : split(document.substr(start, end - start), '\n')) {
        if (line.compare(0, 3, "| `") != 0) {
            continue;
        }
        std::vector<std::string> cells;
        for (std::string cell : split(line.substr(1, line.size() - 2), '|')) {
            cell.erase(0, cell.find_first_not_of(' '));
            cell.erase(cell.find_last_not_of(' ') + 1);
            cells.push_back(replace_all(cell, "`", ""));
        }
        rows[cells.front()] = cells;
    }
    return rows;
}

std::string text_of(const JSON& value)
{
    return value.is_null() ? "-" : value.get<std::string>();
}

TEST(Keywords, AreThoseOfTheDocument)
{
    constexpr std::size_t CELLS = 6;
    const auto documented = read_documented_keywords();
    const JSON list = JSON::parse(run_pllcalc("keywords --format json").m_output);
    ASSERT_GT(documented.size(), 80U);
    EXPECT_EQ(documented.size(), list.size());
    for (const JSON& entry : list) {
        const std::string name = entry["keyword"];
        SCOPED_TRACE(name);
        const std::vector<std::string>& cells = documented.at(name);
        EXPECT_EQ(cells[1], entry["operand"]);
        if (cells.size() == CELLS) {
            EXPECT_EQ(cells[2], text_of(entry["unit"]));
            EXPECT_EQ(cells[3], text_of(entry["range"]));
            EXPECT_EQ(cells[4], text_of(entry["default"]));
        }
        // References to other parts of the document are left out.
        EXPECT_EQ(cells.back().substr(0, cells.back().find(" (")),
                  entry["effect"].get<std::string>().substr(0, cells.back().find(" (")));
    }
}

TEST(Keywords, AreExplainedOneByOne)
{
    const RUN run = run_pllcalc("keywords PFD_MIN");
    EXPECT_EQ(0, run.m_status);
    EXPECT_EQ("pfd_min\n  operand: number\n  unit:    ps\n  range:   1 and up\n"
              "  default: none\n  scope:   in a part\n  effect:  Shortest period at the "
              "phase-frequency detector: input period times N.\n",
              run.m_output);
    const RUN unknown = run_pllcalc("keywords pfd_mn");
    EXPECT_EQ(USAGE, unknown.m_status);
    EXPECT_THAT(unknown.m_errors, HasSubstr("did you mean pfd_min?"));
}

class DatabaseDiff : public testing::Test
{
protected:
    DatabaseDiff()
    {
        std::filesystem::copy(BASE, m_directory.path(), std::filesystem::copy_options::recursive);
    }

    void edit(const std::string& file, const std::string& from, const std::string& to) const
    {
        const std::string name = m_directory.file(file);
        write_file(name, replace_all(content_of(name), from, to));
    }

    RUN diff(const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> words = {"diff", BASE, m_directory.path()};
        words.insert(words.end(), options.begin(), options.end());
        return run_program(PLLCALC, words);
    }

    static constexpr const char* BASE = PLL_SOURCE_TREE "/tests/mistakes/base";
    const TEMP_DIR m_directory;
};

TEST_F(DatabaseDiff, IsEmptyOfWhatSaysTheSame)
{
    edit("basil/basil_pll.txt", "include timing.txt\nvco_min 900",
         "include timing.txt\nvco_min 850\nvco_min 900 # later");
    const RUN run = diff();
    EXPECT_EQ(0, run.m_status);
    EXPECT_EQ("no difference\n", run.m_output);
}

TEST_F(DatabaseDiff, TellsOfValuesPartsAndRows)
{
    edit("basil/basil_pll.txt", "n_counter_max 16", "n_counter_max 8");
    edit("basil/basil_pll.txt", "vco_min_post_scale 2 2100\n", "");
    edit("basil/bandwidth.txt", "10 40 10 4000  62", "10 40 10 4000  63");
    const JSON list = JSON::parse(diff({"--format", "json"}).m_output);
    EXPECT_EQ(NOT_MET, diff().m_status);
    ASSERT_EQ(3U, list.size());
    EXPECT_EQ("n_counter_max", list[0]["what"]);
    EXPECT_EQ("16", list[0]["old"]);
    EXPECT_EQ("8", list[0]["new"]);
    EXPECT_EQ("row M 40, 10 uA, 4000 ohm, 10 pF", list[1]["what"]);
    EXPECT_EQ("BS10-7", list[2]["part"]);
    EXPECT_EQ("vco_min_post_scale 2", list[2]["what"]);
    EXPECT_TRUE(list[2]["new"].is_null());
}

TEST_F(DatabaseDiff, NeedsTwoDatabases)
{
    EXPECT_EQ(USAGE, run_pllcalc("diff @DATA@/sample").m_status);
    EXPECT_EQ(4, run_pllcalc("diff @DATA@/sample /nowhere").m_status);
}

// Rule, severity, what, cause and cure of each row.
TEST(LintRules, StandInTheDocumentWithCauseAndCure)
{
    const std::string document = content_of(PLL_SOURCE_TREE "/docs/database-format.md");
    const JSON sarif = JSON::parse(run_pllcalc("lint @DATA@/sample --format sarif").m_output);
    for (const JSON& rule : sarif["runs"][0]["tool"]["driver"]["rules"]) {
        const std::string what = rule["shortDescription"]["text"];
        const std::string full = rule["fullDescription"]["text"];
        const std::string cause = full.substr(what.size() + 1);
        const std::string row = "\n| `" + rule["id"].get<std::string>() + "` | " +
                                rule["defaultConfiguration"]["level"].get<std::string>() + " | " +
                                what + " | " + cause + " | " +
                                rule["help"]["text"].get<std::string>() + " |\n";
        EXPECT_NE(std::string::npos, document.find(row)) << row;
    }
}

// Every rule has a mistake that shows it: in tests/mistakes/, among the broken databases, or here.
TEST(LintRules, HaveAMistakeEach)
{
    std::string shown;
    for (const char* const folder : {"/tests/mistakes", "/tests/cli/lint_golden"}) {
        for (const auto& entry :
             std::filesystem::directory_iterator(std::string(PLL_SOURCE_TREE) + folder)) {
            shown += entry.is_regular_file() ? content_of(entry.path()) : "";
        }
    }
    shown += content_of(PLL_SOURCE_TREE "/tests/cli/lint_test.cpp");
    const JSON sarif = JSON::parse(run_pllcalc("lint @DATA@/sample --format sarif").m_output);
    for (const JSON& rule : sarif["runs"][0]["tool"]["driver"]["rules"]) {
        const std::string id = rule["id"];
        const bool is_shown = shown.find(" " + id + " |") != std::string::npos ||
                              shown.find("[" + id + "]") != std::string::npos ||
                              shown.find("\"" + id + "\"") != std::string::npos;
        EXPECT_TRUE(is_shown) << id;
    }
}

TEST(TableCoverage, TellsWhichWishesAndPfdEachMMeets)
{
    const std::string base = PLL_SOURCE_TREE "/tests/mistakes/base";
    const std::string words =
        "table --database " + base + " --family Basil --type ENHANCED_PLL --coverage";
    const JSON list = JSON::parse(run_pllcalc(words + " --format json").m_output);
    ASSERT_EQ(4U, list.size());
    // M 12 has rows of 530 kHz and 1050 kHz, which reach 750 kHz and 1480 kHz at the fast corner.
    EXPECT_EQ(12, list[0]["m"]);
    EXPECT_EQ(6000000, list[0]["low_pfd_min_hz"]);
    EXPECT_TRUE(list[0]["medium_pfd_min_hz"].is_null());
    EXPECT_EQ(11840000, list[0]["high_pfd_min_hz"]);
    EXPECT_EQ(8880000, list[1]["medium_pfd_min_hz"]);
    EXPECT_THAT(run_pllcalc(words).m_output, HasSubstr("low: PFD from"));
    EXPECT_EQ(USAGE, run_pllcalc(words + " --m 12").m_status);
}

TEST(TableOfNone, IsNoError)
{
    const RUN run = run_pllcalc("table --database @DATA@/sample --family Sorrel --type FAST_PLL");
    EXPECT_EQ(0, run.m_status);
    EXPECT_THAT(run.m_output, HasSubstr("no table: "));
}

TEST(LostTable, IsTold)
{
    const TEMP_DIR directory;
    std::filesystem::copy(PLL_SOURCE_TREE "/tests/mistakes/base", directory.path(),
                          std::filesystem::copy_options::recursive);
    const std::string file = directory.file("basil/basil_pll.txt");
    std::string text = content_of(file);
    write_file(directory.file("basil/anise_pll.txt"),
               replace_all(replace_all(text, "family Basil", "family Anise"),
                           "table_file bandwidth.txt", "table_file unused"));
    write_file(directory.file("ddb_pll_path.txt"),
               content_of(directory.file("ddb_pll_path.txt")) + "Anise basil anise_pll.txt\n");
    const std::string words = "device --database " + directory.path() +
                              " --family Basil --type ENHANCED_PLL --part BS10-6 --migrate ";
    EXPECT_THAT(run_pllcalc(words + "Anise:BS10-6").m_output,
                HasSubstr("NOTE: the table of Basil is not used: Anise has none"));
}

// The entry of a keyword of the owner.
JSON find_entry(const JSON& list, const std::string& owner, const std::string& keyword)
{
    for (const JSON& entry : list) {
        if (entry["owner"] == owner && entry["keyword"] == keyword) {
            return entry;
        }
    }
    return JSON();
}

TEST(ValueOrigins, AreFileAndLineAndWhatTheyOverwrote)
{
    const RUN run = run_pllcalc("device --database @DATA@/sample --family Sorrel --type "
                                "ENHANCED_PLL --part SR10-5 --origin --format json");
    const JSON list = JSON::parse(run.m_output);
    const JSON vco = find_entry(list, "part SR10-5", "vco_min");
    EXPECT_EQ(770, vco["value"]);
    EXPECT_THAT(vco["file"].get<std::string>(), HasSubstr("sorrel/sorrel_pll.txt"));
    EXPECT_EQ("ps", vco["unit"]);
    ASSERT_EQ(1U, vco["overwrites"].size());
    EXPECT_THAT(vco["overwrites"][0]["file"].get<std::string>(), HasSubstr("enhanced_timing.txt"));
    const std::string type = "ENHANCED_PLL of Sorrel";
    EXPECT_EQ(JSON::parse("[5, 10, 15, 20]"),
              find_entry(list, type, "loop_filter_capacitor")["value"]);
    EXPECT_EQ(true, find_entry(list, type, "output_counter_cascade")["value"]);
    EXPECT_EQ(0, find_entry(list, type, "switch_over_counter_min")["value"]);
    EXPECT_EQ("enhanced_bandwidth.txt",
              find_entry(list, type, "bandwidth_settings_table_file")["value"]);
    const JSON unset = find_entry(list, type, "m_counter_max");
    EXPECT_EQ(false, unset["is_set"]);
    EXPECT_FALSE(unset.contains("value"));
}

TEST(ValueOrigins, ShowWhatIsUnset)
{
    const RUN run = run_pllcalc("device --database @DATA@/sample --family Sorrel --type FAST_PLL "
                                "--part SR10-5 --origin");
    EXPECT_THAT(run.m_output, HasSubstr("unset, the default"));
    EXPECT_THAT(run.m_output, HasSubstr("FAST_PLL of Sorrel"));
}

}  // namespace
