// What an observer hears of the database's readers. That reading is the same with and without one
// is told by the comparison with the plain model.
#include "error_guard.h"
#include "failing_heap.h"
#include "manager_builders.h"

#include "pll_observer.h"
#include "sample_files.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

std::string file_of(const PLL_SOURCE_PLACE& place)
{
    const std::string file = place.m_file;
    return file.substr(file.rfind('/') + 1);
}

std::string text_of(const PLL_SOURCE_PLACE& place)
{
    return file_of(place) + ":" + std::to_string(place.m_line) + ":" +
           std::to_string(place.m_column) + "+" + std::to_string(place.m_length);
}

// Writes down what it hears.
class RECORDER : public PLL_READ_OBSERVER
{
public:
    void on_statement(const PLL_READ_STATEMENT& statement) override
    {
        const char* const RESULTS[] = {"stored", "skipped", "failed"};
        std::string text = text_of(statement.m_place) + " " + statement.m_keyword + " " +
                           RESULTS[static_cast<int>(statement.m_result)];
        if (statement.m_reason != PLL_FINDING::NONE) {
            text += std::string(" for ") + pll_get_finding_name(statement.m_reason);
        }
        if (statement.m_family != nullptr && statement.m_family->m_name != nullptr) {
            text += std::string(" family ") + statement.m_family->m_name;
        }
        if (statement.m_type != PLL_TYPE_MAX) {
            text += " type " + std::to_string(statement.m_type);
        }
        if (statement.m_speed_grade != nullptr) {
            text += std::string(" grade ") + statement.m_speed_grade;
        }
        if (statement.m_part != nullptr) {
            text += std::string(" part ") + statement.m_part->m_name;
        }
        if (statement.m_row != nullptr) {
            text += " row of M " + std::to_string(statement.m_row->m_m);
        }
        m_statements.push_back(text);
    }

    void on_finding(const PLL_READ_FINDING& finding) override
    {
        std::string text = text_of(finding.m_place) + " " +
                           pll_get_finding_name(finding.m_finding) + " '" + finding.m_word + "'";
        if (*finding.m_needed != '\0') {
            text += std::string(" needs ") + finding.m_needed;
        }
        if (finding.m_limit != 0) {
            text += " " + std::to_string(finding.m_value) + "/" + std::to_string(finding.m_limit);
        }
        m_findings.push_back(text);
    }

    std::vector<std::string> m_statements;
    std::vector<std::string> m_findings;
};

// ---- Findings

struct FINDING_CASE
{
    const char* m_name;
    std::string m_text;
    bool m_is_read;
    std::vector<std::string> m_findings;
};

// The lines of HEAD are 1 to 4.
const std::string HEAD = PART_HEAD;

