// Devices of a database as the program finds and uses them, where a transcript does not say it all.

#include "program.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <set>

namespace {

using JSON = nlohmann::json;

const std::string SAMPLE = std::string(PLL_DATA_DIR) + "/sample";

// The variable that names a database, for as long as it lives.
class DATABASE_VARIABLE
{
public:
    explicit DATABASE_VARIABLE(const std::string& directory)
    {
        setenv("PLL_DATABASE", directory.c_str(), 1);
    }
    ~DATABASE_VARIABLE() { unsetenv("PLL_DATABASE"); }
    DATABASE_VARIABLE(const DATABASE_VARIABLE&) = delete;
    DATABASE_VARIABLE& operator=(const DATABASE_VARIABLE&) = delete;
};

// A database of one family, written for a test.
class OWN_DATABASE
{
public:
    explicit OWN_DATABASE(const std::string& family_file)
    {
        write("ddb_pll_path.txt", "Own . own.txt\n");
        write("own.txt", family_file);
    }

    const std::string& get_directory() const { return m_directory.path(); }
    void write(const std::string& name, const std::string& text) const
    {
        write_file(m_directory.file(name), text);
    }
    RUN run(const std::string& command, const std::string& words) const
    {
        return run_pllcalc(command + " --database " + m_directory.path() + words);
    }

private:
    const TEMP_DIR m_directory;
};

const char* const OWN_FAMILY =
    "family Own\npll FAST_PLL\nnumber_of_output_counters 2\nm_counter_max 64\nn_counter_max 8\n"
    "vco_post_scale_counter_max 1\noutput_counter_high_low_max 32\ncharge_pump_current 10\n"
    "speed_grade 1\npart P1\nvco_min 1000\nvco_max 2500\nvco_center 1500\nvco_gain 1000\n"
    "pfd_min 3000\npfd_max 100000\ninput_min 1500\n";

// The family with the first `from` replaced.
std::string own_family_with(const std::string& from, const std::string& to)
{
    std::string family = OWN_FAMILY;
    return family.replace(family.find(from), from.size(), to);
}

// What the file says may narrow the limits; without it the answer would be another one.
TEST(CliDevice, AFileThatIsThereMustBeReadable)
{
    const OWN_DATABASE database(std::string("include more.txt\n") + OWN_FAMILY);
    EXPECT_EQ(0, database.run("device", "").m_status) << "no such file, as the format allows";
    std::filesystem::create_symlink("more.txt", database.get_directory() + "/more.txt");
    const RUN run = database.run("device", "");
    EXPECT_EQ(4, run.m_status);
    EXPECT_EQ("pllcalc: cannot read family Own: " + database.get_directory() +
                  "/more.txt: Too many levels of symbolic links\n",
              run.m_errors);
}

TEST(CliDevice, ConfinesADatabaseToItsDirectory)
{
    const TEMP_DIR outside;
    write_file(outside.file("more.txt"), "n_counter_max 9\n");
    const OWN_DATABASE database(std::string("include link\n") + OWN_FAMILY);
    std::filesystem::create_symlink(outside.file("more.txt"), database.get_directory() + "/link");
    EXPECT_EQ(0, database.run("device", "").m_status);
    const RUN run = database.run("device", " --confined");
    EXPECT_EQ(4, run.m_status);
    EXPECT_EQ("pllcalc: cannot read family Own: " + database.get_directory() +
                  "/link: outside of the database's directory, to which it is confined\n",
              run.m_errors);
}

TEST(CliDevice, EnvironmentNamesTheDatabaseAndTheCommandLineWins)
{
    const std::string words = "devices --format csv";
    const RUN by_option = run_pllcalc(words + " --database " + SAMPLE);
    ASSERT_EQ(0, by_option.m_status);
    {
        const DATABASE_VARIABLE variable(SAMPLE);
        EXPECT_EQ(by_option.m_output, run_pllcalc(words).m_output);
        EXPECT_EQ(4, run_pllcalc(words + " --database /nonexistent").m_status);
    }
    const DATABASE_VARIABLE variable("/nonexistent");
    EXPECT_EQ(by_option.m_output, run_pllcalc(words + " --database " + SAMPLE).m_output);
    EXPECT_EQ(4, run_pllcalc(words).m_status);
}

TEST(CliDevice, EmptyEnvironmentNamesNoDatabase)
{
    const DATABASE_VARIABLE variable("");
    EXPECT_EQ(2, run_pllcalc("devices --family Sorrel").m_status);
}

TEST(CliDevice, EnvironmentAloneLeavesRequestsOnTheBuiltInLimits)
{
    const std::string request = "synth --in 27MHz --out 148.5MHz";
    const RUN built_in = run_pllcalc(request);
    const DATABASE_VARIABLE variable(SAMPLE);
    EXPECT_EQ(built_in.m_output + "\nNOTE: PLL_DATABASE is set to " + SAMPLE +
                  ", which is not used: no option names a device\n",
              run_pllcalc(request).m_output);
    EXPECT_NE(built_in.m_output, run_pllcalc(request + " --family Chervil").m_output);
}

TEST(CliDevice, NamesAreBlindToCase)
{
    const RUN spelled = run_pllcalc("device --database " + SAMPLE +
                                    " --family Sorrel --type FAST_PLL --part SR20-6 --speed-grade "
                                    "6 --migrate Lovage:LV100-3:3");
    const RUN shouted = run_pllcalc("device --database " + SAMPLE +
                                    " --family SORREL --type fast_pll --part sr20-6 --speed-grade "
                                    "6 --migrate LOVAGE:lv100-3:3");
    ASSERT_EQ(0, spelled.m_status);
    EXPECT_EQ(spelled.m_output, shouted.m_output);
}

TEST(CliDevice, TheOnlyChoiceNeedsNoName)
{
    const OWN_DATABASE database(OWN_FAMILY);
    const RUN run = database.run("synth", " --in 100MHz --out 50MHz");
    EXPECT_EQ("", run.m_errors);
    EXPECT_EQ(0, run.m_status);
    EXPECT_NE(std::string::npos,
              run.m_output.find("device FAST_PLL of Own, part P1, speed grade 1\n"))
        << run.m_output;
}

TEST(CliDevice, EveryCommandThatNeedsLimitsTakesThoseOfTheDevice)
{
    const OWN_DATABASE database(OWN_FAMILY);
    // The built-in limits reach 300 MHz, this VCO 400 MHz.
    for (const char* command : {"synth", "steps", "dump"}) {
        SCOPED_TRACE(command);
        const std::string request = " --in 100MHz --out 300MHz --vco-ratio 3";
        EXPECT_EQ(0, run_pllcalc(command + request).m_status);
        EXPECT_EQ(1, database.run(command, request).m_status);
    }
    EXPECT_NE(run_pllcalc("ratios --in 100MHz").m_output,
              database.run("ratios", " --in 100MHz").m_output);
}

struct MISSING_CASE
{
    const char* m_line;  // of the family file, left out
    const char* m_message;
};

constexpr MISSING_CASE MISSING_CASES[] = {
    {"vco_min 1000\n", "does not give vco_min\n"},
    {"pfd_max 100000\n", "does not give pfd_max\n"},
    {"output_counter_high_low_max 32\n", "does not give output_counter_high_low_max\n"},
};

TEST(CliDevice, WithoutWhatNoSettingIsPossibleTheDatabaseIsRefused)
{
    for (const MISSING_CASE& c : MISSING_CASES) {
        SCOPED_TRACE(c.m_line);
        std::string family = OWN_FAMILY;
        family.erase(family.find(c.m_line), std::string(c.m_line).size());
        const OWN_DATABASE database(family);
        const RUN run = database.run("synth", " --in 100MHz --out 50MHz");
        EXPECT_EQ(4, run.m_status);
        EXPECT_EQ("", run.m_output);
        EXPECT_NE(std::string::npos, run.m_errors.find(c.m_message)) << run.m_errors;
        EXPECT_EQ(0, database.run("device", "").m_status);
    }
}

TEST(CliDevice, DeviceWithoutOutputCountersIsRefused)
{
    const OWN_DATABASE database(own_family_with("counters 2", "counters 0"));
    const RUN run = database.run("synth", " --in 100MHz --out 50MHz");
    EXPECT_EQ(4, run.m_status);
    EXPECT_NE(std::string::npos, run.m_errors.find("gives it no output counter")) << run.m_errors;
}

TEST(CliDevice, ListGoesOnBehindAFamilyThatCannotBeRead)
{
    const OWN_DATABASE database(OWN_FAMILY);
    database.write("ddb_pll_path.txt",
                   "Gone . gone.txt\nBroken . broken.txt\nNameless\nOwn . own.txt\n");
    database.write("broken.txt", "family Broken\nno_such_word 1\n");
    const RUN run = database.run("devices", " --format csv");
    EXPECT_EQ(4, run.m_status);
    EXPECT_NE(std::string::npos, run.m_output.find("Own,FAST_PLL,P1,1,true,400,1000,"))
        << run.m_output;
    EXPECT_NE(std::string::npos, run.m_errors.find("gone.txt: No such file or directory\n"));
    EXPECT_NE(std::string::npos,
              run.m_errors.find("broken.txt: it or a table of it is at fault; see pllcalc lint"));
    EXPECT_NE(std::string::npos,
              run.m_errors.find("cannot read family Nameless: the path file names no file for it"));
    EXPECT_EQ(2, database.run("device", " --family Goner").m_status);
    EXPECT_EQ(4, database.run("device", " --family Gone").m_status);
}

TEST(CliDevice, WhatIsNoFileIsToldAsSuch)
{
    const OWN_DATABASE database(OWN_FAMILY);
    const TEMP_DIR folder;
    database.write("ddb_pll_path.txt", "Own .. " + folder.path().substr(folder.path().rfind('/')));
    const RUN family = database.run("devices", "");
    EXPECT_EQ(4, family.m_status);
    EXPECT_EQ("pllcalc: cannot read family Own: " + folder.path() + ": not a regular file\n",
              family.m_errors);
    std::filesystem::create_directory(folder.file("ddb_pll_path.txt"));
    const RUN path_file = run_pllcalc("devices --database " + folder.path());
    EXPECT_EQ(4, path_file.m_status);
    EXPECT_EQ("pllcalc: cannot read the database: " + folder.file("ddb_pll_path.txt") +
                  ": not a regular file\n",
              path_file.m_errors);
}

TEST(CliDevice, FamilyWithoutPartsIsNoQuestionOfTheType)
{
    const OWN_DATABASE database("family Own\npll FAST_PLL\nm_counter_max 64\n");
    for (const std::string type : {"", " --type FAST_PLL"}) {
        const RUN run = database.run("device", type);
        EXPECT_EQ(4, run.m_status);
        EXPECT_EQ("pllcalc: cannot use family Own: the database gives it no part\n", run.m_errors);
    }
}

// M / 15 x 15 would serve, but the counter ends at 14, which the feedback makes up for.
TEST(CliDevice, CounterThatIsTooShortIsNamedThoughTheFeedbackMakesUpForIt)
{
    const OWN_DATABASE database(own_family_with("high_low_max 32", "high_low_max 7"));
    const RUN run = database.run("synth", " --in 27MHz --out ratio=1 --feedback 1");
    EXPECT_EQ(1, run.m_status);
    EXPECT_NE(std::string::npos,
              run.m_output.find("output 1: its counter does not fit the division that "
                                "gives 27 MHz\n  its counter is at its largest count\n"
                                "  it is the feedback\n"))
        << run.m_output;
}

TEST(CliDevice, InternalErrorThatADatabaseCausesSendsToLint)
{
    const OWN_DATABASE database(
        own_family_with("counter_max 1\n", "counter_max 3\nvco_post_scale_counter_max 4\n"));
    const RUN run = database.run("devices", "");
    EXPECT_EQ(5, run.m_status);
    const std::vector<std::string> lines = split(run.m_errors, '\n');
    ASSERT_EQ(3U, lines.size()) << run.m_errors;
    EXPECT_EQ(0U, lines[0].find("pllcalc: internal error: m_vco_post_scale_counter_max <= "));
    EXPECT_EQ("pllcalc: a value of the database is the cause; see pllcalc lint", lines[1]);
    EXPECT_EQ(0U, lines[2].find("pllcalc: internal error: m_vco_post_scale_counter_max <= "));
}

TEST(CliDevice, NamesKeepTheirCharactersInEveryForm)
{
    const OWN_DATABASE database(own_family_with("part P1", "part \"a, b\\\xC3\xA9\xFF\x01\""));
    EXPECT_NE(std::string::npos, database.run("devices", " --format csv")
                                     .m_output.find("FAST_PLL,\"a, b\\\xC3\xA9\xFF\\x01\",1,"));
    EXPECT_NE(std::string::npos, database.run("devices", " --format json")
                                     .m_output.find(R"("part": "a, b\\)"
                                                    "\xC3\xA9\xEF\xBF\xBD"
                                                    R"(\u0001", "speed_grade")"));
}

struct CSV_CELL
{
    const char* m_name;  // of a part
    const char* m_cell;
};

// clang-format off
constexpr CSV_CELL CSV_CELLS[] = {
    {"P1",              "P1"},
    {"a, b",            "\"a, b\""},
    {"a;b",             "\"a;b\""},
    {"a\x1b[2J",        "a\\x1b[2J"},
    {"a\tb",            "a\\x09b"},
    {"=1+1",            "\"'=1+1\""},
    {"=cmd|' /C calc'", "\"'=cmd|' /C calc'\""},
    {"@SUM(A1)",        "\"'@SUM(A1)\""},
    {"+1+1",            "\"'+1+1\""},
    {"-1,2",            "\"'-1,2\""},
    {"-",               "\"'-\""},
    {"-6",              "-6"},
    {"+6.5",            "+6.5"},
    {"-6.5.1",          "\"'-6.5.1\""},
    {"1=1",             "1=1"},
};
// clang-format on

TEST(CliDevice, CsvHoldsNoFormulaAndNoControlCharacter)
{
    for (const CSV_CELL& c : CSV_CELLS) {
        const OWN_DATABASE database(
            own_family_with("part P1", "part \"" + std::string(c.m_name) + "\""));
        const std::string csv = database.run("devices", " --format csv").m_output;
        EXPECT_NE(std::string::npos, csv.find(std::string("FAST_PLL,") + c.m_cell + ",1,"))
            << c.m_name << '\n'
            << csv;
    }
}

TEST(CliDevice, TablesShowNamesThatControlATerminalAndAlignThoseOfOtherAlphabets)
{
    const OWN_DATABASE database(own_family_with(
        "part P1", "part \"\x1b[2J\"\nvco_min 1\npart \xC3\xA9\xC3\xA9\xC3\xA9-nine"));
    const std::string devices = database.run("devices", "").m_output;
    EXPECT_NE(std::string::npos, devices.find("\n\\x1b[2J   1            yes  ")) << devices;
    EXPECT_NE(std::string::npos, devices.find("\n\xC3\xA9\xC3\xA9\xC3\xA9-nine  1            yes"))
        << devices;
    const RUN device = run_program(
        PLLCALC, {"device", "--database", database.get_directory(), "--part", "\x1b[2J"});
    EXPECT_EQ(0U, device.m_output.find("device FAST_PLL of Own, part \\x1b[2J, speed grade 1\n"))
        << device.m_output;
}

TEST(CliDevice, LongListsOfWhatThereIsAreCut)
{
    std::string family = OWN_FAMILY;
    for (int i = 2; i <= 25; ++i) {
        family.append("part P").append(std::to_string(i)).append("\n");
    }
    const OWN_DATABASE database(family);
    const RUN run = database.run("device", " --part P125");
    EXPECT_EQ(2, run.m_status);
    EXPECT_NE(std::string::npos,
              run.m_errors.find("legal are P1, P2, P3, P4, P5, P6, P7, P8, P9, P10, P11, P12, P13, "
                                "P14, P15, P16, P17, P18, P19, P20 and 5 more; did you mean P12?"))
        << run.m_errors;
}

TEST(CliSample, EveryPartSynthesisesAndEveryTableIsSound)
{
    const RUN devices = run_pllcalc("devices --database " + SAMPLE + " --format csv");
    std::set<std::string> families;
    std::set<std::string> types;
    std::set<std::string> parts;
    const std::vector<std::string> lines = split(devices.m_output, '\n');
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::vector<std::string> cells = split(lines[i], ',');
        const std::string words = " --database " + SAMPLE + " --family " + cells[0] + " --type " +
                                  cells[1] + " --part " + cells[2] + " --speed-grade " + cells[3];
        SCOPED_TRACE(words);
        EXPECT_EQ(0, run_pllcalc("synth --in 50MHz --out 100MHz" + words).m_status);
        const RUN table = run_pllcalc("table" + words);
        EXPECT_EQ(0, table.m_status) << table.m_output;
        families.insert(cells[0]);
        types.insert(cells[1]);
        parts.insert(cells[2].substr(0, cells[2].find('-')));
    }
    EXPECT_LE(3U, families.size());
    EXPECT_EQ(4U, types.size());
    EXPECT_EQ(10U, parts.size());
}

