// What a host allows a reading to take, from both sides of every limit, and where files may lie.
#include "database/files/read_budget.h"

#include "error_guard.h"
#include "manager_builders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <string>
#include <unistd.h>
#include <vector>

using namespace pll_internal;

namespace {

class FINDINGS : public PLL_READ_OBSERVER
{
public:
    void on_statement(const PLL_READ_STATEMENT& statement) override
    {
        m_columns_outside += statement.m_place.m_is_outside && statement.m_place.m_column != 0;
    }
    void on_finding(const PLL_READ_FINDING& finding) override
    {
        const std::string file = finding.m_place.m_file;
        m_texts.push_back(
            file.substr(file.rfind('/') + 1) + ":" + std::to_string(finding.m_place.m_line) + " " +
            pll_get_finding_name(finding.m_finding) + " " + std::to_string(finding.m_limit));
        m_words.emplace_back(finding.m_word);
    }

    std::vector<std::string> m_texts;
    std::vector<std::string> m_words;
    int m_columns_outside = 0;
};

typedef std::vector<std::string> TEXTS;

const std::string TABLE = "SIMPLE_V1 x\ntitles\n1 2 3\n";
const std::string FAMILY = PART_HEAD + "vco_post_scale_counter_max 1\nm_counter_max 9\n" +
                           "bandwidth_settings_table_file t\n" +
                           "pll FAST_PLL\nvco_post_scale_counter_max 1\nm_counter_max 4\n" +
                           "bandwidth_settings_table_file t\ninclude more\n";
const std::string MORE = "n_counter_max 3\n# a comment\n\n";
const long long BYTES = static_cast<long long>(FAMILY.size() + MORE.size() + 2 * TABLE.size());
const long long STATEMENTS = 13;
const long long GROUPS = 10 + 5;

class ReadLimits : public testing::Test
{
protected:
    ReadLimits()
    {
        m_database.write("t", TABLE);
        m_database.write("more", MORE);
        m_database.m_manager.set_observer(&m_findings);
    }

    bool read(long long bytes, long long statements, long long groups)
    {
        PLL_READ_LIMITS limits;
        limits.m_bytes = bytes;
        limits.m_statements = statements;
        limits.m_table_groups = groups;
        m_findings.m_texts.clear();
        m_database.m_manager.set_read_limits(limits);
        const bool is_read = m_database.read(FAMILY);
        EXPECT_EQ(is_read, m_findings.m_texts.empty());
        return is_read;
    }

    DATABASE m_database;
    FINDINGS m_findings;
};

TEST_F(ReadLimits, AreNoneUnlessTheyAreSet)
{
    const PLL_READ_LIMITS& limits = m_database.m_manager.get_read_limits();
    EXPECT_EQ(0, limits.m_bytes);
    EXPECT_EQ(0, limits.m_statements);
    EXPECT_EQ(0, limits.m_table_groups);
    EXPECT_FALSE(limits.m_is_confined);
    EXPECT_TRUE(read(0, 0, 0));
    EXPECT_TRUE(read(-1, -1, -1));
    const long long LARGEST = std::numeric_limits<long long>::max();
    EXPECT_TRUE(read(LARGEST, LARGEST, LARGEST));
}

TEST_F(ReadLimits, CountTheBytesOfAllFiles)
{
    EXPECT_TRUE(read(BYTES, 0, 0));
    EXPECT_FALSE(read(BYTES - 1, 0, 0));
    EXPECT_EQ(TEXTS{"t:1 too-many-bytes " + std::to_string(BYTES - 1)}, m_findings.m_texts);
    EXPECT_FALSE(read(10, 0, 0));
    EXPECT_EQ(TEXTS{"family.txt:1 too-many-bytes 10"}, m_findings.m_texts);
}

TEST_F(ReadLimits, CountStatementsThroughIncludes)
{
    EXPECT_TRUE(read(0, STATEMENTS, 0));
    EXPECT_FALSE(read(0, STATEMENTS - 1, 0));
    EXPECT_EQ(TEXTS{"more:1 too-many-statements 12"}, m_findings.m_texts);
}

TEST_F(ReadLimits, CountTheGroupsOfAllTables)
{
    EXPECT_TRUE(read(0, 0, GROUPS));
    EXPECT_FALSE(read(0, 0, GROUPS - 1));
    EXPECT_EQ(TEXTS{"t:0 table-too-large 14"}, m_findings.m_texts);
}

TEST_F(ReadLimits, HoldForPathFiles)
{
    const std::string text = "A . a\nB . b\n";
    m_database.write("ddb_pll_path.txt", text);
    PLL_READ_LIMITS limits;
    limits.m_bytes = static_cast<long long>(text.size());
    limits.m_statements = 2;
    m_database.m_manager.set_read_limits(limits);
    EXPECT_TRUE(m_database.m_manager.read(m_database.m_dir.path().c_str()));
    --limits.m_statements;
    m_database.m_manager.set_read_limits(limits);
    EXPECT_FALSE(m_database.m_manager.read(m_database.m_dir.path().c_str()));
    limits.m_statements = 0;
    --limits.m_bytes;
    m_database.m_manager.set_read_limits(limits);
    EXPECT_FALSE(m_database.m_manager.read(m_database.m_dir.path().c_str()));
    EXPECT_EQ(
        (TEXTS{"ddb_pll_path.txt:2 too-many-statements 1", "ddb_pll_path.txt:1 too-many-bytes 11"}),
        m_findings.m_texts);
}

// ---- Places

class ReadPlaces : public testing::Test
{
protected:
    ReadPlaces()
    {
        std::filesystem::create_directories(m_dir.file("base/fam"));
        write_file(m_dir.file("base/ddb_pll_path.txt"), "F fam f.txt\n");
        write_file(m_dir.file("base/inside"), "n_counter_max 3\n");
        write_file(m_dir.file("base-not"), "n_counter_max 4 secret\n");
        write_file(m_dir.file("table"), TABLE + "secret\n");
        EXPECT_EQ(0, symlink("../../base-not", m_dir.file("base/fam/link").c_str()));
        m_head = TYPE_HEAD + "vco_post_scale_counter_max 1\nm_counter_max 4\n";
        m_tail = "speed_grade 6\npart P\n";
    }