// clang-format off
const FINDING_CASE FINDING_CASES[] = {
    // name                                      text                                       read   findings
    {"nothing to find",                          HEAD + "vco_min 1 # fast\n\n#\n",          true,  {}},
    {"no statement",                             "# nothing\n",                             false, {"family.txt:0:0+0 no-statement 'family.txt'"}},
    {"an unknown keyword",                       HEAD + " vco_mim 1\n",                     false, {"family.txt:5:2+7 unknown-keyword 'vco_mim'"}},
    {"an unknown keyword behind a table",        HEAD + "\tx\n",                            false, {"family.txt:5:2+1 unknown-keyword 'x'"}},
    {"an unknown type",                          "pll \"A PLL\"\n",                         false, {"family.txt:1:6+5 unknown-pll-type 'A PLL'"}},
    {"no type",                                  "pll\t# one of four\n",                    false, {"family.txt:1:5+0 unknown-pll-type ''"}},
    {"no family",                                "family  \n",                              false, {"family.txt:1:9+0 name-missing ''"}},
    {"no speed grade",                           "family F\nspeed_grade",                   false, {"family.txt:2:12+0 name-missing ''"}},
    {"no part",                                  HEAD + "part\n",                           false, {"family.txt:5:5+0 name-missing ''"}},
    {"no table file",                            HEAD + "bandwidth_settings_table_file\n",  false, {"family.txt:5:30+0 name-missing ''"}},
    {"an empty name is a name",                  "family \"\"\n",                           true,  {}},
    {"no number",                                HEAD + "vco_min #1\n",                     false, {"family.txt:5:9+0 number-expected ''"}},
    {"a negative number",                        HEAD + "n_counter_max -1\n",               false, {"family.txt:5:15+2 number-expected '-1'"}},
    {"no post-scale",                            HEAD + "vco_min_post_scale one 5\n",       false, {"family.txt:5:20+3 number-expected 'one'"}},
    {"no value behind a post-scale",             HEAD + "vco_min_post_scale 1\n",           false, {"family.txt:5:21+0 number-expected ''"}},
    {"a real zero",                              HEAD + "ss_bandwidth 0e9\n",               false, {"family.txt:5:14+3 real-expected '0e9'"}},
    {"a real that is a word",                    HEAD + "ss_bandwidth fast\n",              false, {"family.txt:5:14+4 real-expected 'fast'"}},
    {"an empty list",                            HEAD + "charge_pump_current\n",            false, {"family.txt:5:20+0 list-empty ''"}},
    {"an empty list of counters",                HEAD + "reconfig_type long\nreconfig_scan_chain_counter_order end\n", false,
                                                                                                   {"family.txt:6:35+3 list-empty 'end'"}},
    {"a type keyword before the family",         "n_counter_max x\nfamily F\n",             true,  {"family.txt:1:1+13 out-of-scope 'n_counter_max' needs family"}},
    {"a type keyword before the type",           "family F\nN_COUNTER_MAX x\n",             true,  {"family.txt:2:1+13 out-of-scope 'N_COUNTER_MAX' needs pll"}},
    {"a part before the speed grade",            TYPE_HEAD + "part P\n",                    true,  {"family.txt:3:1+4 out-of-scope 'part' needs speed_grade"}},
    {"a limit before the part",                  TYPE_HEAD + "vco_min 1\n",                 true,  {"family.txt:3:1+7 out-of-scope 'vco_min' needs part"}},
    {"a scan chain before the reconfiguration",  TYPE_HEAD + "reconfig_scan_chain_counter_order C0\n", true,
                                                                                                   {"family.txt:3:1+33 out-of-scope 'reconfig_scan_chain_counter_order' needs reconfig_type"}},
    {"an include that does not exist",           "include \"no file\"\n",                   true,  {"family.txt:1:10+7 include-not-opened 'no file'"}},
    {"an include without a name",                "include\n",                               true,  {"family.txt:1:8+0 include-not-opened ''"}},
    {"a file that includes itself",              "include family.txt\n",                    false, {"family.txt:1:9+10 include-too-deep 'family.txt'"}},
    {"an unknown reconfiguration type",          TYPE_HEAD + "reconfig_type lnog\n",        true,  {"family.txt:3:15+4 unknown-reconfig-type 'lnog'"}},
    {"a reconfiguration type in quotes",         TYPE_HEAD + "reconfig_type \"long\"\n",    true,  {"family.txt:3:15+6 quoted-reconfig-type '\"long\"'"}},
    {"unknown counters",                         TYPE_HEAD + "reconfig_type long\nreconfig_scan_chain_counter_order C0 \"C 1\" M x end y\n", true,
                                                                                                   {"family.txt:4:39+3 unknown-counter 'C 1'", "family.txt:4:46+1 unknown-counter 'x'", "family.txt:4:52+1 extra-words 'y'"}},
    {"a flag of another language",               HEAD + "not_listed ja\n",                  true,  {"family.txt:5:12+2 unknown-flag 'ja'"}},
    {"a flag without a word",                    HEAD + "not_listed\n",                     true,  {"family.txt:5:11+0 unknown-flag ''"}},
    {"flags that say what they are",             HEAD + "not_listed NO\nnot_listed yes\n",  true,  {}},
    {"words after the operand",                  HEAD + "vco_min 5 ps fast\n",              true,  {"family.txt:5:11+2 extra-words 'ps'"}},
    {"words behind a real number",               HEAD + "ss_bandwidth 1.5MHz\n",            true,  {"family.txt:5:17+3 extra-words 'MHz'"}},
    {"words behind a name",                      "family A B\n",                            true,  {"family.txt:1:10+1 extra-words 'B'"}},
    {"a list that a word cuts",                  HEAD + "charge_pump_current 1 2 x 4\n",    true,  {"family.txt:5:25+1 list-cut-short 'x'"}},
    {"a list that a large number cuts",          HEAD + "charge_pump_current 1 2147483648 4\n", true,
                                                                                                   {"family.txt:5:23+10 list-cut-short '2147483648'"}},
    {"a number of more than 32 bits",            HEAD + "vco_min 4294967297\n",             true,  {"family.txt:5:9+10 number-cut '4294967297' 1/2147483647"}},
    {"the largest number",                       HEAD + "vco_min 2147483647\n",             true,  {}},
    {"a part in another speed grade",            HEAD + "speed_grade 7\npart p1\n",         true,  {"family.txt:6:6+2 part-in-other-grade 'p1'"}},
    {"a part in another type",                   HEAD + "pll FAST_PLL\nspeed_grade 7\npart P1\n", true, {}},
    {"a table that is not there",                TYPE_HEAD + "bandwidth_settings_table_file t\n", false,
                                                                                                   {"t:0:0+0 table-not-opened 't'"}},
    {"a table that is too large",                TYPE_HEAD + "vco_post_scale_counter_max 1\nm_counter_max 4194304\nbandwidth_settings_table_file t\n", false,
                                                                                                   {"t:0:0+0 table-too-large 't' 4194305/4194304"}},
};
// clang-format on