// The file of a table whose bandwidths are infinite in Hz, though finite in the file.
std::string endless_table()
{
    std::string table = "V2 endless\ntitles\n";
    for (int m = 1; m <= 64; ++m) {
        table.append("1 ")
            .append(std::to_string(m))
            .append(" 10 1000 1e308 1e308 1e308 60 1e308 1 60 1e308 1\n");
    }
    return table;
}

// The family above with that table.
std::string family_with_endless_table()
{
    std::string family = OWN_FAMILY;
    return family.insert(family.find("speed_grade"), "loop_filter_resistor 1000\n"
                                                     "loop_filter_capacitor 1\n"
                                                     "bandwidth_settings_table_file endless.txt\n"
                                                     "bandwidth_pfd_min_frequency_multiplier 8\n");
}

TEST(CliTable, InfiniteNumbersAreNullInJsonAndNarrowInTables)
{
    const OWN_DATABASE database(family_with_endless_table());
    database.write("endless.txt", endless_table());
    const JSON rows = JSON::parse(database.run("table", " --format json").m_output);
    EXPECT_EQ(64U, rows.size());
    EXPECT_TRUE(rows[0]["fast_bandwidth_hz"].is_null());
    EXPECT_EQ(1e308, rows[0]["typical_phase_margin_deg"]);
    const JSON choices =
        JSON::parse(database.run("table", " --in 100MHz --out 50MHz --format json").m_output);
    EXPECT_EQ(1U, choices.size());
    EXPECT_TRUE(choices[0]["cost"].is_null());
    for (const std::string& line : split(database.run("table", "").m_output, '\n')) {
        EXPECT_GE(100U, line.size()) << line;
    }
}