    bool read(const std::string& line, bool is_confined)
    {
        write_file(m_dir.file("base/fam/f.txt"), m_head + line + "\n" + m_tail);
        PLL_MANAGER manager;
        PLL_READ_LIMITS limits;
        limits.m_is_confined = is_confined;
        manager.set_read_limits(limits);
        m_findings = std::make_unique<FINDINGS>();
        manager.set_observer(m_findings.get());
        EXPECT_TRUE(manager.read(m_dir.file("base").c_str()));
        const bool is_read = manager.read_family_info("F") != nullptr;
        PLL_MANAGER unheard;
        unheard.set_read_limits(limits);
        EXPECT_TRUE(unheard.read(m_dir.file("base").c_str()));
        EXPECT_EQ(is_read, unheard.read_family_info("F") != nullptr);
        return is_read;
    }

    TEMP_DIR m_dir;
    std::string m_head;
    std::string m_tail;
    std::unique_ptr<FINDINGS> m_findings;
};

TEST_F(ReadPlaces, MayBeAnywhereInTheDatabase)
{
    for (const bool is_confined : {false, true}) {
        EXPECT_TRUE(read("include ../inside", is_confined));
        EXPECT_TRUE(read("include ../fam/../inside", is_confined));
        EXPECT_TRUE(read("include nowhere", is_confined));
    }
}

TEST_F(ReadPlaces, AreToldOfAndRefusedOutside)
{
    for (const char* const name : {"../../base-not", "link", "../../base/../base-not"}) {
        SCOPED_TRACE(name);
        EXPECT_TRUE(read(std::string("include ") + name, false));
        EXPECT_EQ((TEXTS{"f.txt:5 file-outside 0", "base-not:1 extra-words 0"}).front(),
                  m_findings->m_texts.front());
        EXPECT_EQ((TEXTS{name, ""}), m_findings->m_words) << "nothing that the file says";
        EXPECT_EQ(0, m_findings->m_columns_outside);
        EXPECT_FALSE(read(std::string("include ") + name, true));
        EXPECT_EQ(TEXTS{"f.txt:5 file-refused 0"}, m_findings->m_texts);
    }
}

TEST_F(ReadPlaces, HoldForTablesAndFamilyFiles)
{
    EXPECT_FALSE(read("bandwidth_settings_table_file ../../table", false));
    EXPECT_EQ((TEXTS{"table:0 file-outside 0", "table:4 table-number-expected 0"}),
              m_findings->m_texts);
    EXPECT_EQ("", m_findings->m_words.back());
    EXPECT_EQ(0, m_findings->m_columns_outside);
    EXPECT_FALSE(read("bandwidth_settings_table_file ../../table", true));
    EXPECT_EQ(TEXTS{"table:0 file-refused 0"}, m_findings->m_texts);

    write_file(m_dir.file("base/ddb_pll_path.txt"), "F .. base-not\n");
    EXPECT_TRUE(read("", false));
    EXPECT_EQ("base-not:0 file-outside 0", m_findings->m_texts.front());
    EXPECT_FALSE(read("", true));
    EXPECT_EQ(TEXTS{"base-not:0 file-refused 0"}, m_findings->m_texts);
}

TEST_F(ReadPlaces, AreTheFamilysWhereNoDatabaseIsKnown)
{
    write_file(m_dir.file("base/fam/f.txt"), m_head + "include ../inside\n" + m_tail);
    PLL_MANAGER manager;
    const std::string path = m_dir.file("base/fam");
    EXPECT_TRUE(manager.read_family_info_from_file(path.c_str(), "f.txt"));
    PLL_READ_LIMITS limits;
    limits.m_is_confined = true;
    manager.set_read_limits(limits);
    EXPECT_FALSE(manager.read_family_info_from_file(path.c_str(), "f.txt"));
}

TEST(ReadBudget, TakesTheDirectoryItselfForNoFileOfIt)
{
    const PLL_READ_BUDGET anywhere(PLL_READ_LIMITS(), nullptr);
    EXPECT_EQ(PLL_FINDING::NONE, anywhere.judge_place("/etc/passwd", true));
    const PLL_READ_BUDGET root(PLL_READ_LIMITS(), "/");
    EXPECT_EQ(PLL_FINDING::NONE, root.judge_place("/etc/passwd", true));
    const PLL_READ_BUDGET etc(PLL_READ_LIMITS(), "/etc/");
    EXPECT_EQ(PLL_FINDING::NONE, etc.judge_place("/etc/passwd", true));
    EXPECT_EQ(PLL_FINDING::FILE_OUTSIDE, etc.judge_place("/proc/self/status", true));
    EXPECT_EQ(PLL_FINDING::NONE, etc.judge_place("/proc/self/status", false));
    EXPECT_EQ(PLL_FINDING::FILE_OUTSIDE, etc.judge_place("/etc", true));
}

}  // namespace