std::string without_directories(std::string text)
{
    const std::size_t quote = text.find('\'');
    const std::size_t slash = text.rfind('/', text.rfind('\''));
    if (quote != std::string::npos && slash != std::string::npos && slash > quote) {
        text.erase(quote + 1, slash - quote);
    }
    return text;
}

std::vector<std::string> without_directories(const std::vector<std::string>& texts)
{
    std::vector<std::string> short_texts;
    for (const std::string& text : texts) {
        short_texts.push_back(without_directories(text));
    }
    return short_texts;
}

TEST(ReadObserver, HearsOfWhatIsWrongInAFamilyFile)
{
    for (const FINDING_CASE& c : FINDING_CASES) {
        SCOPED_TRACE(c.m_name);
        DATABASE database;
        RECORDER recorder;
        database.m_manager.set_observer(&recorder);
        EXPECT_EQ(c.m_is_read, database.read(c.m_text));
        EXPECT_EQ(c.m_findings, without_directories(recorder.m_findings));
    }
}

TEST(ReadObserver, HearsOfPostScalesThatDoNotExist)
{
    EXPECTED_REPORTS reports;
    DATABASE database;
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_TRUE(
        database.read(PART_HEAD + "vco_post_scale_counter_max 3\nvco_max_post_scale 4 9\n"));
    reports.expect_sequence({"m_vco_post_scale_counter_max <= PLL_VCO_POST_SCALE_MAX",
                             "vco_post_scale <= PLL_VCO_POST_SCALE_MAX"},
                            "pll_info");
    EXPECT_EQ((std::vector<std::string>{"family.txt:5:28+1 post-scale-too-large '3' 3/2",
                                        "family.txt:6:20+1 post-scale-too-large '4' 4/2"}),
              recorder.m_findings);
    EXPECT_EQ("family.txt:5:1+26 vco_post_scale_counter_max stored family Fam type 0",
              recorder.m_statements[4]);
    EXPECT_EQ("family.txt:6:1+18 vco_max_post_scale skipped for post-scale-too-large family Fam "
              "type 0 grade 6 part P1",
              recorder.m_statements[5]);
}