TEST(CliTable, ListsForProgramsComeWithTheReasonsOfAMiss)
{
    const std::string words = "table --database @DATA@/sample --family Chervil --in 100MHz "
                              "--out 700MHz --out 300MHz --feedback 2 --format ";
    for (const std::string form : {"csv", "json"}) {
        const RUN run = run_pllcalc(words + form);
        EXPECT_EQ(1, run.m_status);
        EXPECT_EQ(0U, run.m_errors.find("pllcalc: NOT MET: frequency of output 2, limit "
                                        "output_max\npllcalc: error 4: Division and "))
            << run.m_errors;
        EXPECT_NE(std::string::npos, run.m_errors.find("; it is the feedback\n")) << run.m_errors;
    }
}

TEST(CliTable, FitsAHundredColumnsWhateverTheRowsCost)
{
    for (const std::string input : {"10MHz", "27MHz", "50MHz", "200MHz"}) {
        for (const std::string bandwidth : {"high", "low", "1Hz", "1MHz", "9GHz", "100GHz"}) {
            std::string words = "table --database @DATA@/sample --family Chervil --out ratio=5";
            words.append(" --in ").append(input).append(" --bandwidth ").append(bandwidth);
            for (const std::string& line : split(run_pllcalc(words).m_output, '\n')) {
                EXPECT_GE(100U, line.size()) << words << '\n' << line;
            }
        }
    }
}

