// pllcalc lint. The examples in data/broken give exactly the messages in lint_golden/.
// PLL_UPDATE_GOLDEN=1 writes those anew.

#include "golden.h"
#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>
#include <sys/stat.h>

namespace {

using JSON = nlohmann::json;

const std::filesystem::path BROKEN = std::filesystem::path(PLL_DATA_DIR) / "broken";

// What the examples share and what explains them.
const std::set<std::string> NO_EXAMPLES = {".gitattributes", "README.md", "common"};

// The rules by name, as the program lists them in its SARIF output.
std::map<std::string, std::string> list_rules()
{
    const JSON sarif = JSON::parse(run_pllcalc("lint @DATA@/sample --format sarif").m_output);
    std::map<std::string, std::string> levels;
    for (const JSON& rule : sarif["runs"][0]["tool"]["driver"]["rules"]) {
        levels[rule["id"]] = rule["defaultConfiguration"]["level"];
    }
    return levels;
}

std::vector<std::string> list_examples()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(BROKEN)) {
        if (NO_EXAMPLES.count(entry.path().filename().string()) == 0) {
            names.push_back(entry.path().filename().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string rule_of(const std::string& example)
{
    return example.substr(0, example.find('.'));
}

class LINT_EXAMPLE : public testing::TestWithParam<std::string>
{
};

TEST_P(LINT_EXAMPLE, GivesItsMessages)
{
    const RUN run = run_pllcalc("lint @DATA@/broken/" + GetParam() + " --caret always");
    expect_golden(hide_data_folder(run.m_output + run.m_errors) + "[exit status " +
                      std::to_string(run.m_status) + "]\n",
                  "lint_golden/" + rule_of(GetParam()) + ".txt");
}

TEST_P(LINT_EXAMPLE, GivesItsRuleAndNoOther)
{
    const std::string rule = rule_of(GetParam());
    const RUN run = run_pllcalc("lint @DATA@/broken/" + GetParam() + " --format json");
    const JSON messages = JSON::parse(run.m_output)["messages"];
    const std::string severity = list_rules().at(rule);
    EXPECT_FALSE(messages.empty());
    for (const JSON& message : messages) {
        EXPECT_EQ(rule, message["name"]);
        EXPECT_EQ(severity, message["severity"]);
    }
    const int status = rule == "path-file-not-opened" ? 4 : severity == "error" ? 3 : 0;
    EXPECT_EQ(status, run.m_status);
    EXPECT_EQ(status == 0 ? 1 : status,
              run_pllcalc("lint @DATA@/broken/" + GetParam() + " -Werror").m_status);
}

INSTANTIATE_TEST_SUITE_P(All, LINT_EXAMPLE, testing::ValuesIn(list_examples()),
                         [](const testing::TestParamInfo<std::string>& example) {
                             std::string name = rule_of(example.param);
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

// ---- Messages and statuses

// A directory for files that are looked at.
class Lint : public testing::Test
{
protected:
    void write(const std::string& name, const std::string& text) const
    {
        write_file(m_directory.file(name), text);
    }

    RUN lint(const std::string& name, const std::vector<std::string>& options = {}) const
    {
        std::vector<std::string> words = {"lint", m_directory.file(name)};
        words.insert(words.end(), options.begin(), options.end());
        return run_program(PLLCALC, words);
    }

    // The messages without the directory and the count at their end.
    std::string messages(const std::string& name,
                         const std::vector<std::string>& options = {}) const
    {
        const std::string text = lint(name, options).m_output;
        const std::size_t last_line = text.rfind('\n', text.size() - 2) + 1;
        return replace_all(text.substr(0, last_line), m_directory.file(""), "");
    }

    const TEMP_DIR m_directory;
};

TEST_F(Lint, FindsNothingInTheSampleDatabase)
{
    for (const std::string words : {"lint @DATA@/sample -Werror", "lint @DATA@/sample/ -W error",
                                    "lint @DATA@/sample/ddb_pll_path.txt -Werror",
                                    "lint @DATA@/sample/sorrel/sorrel_pll.txt -Werror",
                                    "lint @DATA@/sample/sorrel/enhanced_bandwidth.txt -Werror",
                                    "lint @DATA@/sample/lovage/fast_bandwidth.txt -Werror"}) {
        const RUN run = run_pllcalc(words);
        EXPECT_EQ(0U, run.m_output.find("nothing wrong in ")) << run.m_output;
        EXPECT_EQ("", run.m_errors) << words;
        EXPECT_EQ(0, run.m_status) << words;
    }
}

TEST_F(Lint, TellsWhatCannotBeRead)
{
    ASSERT_EQ(0, mkfifo(m_directory.file("pipe").c_str(), 0600));
    for (const std::string name : {"missing", "missing/ddb_pll_path.txt", "pipe"}) {
        const RUN run = lint(name);
        EXPECT_EQ(4, run.m_status) << name;
        EXPECT_NE(std::string::npos, run.m_errors.find("cannot read")) << run.m_errors;
    }
}

// The lines of a file are shown, but only of a file that has an end.
TEST_F(Lint, DoesNotWaitForAPathFileThatIsAPipe)
{
    ASSERT_EQ(0, mkfifo(m_directory.file("ddb_pll_path.txt").c_str(), 0600));
    for (const std::string format : {"text", "sarif"}) {
        const RUN run = run_program("/usr/bin/timeout", {"10", PLLCALC, "lint", m_directory.path(),
                                                         "--caret=always", "--format", format});
        EXPECT_EQ(4, run.m_status) << format;
        EXPECT_NE(std::string::npos, run.m_output.find("path-file-not-opened")) << format;
    }
}

TEST_F(Lint, RefusesWordsThatItDoesNotKnow)
{
    write("file", "family F\n");
    EXPECT_EQ(2, lint("file", {"--format", "xml"}).m_status);
    EXPECT_EQ("pllcalc: --format: 'xml' is not legal; legal are text, json, sarif\n",
              lint("file", {"--format", "xml"}).m_errors);
    EXPECT_EQ("pllcalc: -Wall: unknown; legal are -Werror, -Werror=RULE and -Wno-RULE\n",
              lint("file", {"-Wall"}).m_errors);
    EXPECT_EQ(2, run_pllcalc("lint").m_status);
}

TEST_F(Lint, HasNoCaretsBelowMessagesInAPipe)
{
    write("file", "pll\n");
    EXPECT_EQ("file:1:4: error: 'pll' needs a PLL type; legal are ENHANCED_PLL, FAST_PLL, "
              "FAST_PLL_HIGH_SPEED, VESTRA_PLL [unknown-pll-type]\n",
              messages("file"));
    EXPECT_EQ(messages("file"), messages("file", {"--caret", "never"}));
    EXPECT_NE(messages("file"), messages("file", {"--caret", "always"}));
}

TEST_F(Lint, PutsTheCaretBelowTheWordBehindTabs)
{
    write("file", "family\tF\npll\t\tFAST\tPLL\n");
    EXPECT_EQ("  pll\t\tFAST\tPLL\n     \t\t^~~~\n",
              messages("file", {"--caret", "always"}).substr(messages("file").size()));
}

TEST_F(Lint, LeavesNothingThatControlsATerminal)
{
    write("file", "\x1b[2J\x7f 1\n");
    const std::string text = messages("file", {"--caret", "always"});
    EXPECT_NE(std::string::npos, text.find("unknown keyword '\\x1b[2J\\x7f'"));
    EXPECT_EQ(text.end(), std::find_if(text.begin(), text.end(), [](char c) {
                  return c == '\x7f' || (c != '\n' && c >= 0 && c < ' ');
              }));
}

TEST_F(Lint, NamesAByteOrderMark)
{
    write("file", "\xEF\xBB\xBF"
                  "family F\n");
    EXPECT_NE(std::string::npos, messages("file").find("begins with a byte-order mark"));
}

TEST_F(Lint, TakesAFileForWhatItHolds)
{
    const std::string table = "V1 a format of one's own\ntitles\n1 2 3 60 5 6 60 8 9 60 1 2\n";
    write("table", table);
    EXPECT_EQ("", messages("table"));
    EXPECT_NE(std::string::npos, messages("table", {"--as", "family"}).find("[unknown-keyword]"));
    write("family", "family F\n");
    EXPECT_NE(std::string::npos, messages("family").find("[init-fails]"));
    EXPECT_NE(std::string::npos,
              messages("family", {"--as", "table"}).find("[table-without-rows]"));
}

// In a family file that name would say that there is no table.
TEST_F(Lint, ReadsATableFileThatIsCalledUnused)
{
    write("unused", "no table\n");
    const RUN run = run_program(
        "/bin/sh", {"-c", "cd " + m_directory.path() + " && " PLLCALC " lint unused --as table"});
    EXPECT_EQ(3, run.m_status);
    EXPECT_EQ(0U, run.m_output.find("unused:")) << run.m_output;
}

TEST_F(Lint, TellsTheSameOfASharedFileOnce)
{
    write("ddb_pll_path.txt", "A . a.txt\nB . b.txt\n");
    write("a.txt", "family A\ninclude shared.txt\n");
    write("b.txt", "family B\ninclude shared.txt\n");
    write("shared.txt", "pll NONE\n");
    EXPECT_EQ("shared.txt:1:5: error: unknown PLL type 'NONE'; legal are ENHANCED_PLL, FAST_PLL, "
              "FAST_PLL_HIGH_SPEED, VESTRA_PLL [unknown-pll-type]\n"
              "  included from a.txt:2\n",
              messages(""));
}

TEST_F(Lint, GoesOnAfterAFamilyThatFails)
{
    write("ddb_pll_path.txt", "A . a.txt\nB . b.txt\nC . c.txt\n");
    write("a.txt", "unknown\n");
    write("c.txt", "unknown\n");
    const std::string text = messages("");
    EXPECT_NE(std::string::npos, text.find("a.txt:1:1: error"));
    EXPECT_NE(std::string::npos, text.find("ddb_pll_path.txt:2:5: error"));
    EXPECT_NE(std::string::npos, text.find("c.txt:1:1: error"));
}

TEST_F(Lint, KnowsASpreadFromAPeriod)
{
    write("file", "family F\npll FAST_PLL\nspeed_grade 1\npart P\n"
                  "ss_spread_min 9\nss_spread_max 1\ninput_min 7000\ninput_max 5000\n");
    EXPECT_NE(std::string::npos,
              messages("file").find("file:6:1: error: no spread is legal: the least is 9 "
                                    "thousandths, the largest 1 thousandths [limits-crossed]\n"));
    EXPECT_NE(std::string::npos,
              messages("file").find("file:8:1: error: no input period is legal: the least is 7000 "
                                    "ps, the largest 5000 ps [limits-crossed]\n"));
}

// ---- Formats for programs

TEST_F(Lint, CountsInJson)
{
    write("file", "m_counter_max 5\nfamily F\nnonsense\n");
    const JSON json = JSON::parse(lint("file", {"--format", "json"}).m_output);
    EXPECT_EQ(1, json["errors"]);
    EXPECT_EQ(1, json["warnings"]);
    ASSERT_EQ(2U, json["messages"].size());
    const JSON& message = json["messages"][1];
    EXPECT_EQ(m_directory.file("file"), message["file"]);
    EXPECT_EQ(3, message["line"]);
    EXPECT_EQ(1, message["column"]);
    EXPECT_EQ(8, message["length"]);
    EXPECT_EQ("error", message["severity"]);
    EXPECT_EQ("unknown-keyword", message["name"]);
}

TEST_F(Lint, WritesValidJsonOfFilesThatAreNoUtf8)
{
    write("file", "\xFA\xFE\x80\n");
    const JSON json = JSON::parse(lint("file", {"--format", "json"}).m_output);
    EXPECT_EQ("unknown keyword '\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD'",
              json["messages"][1]["text"]);
    EXPECT_TRUE(JSON::accept(lint("file", {"--format", "sarif"}).m_output));
}

// What SARIF 2.1.0 demands of a log, a run, a result and a region.
TEST_F(Lint, WritesSarif)
{
    write("a file.txt", "# caf\xC3\xA9\nfamily caf\xC3\xA9 extra\nnonsense\n");
    const JSON sarif = JSON::parse(lint("a file.txt", {"--format", "sarif"}).m_output);
    EXPECT_EQ("2.1.0", sarif["version"]);
    EXPECT_EQ("https://json.schemastore.org/sarif-2.1.0.json", sarif["$schema"]);
    const JSON& run = sarif["runs"][0];
    EXPECT_EQ("pllcalc", run["tool"]["driver"]["name"]);
    EXPECT_EQ("unicodeCodePoints", run["columnKind"]);
    ASSERT_EQ(2U, run["results"].size()) << sarif;
    for (const JSON& result : run["results"]) {
        const JSON& rule = run["tool"]["driver"]["rules"][result["ruleIndex"].get<std::size_t>()];
        EXPECT_EQ(rule["id"], result["ruleId"]);
        EXPECT_EQ(rule["defaultConfiguration"]["level"], result["level"]);
        EXPECT_TRUE(result["message"]["text"].is_string());
        const std::string uri =
            result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"];
        EXPECT_EQ(0U, uri.find("file:///"));
        EXPECT_NE(std::string::npos, uri.find("/a%20file.txt"));
    }
    const JSON region = run["results"][0]["locations"][0]["physicalLocation"]["region"];
    EXPECT_EQ(2, region["startLine"]);
    EXPECT_EQ(13, region["startColumn"]);
    EXPECT_EQ(18, region["endColumn"]);
}

TEST_F(Lint, WritesEmptyListsOfACleanDatabase)
{
    const JSON json = JSON::parse(run_pllcalc("lint @DATA@/sample --format json").m_output);
    EXPECT_EQ(JSON::array(), json["messages"]);
    const JSON sarif = JSON::parse(run_pllcalc("lint @DATA@/sample --format sarif").m_output);
    EXPECT_EQ(JSON::array(), sarif["runs"][0]["results"]);
}

// ---- What the user wants to see

constexpr char TWO_MISTAKES[] = "family F\npll FAST_PLL\nn_counter_max 0\nss_bandwidth 1 1\n";

TEST_F(Lint, GoesOnAfterAnError)
{
    write("file", "family F\npll FAST_PLL\nm_counter_mx 1\nn_counter_mx 1\nspeed_grad 1\nprat P\n"
                  "vco_mim 1000\nvco_max 900\nvco_min 1000\n");
    const std::string text = messages("file");
    for (const char* const line : {"file:3:1: error", "file:4:1: error", "file:5:1: error",
                                   "file:6:1: error", "file:7:1: error"}) {
        EXPECT_NE(std::string::npos, text.find(line)) << text;
    }
    EXPECT_NE(std::string::npos, text.find("[limits-crossed]")) << text;
}

TEST_F(Lint, LeavesOutAndRaisesRules)
{
    write("file", "family F\npll FAST_PLL\nss_counter_max 0\n");
    EXPECT_NE(std::string::npos, messages("file").find("warning: '0' is out of range"));
    EXPECT_EQ(std::string::npos,
              messages("file", {"-Wno-value-out-of-range"}).find("out of range"));
    EXPECT_NE(std::string::npos,
              messages("file", {"-Werror=value-out-of-range"}).find("error: '0' is out of range"));
    EXPECT_EQ(2, lint("file", {"-Wno-such-rule"}).m_status);
    EXPECT_EQ(2, lint("file", {"-Werror=such"}).m_status);
}

TEST_F(Lint, ShowsAsManyMessagesAsAreWanted)
{
    write("file", TWO_MISTAKES);
    const JSON json =
        JSON::parse(lint("file", {"--max-messages", "1", "--format", "json"}).m_output);
    EXPECT_EQ(1U, json["messages"].size());
    EXPECT_GT(json["not_shown"], 0);
    EXPECT_NE(std::string::npos,
              lint("file", {"--max-messages=1"}).m_output.find("are not shown in 1 file"));
}

TEST_F(Lint, TellsOfASecondFamilyInAFile)
{
    write("file", "family F\npll FAST_PLL\nfamily G\n");
    EXPECT_NE(std::string::npos, messages("file").find("file:3:8: warning: a second family"));
    EXPECT_NE(std::string::npos, messages("file").find("[two-families]"));
}

TEST_F(Lint, TellsOfAnUnknownFormatWordWhoseRowsFit)
{
    write("table", "V3 one's own\ntitles\n1 2 3 60 5 6 60 8 9 60 1 2\n");
    EXPECT_EQ("table:1:1: warning: unknown format word 'V3', which is read as V1; did you mean "
              "V2? [table-format-unknown]\n",
              messages("table"));
}

TEST_F(Lint, TellsOfUnknownRulesInComments)
{
    write("file", "family F # lint: allow out-of-scop\n");
    EXPECT_NE(std::string::npos, messages("file").find("file:1:24: warning: unknown rule"));
    EXPECT_NE(std::string::npos, messages("file").find("[unknown-rule]"));
}

TEST_F(Lint, ExplainsRules)
{
    const RUN run = run_pllcalc("lint --explain stale-part");
    EXPECT_EQ(0, run.m_status);
    EXPECT_EQ(0U, run.m_output.find("stale-part (warning)\n"));
    EXPECT_NE(std::string::npos, run.m_output.find("\n  cure:  "));
    EXPECT_NE(std::string::npos, run_pllcalc("lint --explain all").m_output.find("utf-16"));
    EXPECT_EQ(2, run_pllcalc("lint --explain stale").m_status);
}

TEST_F(Lint, LooksAtAnIncludedFileWithinItsFamily)
{
    write("limits.txt", "vco_min 1000\nvco_mx 2000\n");
    write("family.txt", "family F\npll FAST_PLL\nspeed_grade 1\npart P\ninclude limits.txt\n");
    EXPECT_EQ("limits.txt:2:1: error: unknown keyword 'vco_mx'; did you mean vco_max? "
              "[unknown-keyword]\n  included from family.txt:5\n",
              messages("limits.txt", {"--within", m_directory.file("family.txt")}));
    EXPECT_NE(std::string::npos, messages("limits.txt")
                                     .find("limits.txt:1:1: note: the file "
                                           "selects no family"));
    EXPECT_NE(std::string::npos, messages("limits.txt").find("[fragment]"));
    EXPECT_EQ(4, lint("other.txt", {"--within", m_directory.file("family.txt")}).m_status);
}

TEST_F(Lint, TakesSeveralPathsAndTheStandardInput)
{
    write("one", "nonsense\n");
    write("two", "nonsense\n");
    const RUN run =
        run_program(PLLCALC, {"lint", m_directory.file("one"), m_directory.file("two")});
    EXPECT_NE(std::string::npos, run.m_output.find("one:1:1: error"));
    EXPECT_NE(std::string::npos, run.m_output.find("two:1:1: error"));
    const RUN piped = run_program("/bin/sh", {"-c", "echo nonsense | " PLLCALC " lint -"});
    EXPECT_EQ(0U, piped.m_output.find("-:1:1: error")) << piped.m_output;
    EXPECT_EQ(3, piped.m_status);
}

TEST_F(Lint, WritesJsonAndSarifOfWhatDoesNotExist)
{
    const RUN json = lint("missing", {"--format", "json"});
    EXPECT_EQ(4, json.m_status);
    EXPECT_EQ("file-not-opened", JSON::parse(json.m_output)["messages"][0]["name"]);
    const RUN sarif = lint("missing", {"--format", "sarif"});
    EXPECT_EQ(4, sarif.m_status);
    const JSON run = JSON::parse(sarif.m_output)["runs"][0];
    EXPECT_EQ("file-not-opened", run["results"][0]["ruleId"]);
    EXPECT_EQ(false, run["invocations"][0]["executionSuccessful"]);
}

TEST_F(Lint, SaysInSarifWhoIncludedAFileAndWhatRulesMean)
{
    write("file", "family F\ninclude part.txt\n");
    write("part.txt", "nonsense\n");
    const JSON run = JSON::parse(lint("file", {"--format", "sarif"}).m_output)["runs"][0];
    const JSON& related = run["results"][0]["relatedLocations"][0];
    EXPECT_EQ(2, related["physicalLocation"]["region"]["startLine"]);
    EXPECT_EQ("included from", related["message"]["text"]);
    for (const JSON& rule : run["tool"]["driver"]["rules"]) {
        EXPECT_FALSE(rule["fullDescription"]["text"].get<std::string>().empty());
        EXPECT_FALSE(rule["help"]["text"].get<std::string>().empty());
    }
    const JSON json = JSON::parse(lint("file", {"--format", "json"}).m_output);
    EXPECT_EQ(2, json["messages"][0]["included_from"][0]["line"]);
}

TEST_F(Lint, CountsColumnsInCharacters)
{
    write("file", "family \"caf\xC3\xA9\" extra\n");
    const JSON json = JSON::parse(lint("file", {"--format", "json"}).m_output);
    EXPECT_EQ(15, json["messages"][1]["column"]);
    EXPECT_NE(std::string::npos,
              messages("file", {"--caret", "always"}).find("\n                ^~~~~\n"));
}

}  // namespace