TEST(ReadObserver, HearsOfLinesThatAreCut)
{
    const std::string text = "family F # ";
    for (const std::size_t size : {std::size_t{1022}, std::size_t{1023}, std::size_t{1024}}) {
        DATABASE database;
        RECORDER recorder;
        database.m_manager.set_observer(&recorder);
        EXPECT_TRUE(database.read(text + std::string(size - text.size(), 'x') + "\r\n"));
        const std::vector<std::string> expected = {"family.txt:1:1024+0 line-cut '' 1024/1023"};
        EXPECT_EQ(size == 1024 ? expected : std::vector<std::string>(), recorder.m_findings)
            << size;
    }
    DATABASE database;
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_TRUE(database.read(std::string("family F\0 x\n", 12)));
    EXPECT_EQ(std::vector<std::string>{"family.txt:1:9+0 line-with-nul ''"}, recorder.m_findings);
}

TEST(ReadObserver, HearsOfTooManyFiles)
{
    DATABASE database;
    std::string includes;
    for (int i = 0; i < 1000; ++i) {
        includes += "include empty.txt\n";
    }
    database.write("empty.txt", "");
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_FALSE(database.read(includes));
    EXPECT_EQ(std::vector<std::string>{"family.txt:1000:9+9 too-many-files 'empty.txt'"},
              recorder.m_findings);
}

// ---- Statements

TEST(ReadObserver, HearsWhereEachStatementWent)
{
    DATABASE database;
    database.write("more.txt", "\n\nvco_max 7\n");
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_FALSE(database.read("vco_min 1\nFamily Fam\n  pll FAST_PLL\nn_counter_max 3\n"
                               "speed_grade 6\npart P1\ninclude more.txt\nfamily G\nvco_min 5\n"
                               "include none\nreconfig_type x\nfoo\n"));
    const std::vector<std::string> expected = {
        "family.txt:1:1+7 vco_min skipped for out-of-scope",
        "family.txt:2:1+6 family stored family Fam",
        "family.txt:3:3+3 pll stored type 1",
        "family.txt:4:1+13 n_counter_max stored family Fam type 1",
        "family.txt:5:1+11 speed_grade stored family Fam grade 6",
        "family.txt:6:1+4 part stored family Fam type 1 grade 6 part P1",
        "family.txt:7:1+7 include stored",
        "more.txt:3:1+7 vco_max stored family Fam type 1 grade 6 part P1",
        "family.txt:8:1+6 family stored family G",
        "family.txt:9:1+7 vco_min stored family Fam type 1 grade 6 part P1",
        "family.txt:10:1+7 include skipped for include-not-opened",
        "family.txt:11:1+13 reconfig_type skipped for unknown-reconfig-type family G type 1",
        "family.txt:12:1+3  failed for unknown-keyword"};
    EXPECT_EQ(expected, recorder.m_statements);
}

TEST(ReadObserver, HearsOfAScanChainInTheTypeThatHasIt)
{
    DATABASE database;
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_TRUE(database.read(TYPE_HEAD + "reconfig_type long\nfamily G\npll FAST_PLL\n"
                                          "reconfig_scan_chain_counter_order C0\n"));
    EXPECT_EQ("family.txt:6:1+33 reconfig_scan_chain_counter_order stored family Fam type 0",
              recorder.m_statements.back());
}

// ---- Path files

TEST(ReadObserver, HearsOfThePathFile)
{
    DATABASE database;
    database.write("ddb_pll_path.txt", "# families\nA . a.txt b.txt\n \"B b\"\n");
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_TRUE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_EQ((std::vector<std::string>{"ddb_pll_path.txt:2:1+1  stored family A",
                                        "ddb_pll_path.txt:3:3+3  stored family B b"}),
              recorder.m_statements);
    EXPECT_EQ(std::vector<std::string>{"ddb_pll_path.txt:2:11+5 extra-words 'b.txt'"},
              recorder.m_findings);

    recorder.m_findings.clear();
    EXPECT_EQ(nullptr, database.m_manager.read_family_info("a"));
    EXPECT_EQ(nullptr, database.m_manager.read_family_info("B B"));
    EXPECT_EQ((std::vector<std::string>{"a.txt:0:0+0 family-file-not-opened 'a.txt'",
                                        "B b:0:0+0 family-without-file 'B b'"}),
              without_directories(recorder.m_findings));
}