TEST(CliTable, NoRowIsCalledTakenWhereASynthesisTakesNone)
{
    const OWN_DATABASE database(family_with_endless_table());
    database.write("endless.txt", endless_table());
    const std::string request = " --in 100MHz --out 50MHz";
    ASSERT_NE(std::string::npos,
              database.run("synth", request).m_output.find("The table has no row for"));
    const std::string text = database.run("table", request).m_output;
    EXPECT_EQ(std::string::npos, text.find("TAKEN")) << text;
    EXPECT_NE(std::string::npos, text.find("too costly to take\n")) << text;
}

// The words of the line below the one that starts so.
std::vector<std::string> words_below(const std::string& text, const std::string& head)
{
    const std::size_t at = text.find(head);
    if (at == std::string::npos) {
        return {};
    }
    return words_of(split(text.substr(at), '\n')[2]);
}

// The cells of the row that a table says is taken; fails the test unless it is one.
std::vector<std::string> row_taken(const std::string& csv)
{
    std::vector<std::vector<std::string>> taken;
    for (const std::string& line : split(csv, '\n')) {
        taken.push_back(split(line, ','));
        if (taken.back()[10] != "true") {
            taken.pop_back();
        }
    }
    EXPECT_EQ(1U, taken.size()) << csv;
    return taken.empty() ? std::vector<std::string>(12) : taken.front();
}