TEST(ReadObserver, HearsWhyAPathFileIsNotRead)
{
    DATABASE database;
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_FALSE(database.m_manager.read(database.m_dir.path().c_str()));
    database.write("ddb_pll_path.txt", "#\n");
    EXPECT_FALSE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_EQ(
        (std::vector<std::string>{"ddb_pll_path.txt:0:0+0 path-file-not-opened 'ddb_pll_path.txt'",
                                  "ddb_pll_path.txt:0:0+0 no-family 'ddb_pll_path.txt'"}),
        without_directories(recorder.m_findings));
}

TEST(ReadObserver, HearsOfAFamilyThatAnotherFileLoads)
{
    DATABASE database;
    database.write("ddb_pll_path.txt", "A . a.txt\nB . b.txt\nC . a.txt\n");
    const std::string part = "pll FAST_PLL\nspeed_grade 6\n";
    database.write("a.txt", "family B\n" + part +
                                "part P\npart Q\nfamily C\npart R\nfamily A\n"
                                "part S\nfamily D\npart T\n");
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    EXPECT_TRUE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_NE(nullptr, database.m_manager.read_family_info("A"));
    EXPECT_EQ(std::vector<std::string>{"a.txt:4:6+1 foreign-family 'P'"}, recorder.m_findings);
}

// ---- Tables

struct TABLE_CASE
{
    const char* m_name;
    std::string m_text;
    bool m_is_read;
    std::vector<std::string> m_findings;
};

const std::string SIMPLE = "SIMPLE_V1 x\ntitles\n";  // rows from line 3

// clang-format off
const TABLE_CASE TABLE_CASES[] = {
    // name                                 text                                      read   findings
    {"nothing to find",                     SIMPLE + "1 2 3\n 10\t2 3 note\n",        true,  {}},
    {"notes after the table",               SIMPLE + "1 2 3\n\nmade by hand\n",       true,  {}},
    {"carriage returns at the ends",        SIMPLE + "1 2 3\r\n4 5 6\r\n",            true,  {}},
    {"no format word",                      "",                                       false, {"t:1:1+0 table-format-missing ''"}},
    {"a format word without a blank",       "V2",                                     false, {"t:1:1+2 table-format-missing 'V2'"}},
    {"a format word that a tab ends",       "V2\tx y\ntitles\n1 2 3 4 5 6 7 8 9 10 11 12\n", true,
                                                                                             {"t:1:1+2 table-format-unended 'V2'"}},
    {"a word in a column",                  SIMPLE + "1 2 3\n1 two 3\n",              false, {"t:4:3+3 table-number-expected 'two'"}},
    {"a fraction in a column",              SIMPLE + "1.5 2 3\n",                     false, {"t:3:2+2 table-number-expected '.5'"}},
    {"a number that is too large",          SIMPLE + "1 2 2147483648\n",              false, {"t:3:5+10 table-number-expected '2147483648'"}},
    {"a column that is missing at the end", SIMPLE + "1 2 3\n4 5\n",                  false, {"t:5:1+0 table-number-expected ''"}},
    {"no line break at the end",            SIMPLE + "1 2 3\n4 5 6",                  false, {"t:4:5+1 table-line-unfinished '6'"}},
    {"no rows",                             SIMPLE,                                   false, {"t:3:0+0 table-without-rows ''"}},
    {"rows below an empty line",            SIMPLE + "\n1 2 3\n",                     false, {"t:3:0+0 table-without-rows ''", "t:4:1+1 rows-after-empty-line '1'"}},
    {"more rows below an empty line",       SIMPLE + "1 2 3\n\nnote\n -4 5 6\n7 8 9\n", true, {"t:6:2+2 rows-after-empty-line '-4'"}},
    {"a row over two lines",                SIMPLE + "1 2\n3\n4 5 6\n",               true,  {"t:3:1+1 row-over-lines '1'"}},
    {"a carriage return alone",             SIMPLE + "1 2 3\n\r\n4 5 6\n",            true,  {"t:4:1+1 carriage-return-line '\r'"}},
    {"carriage returns at the start and end", SIMPLE + "\r\n1 2 3\n\r\n",             false, {"t:3:1+1 carriage-return-line '\r'", "t:5:1+1 carriage-return-line '\r'", "t:6:1+0 table-number-expected ''"}},
    {"a line of blanks",                    SIMPLE + "1 2 3\n \t\n4 5 6\n",           true,  {}},
};
// clang-format on

class ReadObserverOfTables : public testing::Test
{
protected:
    ReadObserverOfTables()
    {
        m_family.m_basic_infos[FAST_PLL].m_vco_post_scale_counter_max = 1;
        m_family.m_basic_infos[FAST_PLL].m_m_counter_max = 10;
    }

    bool read(const std::string& text, PLL_READ_OBSERVER* observer)
    {
        write_file(m_dir.file("t"), text);
        return pll_observe_bandwidth_settings_table_file(&m_family, FAST_PLL,
                                                         m_dir.file("t").c_str(), observer);
    }

    TEMP_DIR m_dir;
    PLL_FAMILY_INFO m_family;
};

TEST_F(ReadObserverOfTables, HearsOfWhatIsWrong)
{
    for (const TABLE_CASE& c : TABLE_CASES) {
        SCOPED_TRACE(c.m_name);
        RECORDER recorder;
        EXPECT_EQ(c.m_is_read, read(c.m_text, &recorder));
        EXPECT_EQ(c.m_findings, recorder.m_findings);
        EXPECT_EQ(c.m_is_read, read(c.m_text, nullptr));
    }
}

TEST_F(ReadObserverOfTables, HearsOfEveryRow)
{
    EXPECTED_REPORTS reports;
    RECORDER recorder;
    EXPECT_FALSE(read(SIMPLE + "1 2 3\n\r\n  11 5 6\n-1 5 6\n10 x\n", &recorder));
    reports.expect_only("bandwidth_setting->m_m < bandwidth_settings_table_size", "pll_manager", 2);
    EXPECT_EQ(
        (std::vector<std::string>{"t:3:1+1  stored type 1 row of M 1",
                                  "t:5:3+2  skipped for row-without-group type 1",
                                  "t:6:1+2  skipped for row-without-group type 1",
                                  "t:7:1+2  failed for table-number-expected type 1 row of M 10"}),
        recorder.m_statements);
    EXPECT_EQ((std::vector<std::string>{
                  "t:4:1+1 carriage-return-line '\r'", "t:5:3+2 row-without-group '11' 11/10",
                  "t:6:1+2 row-without-group '-1' -1/10", "t:7:4+1 table-number-expected 'x'"}),
              recorder.m_findings);
}

// Places are found in blocks of the file, words are quoted up to a length.
TEST_F(ReadObserverOfTables, FindsPlacesFarInAFile)
{
    std::string text = SIMPLE;
    for (int i = 0; i < 3000; ++i) {
        text += "1 2 3\n";
    }
    RECORDER recorder;
    EXPECT_FALSE(read(text + "1 2 " + std::string(5000, 'x') + "\n", &recorder));
    EXPECT_EQ(std::vector<std::string>{"t:3003:5+63 table-number-expected '" +
                                       std::string(63, 'x') + "'"},
              recorder.m_findings);
    EXPECT_EQ(3001U, recorder.m_statements.size());
}

// ---- Files that the system refuses

// A regular file that opens and whose first read fails.
const char UNREADABLE[] = "/proc/self/mem";

class REASONS : public PLL_READ_OBSERVER
{
public:
    void on_statement(const PLL_READ_STATEMENT&) override {}
    void on_finding(const PLL_READ_FINDING& finding) override
    {
        m_texts.push_back(text_of(finding.m_place) + " " + pll_get_finding_name(finding.m_finding) +
                          " for " + std::to_string(finding.m_system_error));
    }

    std::vector<std::string> m_texts;
};

std::string reason(const std::string& place, const std::string& finding, int error)
{
    return place + " " + finding + " for " + std::to_string(error);
}