// Whether the row that is called taken is behind the first; fails the test unless a synthesis takes
// it too.
bool compare_rows(const std::string& request)
{
    SCOPED_TRACE(request);
    const std::string words =
        " --database " + SAMPLE + " --family Sorrel --type ENHANCED_PLL --part SR20-6 " + request;
    const std::vector<std::string> filter =
        words_below(run_pllcalc("synth" + words).m_output, "filter R");
    const std::vector<std::string> row =
        row_taken(run_pllcalc("table --format csv" + words).m_output);
    EXPECT_LE(4U, filter.size());
    if (filter.size() >= 4) {
        EXPECT_EQ(filter[0], row[3] + ".0");
        EXPECT_EQ(filter[2], row[4] + ".0");
        EXPECT_EQ(filter[3], row[2] + ".0");
    }
    return row[1] != "1";
}

TEST(CliTable, RowThatIsCalledTakenIsTheOneThatASynthesisTakes)
{
    int rows_behind_the_first = 0;
    for (const std::string bandwidth :
         {"high", "medium", "low", "auto", "300kHz", "1MHz", "9MHz"}) {
        for (const std::string input : {"10MHz", "27MHz", "100MHz"}) {
            std::string request = "--in ";
            request.append(input).append(" --out ratio=5 --bandwidth ").append(bandwidth);
            rows_behind_the_first += compare_rows(request) ? 1 : 0;
        }
    }
    EXPECT_LT(0, rows_behind_the_first);
}

}  // namespace