TEST(ReadObserver, HearsWhyAFileIsNotReadToItsEnd)
{
    DATABASE database;
    REASONS reasons;
    database.m_manager.set_observer(&reasons);
    const std::string directory = database.m_dir.path();
    ASSERT_EQ(0, symlink(UNREADABLE, database.m_dir.file("mem").c_str()));
    ASSERT_EQ(0, symlink(UNREADABLE, database.m_dir.file("ddb_pll_path.txt").c_str()));
    EXPECT_FALSE(database.m_manager.read(directory.c_str()));
    EXPECT_FALSE(database.m_manager.read_family_info_from_file(directory.c_str(), "mem"));
    EXPECT_FALSE(database.read("family F\ninclude mem\nnonsense\n"));
    EXPECT_FALSE(database.read(TYPE_HEAD + "vco_post_scale_counter_max 1\nm_counter_max 4\n"
                                           "bandwidth_settings_table_file mem\n"));
    EXPECT_EQ((std::vector<std::string>{reason("ddb_pll_path.txt:1:0+0", "read-failed", EIO),
                                        reason("mem:1:0+0", "read-failed", EIO),
                                        reason("mem:1:0+0", "read-failed", EIO),
                                        reason("mem:1:0+0", "read-failed", EIO)}),
              reasons.m_texts);
    EXPECT_EQ(5, database.basic().m_bandwidth_settings_table_size);

    database.m_manager.set_observer(nullptr);
    EXPECT_FALSE(database.m_manager.read(directory.c_str()));
    EXPECT_FALSE(database.read("family F\ninclude mem\n"));
}

TEST(ReadObserver, HearsWhyAFileIsNotOpened)
{
    DATABASE database;
    REASONS reasons;
    database.m_manager.set_observer(&reasons);
    ASSERT_EQ(0, mkfifo(database.m_dir.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    ASSERT_EQ(0, symlink("loop", database.m_dir.file("loop").c_str()));
    EXPECT_TRUE(database.read("family F\ninclude nowhere\ninclude .\ninclude pipe\n"
                              "include loop\ninclude family.txt/x\ninclude\n"));
    EXPECT_EQ((std::vector<std::string>{
                  reason("family.txt:2:9+7", "include-not-opened", ENOENT),
                  reason("family.txt:3:9+1", "include-not-opened", PLL_NOT_A_REGULAR_FILE),
                  reason("family.txt:4:9+4", "include-not-opened", PLL_NOT_A_REGULAR_FILE),
                  reason("family.txt:5:9+4", "include-not-opened", ELOOP),
                  reason("family.txt:6:9+12", "include-not-opened", ENOTDIR),
                  reason("family.txt:7:8+0", "include-not-opened", 0)}),
              reasons.m_texts);
}

// ---- Observers that misbehave, and memory

class THROWER : public PLL_READ_OBSERVER
{
public:
    void on_statement(const PLL_READ_STATEMENT&) override { throw std::runtime_error("no"); }
    void on_finding(const PLL_READ_FINDING&) override { throw 1; }
};

TEST(ReadObserver, MayThrow)
{
    DATABASE database;
    THROWER thrower;
    database.m_manager.set_observer(&thrower);
    EXPECT_EQ(&thrower, database.m_manager.get_observer());
    database.write("t", SIMPLE + "1 2 3\n\n4 5 6\n");
    EXPECT_TRUE(database.read(PART_HEAD + "vco_min 5 6\nvco_post_scale_counter_max 1\n"
                                          "m_counter_max 1\nbandwidth_settings_table_file t\n"));
    EXPECT_EQ(5, database.timing().get_vco_min_period(1));
    EXPECT_EQ(2, database.basic().m_bandwidth_settings_table_size);
    EXPECT_FALSE(database.read("nonsense\n"));
}

TEST(ReadObserver, IsNotHeardOfAfterItWasTakenAway)
{
    DATABASE database;
    RECORDER recorder;
    database.m_manager.set_observer(&recorder);
    database.m_manager.set_observer(nullptr);
    EXPECT_TRUE(database.read("family F x\n"));
    EXPECT_TRUE(recorder.m_findings.empty());
    EXPECT_TRUE(recorder.m_statements.empty());
}

// Exhausted memory is nothing that an author of a database could mend: no other verdict takes its
// place, and every reading that fails has told of it.
TEST(ReadObserver, HearsOfExhaustedMemoryAsSuch)
{
    class COUNTER : public PLL_READ_OBSERVER
    {
    public:
        void on_statement(const PLL_READ_STATEMENT& statement) override
        {
            m_failures += statement.m_result == PLL_READ_RESULT::FAILED ? 1 : 0;
        }
        void on_finding(const PLL_READ_FINDING& finding) override
        {
            const bool is_memory = finding.m_finding == PLL_FINDING::OUT_OF_MEMORY;
            m_others += pll_is_read_error(finding.m_finding) && !is_memory ? 1 : 0;
            m_exhaustions += is_memory ? 1 : 0;
        }
        int m_failures = 0;
        int m_exhaustions = 0;
        int m_others = 0;
    };
    TEMP_DIR dir;
    for (const SAMPLE_FILE& file : sample_files()) {
        write_file(dir.file(file.m_name), file.m_text);
    }
    FAILING_HEAP heap;
    int failures = 0;
    int refusals = 0;
    bool is_read = false;
    for (long nth = 1; !is_read; ++nth) {
        SCOPED_TRACE(nth);
        ASSERT_GT(2000, nth);
        COUNTER counter;
        EXPECTED_REPORTS reports;
        reports.accept_all();
        heap.fail_at(nth);
        const std::unique_ptr<PLL_MANAGER> manager(new PLL_MANAGER);
        if (manager != nullptr) {
            manager->set_observer(&counter);
            is_read = manager->read(dir.path().c_str()) &&
                      manager->read_family_info("Fam") != nullptr && heap.get_failures() == 0;
            EXPECT_EQ(is_read ? 0 : 1, counter.m_exhaustions);
            EXPECT_EQ(0, counter.m_others);
        }
        heap.fail_none();
        failures += counter.m_failures;
        ++refusals;
    }
    EXPECT_LT(0, failures);
    EXPECT_LT(20, refusals);
    EXPECT_EQ(0U, MEM_MANAGER::get_live_blocks(nullptr));
}

// ---- Names and words

TEST(ReadFindings, HaveNamesOfTheirOwn)
{
    std::set<std::string> names;
    for (int i = 0; i < static_cast<int>(PLL_FINDING::NONE); ++i) {
        const std::string name = pll_get_finding_name(static_cast<PLL_FINDING>(i));
        EXPECT_EQ(std::string::npos, name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-")) << name;
        EXPECT_NE("", name);
        EXPECT_TRUE(names.insert(name).second) << name;
    }
    EXPECT_STREQ("", pll_get_finding_name(PLL_FINDING::NONE));
    EXPECT_STREQ("", pll_get_finding_name(static_cast<PLL_FINDING>(-1)));
    EXPECT_STREQ("", pll_get_finding_name(static_cast<PLL_FINDING>(1000)));
}

TEST(ReadFindings, AreErrorsUpToTheTables)
{
    EXPECT_TRUE(pll_is_read_error(PLL_FINDING::PATH_FILE_NOT_OPENED));
    EXPECT_TRUE(pll_is_read_error(PLL_FINDING::OUT_OF_MEMORY));
    EXPECT_FALSE(pll_is_read_error(PLL_FINDING::OUT_OF_SCOPE));
    EXPECT_FALSE(pll_is_read_error(PLL_FINDING::NONE));
}

TEST(Vocabularies, EndWithANull)
{
    const std::pair<PLL_VOCABULARY, int> SIZES[] = {
        {PLL_VOCABULARY::NONE, 0},           {PLL_VOCABULARY::KEYWORDS, 85},
        {PLL_VOCABULARY::PLL_TYPES, 4},      {PLL_VOCABULARY::RECONFIG_TYPES, 4},
        {PLL_VOCABULARY::COUNTERS, 20},      {PLL_VOCABULARY::FLAGS, 6},
        {static_cast<PLL_VOCABULARY>(9), 0},
    };
    for (const auto& [vocabulary, size] : SIZES) {
        EXPECT_EQ(nullptr, pll_get_word(vocabulary, -1));
        EXPECT_EQ(nullptr, pll_get_word(vocabulary, size));
        for (int i = 0; i < size; ++i) {
            EXPECT_NE(nullptr, pll_get_word(vocabulary, i)) << i;
        }
    }
}

}  // namespace
