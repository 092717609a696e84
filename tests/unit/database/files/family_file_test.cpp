// Family files: structure statements, scopes, errors, includes and what happens at their end.
#include "error_guard.h"
#include "manager_builders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace {

const char SOURCE[] = "pll_manager";

struct TEXT_CASE
{
    const char* m_name;
    std::string m_text;
};

// ---- What fails and what does not

const TEXT_CASE FAILING_FILES[] = {
    {"empty", ""},
    {"comments and blank lines only", "# one\n\n \t\r\n#two\n"},
    {"an unknown keyword", "frob 1\n"},
    {"an unknown keyword after statements", TYPE_HEAD + "n_counter_max 1\nfrob\n"},
    {"a keyword in quotes", "\"family\" Fam\n"},
    {"a byte-order mark, which is part of the first word", "\xEF\xBB\xBF" + TYPE_HEAD},
    {"family without a name", "family\n"},
    {"family before a comment", "family # Fam\n"},
    {"speed_grade without a name", "family Fam\nspeed_grade\n"},
    {"pll without a name", "family Fam\npll\n"},
    {"pll with a name that is no type", "family Fam\npll SLOW_PLL\n"},
    {"pll with a bad name and without a family", "pll SLOW_PLL\n"},
    {"part without a name", TYPE_HEAD + "speed_grade 6\npart\n"},
    {"bandwidth_settings_table_file without a name", TYPE_HEAD + "bandwidth_settings_table_file\n"},
    {"an int that is missing", TYPE_HEAD + "n_counter_max\n"},
    {"an int that is negative", TYPE_HEAD + "m_counter_max -1\n"},
    {"an int with a decimal point", TYPE_HEAD + "m_counter_max 1.0\n"},
    {"an int in quotes", TYPE_HEAD + "m_counter_max \"1\"\n"},
    {"a real that is zero", TYPE_HEAD + "ss_bandwidth 0\n"},
    {"a real that is missing", TYPE_HEAD + "ss_bandwidth\n"},
    {"a real that is a word", TYPE_HEAD + "ss_bandwidth word\n"},
    {"a list without numbers", TYPE_HEAD + "charge_pump_current\n"},
    {"a list that begins with a word", TYPE_HEAD + "charge_pump_current x 1\n"},
    {"a bit list without numbers", TYPE_HEAD + "charge_pump_current_bit # 1\n"},
    {"a scan chain without counters",
     TYPE_HEAD + "reconfig_type long\nreconfig_scan_chain_counter_order end C0\n"},
    {"a part value that is missing", PART_HEAD + "vco_min\n"},
    {"a post-scale without a value", PART_HEAD + "vco_min_post_scale 1\n"},
    {"a post-scale that is no number", PART_HEAD + "vco_min_post_scale x 1\n"},
};

TEST(FamilyFile, FailsAtTheFirstError)
{
    for (const TEXT_CASE& c : FAILING_FILES) {
        SCOPED_TRACE(c.m_name);
        DATABASE database;
        EXPECT_FALSE(database.read(c.m_text));
    }
}

const TEXT_CASE READABLE_FILES[] = {
    {"a family alone", "family Fam"},
    {"a type without a family", "pll fast_pll\n"},
    {"statements out of scope, whatever follows them",
     "speed_grade\npart\nn_counter_max x\nvco_min x\nnot_listed\nss_bandwidth 0\n"
     "reconfig_type\nreconfig_scan_chain_counter_order\nspe_ratio_constant_x\n"
     "bandwidth_settings_table_file\ncharge_pump_current\n"},
    {"type statements without a type", "family Fam\nm_counter_max x\n"},
    {"type statements without a family", "pll FAST_PLL\nm_counter_max x\n"},
    {"a part without a speed grade", TYPE_HEAD + "part P\nvco_min x\n"},
    {"a part without a type", "family Fam\nspeed_grade 6\npart P\n"},
    {"an include without a name", "include\n"},
    {"an include that does not exist", "include nowhere.txt\n"},
    {"carriage returns before line feeds", "family Fam\r\npll ENHANCED_PLL\r\n\r\nnot_listed\r\n"},
    {"a NUL ends a line", std::string("family Fam\0frob\n# x\n", 20)},
    {"an unknown reconfiguration type", TYPE_HEAD + "reconfig_type other\n"},
    {"no reconfiguration type", TYPE_HEAD + "reconfig_type\n"},
    {"words after the last operand", "family Fam frob\npll FAST_PLL frob\n"},
};

TEST(FamilyFile, SkipsWhatHasNoPlace)
{
    for (const TEXT_CASE& c : READABLE_FILES) {
        SCOPED_TRACE(c.m_name);
        DATABASE database;
        EXPECT_TRUE(database.read(c.m_text));
        for (int i = 0; i < database.m_manager.get_number_of_families(); ++i) {
            EXPECT_STREQ("Fam", database.m_manager.get_family(i));
            EXPECT_EQ(0, database.m_manager.m_families[i]->m_number_of_parts);
            EXPECT_EQ(0, database.m_manager.m_families[i]->m_basic_infos[0].m_n_counter_max);
        }
    }
}

TEST(FamilyFile, KeepsWhatStoodBeforeAnError)
{
    DATABASE database;
    EXPECT_FALSE(database.read(PART_HEAD + "vco_min 700\nfrob\nvco_max 900\n"));
    EXPECT_EQ(700, database.timing().m_vco_min[1]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, database.timing().m_vco_max[1]);
    EXPECT_EQ(0, database.family("Fam").m_number_of_listed_speed_grades);
}

TEST(FamilyFile, ReadsNoTableAfterAnError)
{
    DATABASE database;
    database.write("table.txt", "SIMPLE_V1 \n\n0 20 30\n");
    const std::string text = TYPE_HEAD + "bandwidth_settings_table_file table.txt\n";
    EXPECT_FALSE(database.read(text + "frob\n"));
    EXPECT_FALSE(database.basic().m_use_bandwidth_settings_table);
    EXPECT_TRUE(database.read(text));
    EXPECT_TRUE(database.basic().m_use_bandwidth_settings_table);
}

TEST(FamilyFile, WithoutPathOrNameIsReported)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    EXPECT_FALSE(manager.read_family_info_from_file(nullptr, "f"));
    EXPECT_FALSE(manager.read_family_info_from_file("d", nullptr));
    reports.expect_only("path != NULL && file_name != NULL", SOURCE, 2);
}

TEST(FamilyFile, ThatCannotBeOpenedFails)
{
    DATABASE database;
    PLL_MANAGER& manager = database.m_manager;
    const char* const path = database.m_dir.path().c_str();
    EXPECT_FALSE(manager.read_family_info_from_file(path, "nowhere.txt"));
    EXPECT_FALSE(manager.read_family_info_from_file(path, "."));
    EXPECT_FALSE(manager.read_family_info_from_file(path, ""));
    ASSERT_EQ(0, mkfifo(database.m_dir.file("pipe").c_str(), 0600));
    EXPECT_FALSE(manager.read_family_info_from_file(path, "pipe"));
    database.write("family.txt", "family Fam\n");
    std::filesystem::create_symlink("family.txt", database.m_dir.file("link"));
    EXPECT_TRUE(manager.read_family_info_from_file(path, "link"));
}

TEST(FamilyFile, TakesNamesInQuotesAndKeywordsInAnyCase)
{
    DATABASE database;
    EXPECT_TRUE(database.read("FAMILY \"My Fam\"\nPll \"fast_pll\"\nSpeed_Grade \"a b\"\n"
                              "pART \"P # 1\"\nVCO_min 5 # 6\nN_counter_MAX 7 8\n"));
    const PLL_FAMILY_INFO& family = database.family("My Fam");
    ASSERT_EQ(1, family.m_number_of_parts);
    EXPECT_STREQ("P # 1", family.m_parts[0]->m_name);
    EXPECT_STREQ("a b", family.m_parts[0]->m_speed_grade);
    EXPECT_EQ(FAST_PLL, family.m_parts[0]->m_type);
    EXPECT_EQ(5, family.m_parts[0]->m_timing_info.m_vco_min[1]);
    EXPECT_EQ(7, family.m_basic_infos[FAST_PLL].m_n_counter_max);
}

// A carriage return counts as a part of the line break only right before it; elsewhere it is a
// character of the name that an open quote begins.
TEST(FamilyFile, TakesACarriageReturnOffTheEndOfALineOnly)
{
    DATABASE database;
    EXPECT_TRUE(database.read("family \"Fam\r\n"));
    EXPECT_TRUE(database.read("family \"Two\r\r\n"));
    EXPECT_TRUE(database.read("family \"Three\r"));
    EXPECT_STREQ("Fam", database.m_manager.get_family(0));
    EXPECT_STREQ("Two\r", database.m_manager.get_family(1));
    EXPECT_STREQ("Three\r", database.m_manager.get_family(2));
}

TEST(FamilyFile, KeepsTheFirst1023CharactersOfALine)
{
    DATABASE database;
    const std::string head = "family \"";
    const std::string name(1023 - head.size(), 'x');
    for (const char* rest : {"\n", "\r\n", "y\n", "y\r\nfamily Fam\n", "y\"", "\ryy\n"}) {
        SCOPED_TRACE(rest);
        EXPECT_TRUE(database.read(head + name + rest));
        EXPECT_EQ(name, database.m_manager.get_family(0));
    }
    EXPECT_EQ(2, database.m_manager.get_number_of_families());
    EXPECT_TRUE(database.read(head + name.substr(1) + "\r\n"));
    EXPECT_EQ(name.substr(1), database.m_manager.get_family(2));
}

TEST(FamilyFile, HoldsTheWholeOfADevice)
{
    DATABASE database;
    EXPECT_TRUE(database.read("family Fam\npll ENHANCED_PLL\nm_counter_max 512\n"
                              "charge_pump_current 10 20 15\n"
                              "bandwidth_settings_table_file unused\nreconfig_type long\n"
                              "reconfig_scan_chain_counter_order C0 C1 M N end\nspeed_grade 6\n"
                              "part P1\nvco_min 1000\nvco_max_post_scale 2 3000"));
    const PLL_BASIC_INFO& basic = database.basic();
    EXPECT_EQ(512, basic.m_m_counter_max);
    ASSERT_EQ(3, basic.m_number_of_charge_pump_currents);
    EXPECT_EQ(15, basic.m_charge_pump_currents[1]);
    EXPECT_FALSE(basic.m_use_bandwidth_settings_table);
    EXPECT_EQ(4, basic.get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_LONG));
    EXPECT_EQ(CDB_PLL_COUNTER_N, basic.get_reconfig_scan_chain_counter_order(PLL_RECONFIG_LONG, 3));
    EXPECT_EQ(1000, database.timing().m_vco_min[1]);
    EXPECT_EQ(2000, database.timing().m_vco_min[2]);
    EXPECT_EQ(PLL_UNSET_MINIMUM, database.timing().m_vco_max[1]);
    EXPECT_EQ(3000, database.timing().m_vco_max[2]);
    ASSERT_EQ(1, database.family("Fam").m_number_of_listed_speed_grades);
    EXPECT_STREQ("6", database.family("Fam").m_listed_speed_grades[0]);
}

// ---- Cursors

TEST(FamilyFileCursors, SurviveTheStatementsThatSetOthers)
{
    DATABASE database;
    EXPECT_TRUE(database.read(PART_HEAD + "reconfig_type short\nfamily Two\npll VESTRA_PLL\n"
                                          "vco_min 9\nreconfig_scan_chain_counter_order M\n"
                                          "part Q\nn_counter_max 3\n"));
    EXPECT_EQ(9, database.timing().m_vco_min[1]);
    EXPECT_EQ(
        1, database.basic().get_number_of_reconfig_scan_chain_counter_orders(PLL_RECONFIG_SHORT));
    const PLL_FAMILY_INFO& two = database.family("Two");
    ASSERT_EQ(1, two.m_number_of_parts);
    EXPECT_STREQ("6", two.m_parts[0]->m_speed_grade);
    EXPECT_EQ(two.m_speed_grades[0], two.m_parts[0]->m_speed_grade);
    EXPECT_EQ(3, two.m_basic_infos[VESTRA_PLL].m_n_counter_max);
}

TEST(FamilyFileCursors, OfAReconfigurationAreLeftByAnUnknownType)
{
    DATABASE database;
    EXPECT_TRUE(database.read(TYPE_HEAD + "reconfig_type long\nreconfig_type \"short\"\n"
                                          "reconfig_scan_chain_counter_order\n"));
    EXPECT_EQ(1, database.basic().m_number_of_reconfig_infos);
    EXPECT_EQ(nullptr, database.basic().find_reconfig_info(PLL_RECONFIG_SHORT));
}

TEST(FamilyFileCursors, OfOnePartNameUnderTwoTypesAreTwoRecords)
{
    DATABASE database;
    EXPECT_TRUE(database.read(PART_HEAD + "vco_min 1\npll FAST_PLL\npart P1\nvco_min 2\n"
                                          "pll ENHANCED_PLL\nspeed_grade 7\npart p1\nvco_max 3\n"));
    ASSERT_EQ(2, database.family("Fam").m_number_of_parts);
    EXPECT_EQ(1, database.timing(0).m_vco_min[1]);
    EXPECT_EQ(3, database.timing(0).m_vco_max[1]);
    EXPECT_EQ(2, database.timing(1).m_vco_min[1]);
    EXPECT_STREQ("6", database.family("Fam").m_parts[0]->m_speed_grade);
    EXPECT_EQ(2, database.family("Fam").m_number_of_speed_grades);
}

// ---- The end of the file

TEST(FamilyFileEnd, GivesSpeedGradesAndTablesToTheLastFamilyOnly)
{
    DATABASE database;
    database.write("table.txt", "SIMPLE_V1 \n\n1 20 30\n");
    EXPECT_TRUE(database.read(PART_HEAD + "m_counter_max 4\nvco_post_scale_counter_max 1\n"
                                          "bandwidth_settings_table_file table.txt\n"
                                          "family Last\nm_counter_max 2\n"
                                          "vco_post_scale_counter_max 1\n"));
    EXPECT_EQ(0, database.family("Fam").m_number_of_listed_speed_grades);
    EXPECT_FALSE(database.basic("Fam").m_use_bandwidth_settings_table);
    EXPECT_TRUE(database.basic("Last").m_use_bandwidth_settings_table);
    EXPECT_EQ(3, database.basic("Last").m_bandwidth_settings_table_size);
}

TEST(FamilyFileEnd, TakesTheTableSizeFromTheWholeFile)
{
    DATABASE database;
    database.write("table.txt", "SIMPLE_V1 \n\n1 20 30\n");
    EXPECT_TRUE(database.read(TYPE_HEAD + "bandwidth_settings_table_file table.txt\n"
                                          "m_counter_max 4\nvco_post_scale_counter_max 2\n"));
    EXPECT_EQ(9, database.basic().m_bandwidth_settings_table_size);
    EXPECT_EQ(1U, database.basic().m_bandwidth_settings_table[1].m_settings.size());
}

TEST(FamilyFileEnd, TakesTheLastTableNameOfAType)
{
    DATABASE database;
    database.write("table.txt", "SIMPLE_V1 \n\n1 20 30\n");
    const std::string head = TYPE_HEAD + "m_counter_max 4\nvco_post_scale_counter_max 1\n";
    EXPECT_TRUE(database.read(head + "bandwidth_settings_table_file nowhere.txt\n"
                                     "bandwidth_settings_table_file \"table.txt\"\n"));
    EXPECT_TRUE(database.basic().m_use_bandwidth_settings_table);
    EXPECT_TRUE(database.read(head + "bandwidth_settings_table_file nowhere.txt\n"
                                     "bandwidth_settings_table_file UnUsed\n"));
    EXPECT_FALSE(database.basic().m_use_bandwidth_settings_table);
    EXPECT_EQ(nullptr, database.basic().m_bandwidth_settings_table);
}

TEST(FamilyFileEnd, ReadsATableForEachType)
{
    DATABASE database;
    database.write("table.txt", "SIMPLE_V1 \n\n0 20 30\n");
    std::string text = "family Fam\n";
    for (const char* type : {"ENHANCED_PLL", "FAST_PLL", "FAST_PLL_HIGH_SPEED", "VESTRA_PLL"}) {
        text += "pll ";
        text += type;
        text += "\nbandwidth_settings_table_file table.txt\n";
    }
    EXPECT_TRUE(database.read(text));
    for (const PLL_BASIC_INFO& basic : database.family("Fam").m_basic_infos) {
        EXPECT_TRUE(basic.m_use_bandwidth_settings_table);
        EXPECT_EQ(1, basic.m_bandwidth_settings_table_size);
    }
}

TEST(FamilyFileEnd, FailsWithATableThatFails)
{
    DATABASE database;
    EXPECT_FALSE(database.read(PART_HEAD + "bandwidth_settings_table_file nowhere.txt\n"));
    EXPECT_TRUE(database.basic().m_use_bandwidth_settings_table);
    EXPECT_EQ(1, database.family("Fam").m_number_of_listed_speed_grades);
}

// ---- Includes

std::string file_name(int i)
{
    return "file" + std::to_string(i) + ".txt";
}

// A chain of files, each of which includes the next.
void write_chain(DATABASE* database, int length)
{
    for (int i = 1; i <= length; ++i) {
        const std::string value = std::to_string(i);
        std::string text = "n_counter_max " + value;
        text += "\ninclude " + file_name(i + 1);
        text += "\nm_counter_preferred_min " + value;
        database->write(file_name(i), text);
    }
}

TEST(Include, ReadsOnAfterTheIncludedFile)
{
    DATABASE database;
    database.write("other.txt", "n_counter_max 7\nm_counter_max 8");
    EXPECT_TRUE(database.read(TYPE_HEAD + "include \"other.txt\"\nm_counter_max 9\n"));
    EXPECT_EQ(7, database.basic().m_n_counter_max);
    EXPECT_EQ(9, database.basic().m_m_counter_max);
}

TEST(Include, IsRelativeToTheFamilyWhateverFileIncludes)
{
    DATABASE database;
    std::filesystem::create_directory(database.m_dir.file("sub"));
    database.write("sub/one.txt", "include two.txt\ninclude sub/two.txt\n");
    database.write("sub/two.txt", "n_counter_max 7\n");
    database.write("two.txt", "m_counter_max 8\n");
    EXPECT_TRUE(database.read(TYPE_HEAD + "include sub/one.txt\n"));
    EXPECT_EQ(7, database.basic().m_n_counter_max);
    EXPECT_EQ(8, database.basic().m_m_counter_max);
}

TEST(Include, OfWhatIsNoFileIsSkipped)
{
    DATABASE database;
    ASSERT_EQ(0, mkfifo(database.m_dir.file("pipe").c_str(), 0600));
    EXPECT_TRUE(
        database.read(TYPE_HEAD + "include .\ninclude pipe\ninclude \"\"\nn_counter_max 2"));
    EXPECT_EQ(2, database.basic().m_n_counter_max);
}

TEST(Include, FailsWithTheIncludedFile)
{
    DATABASE database;
    database.write("other.txt", "frob\n");
    EXPECT_FALSE(database.read(TYPE_HEAD + "include other.txt\nn_counter_max 2\n"));
    EXPECT_EQ(0, database.basic().m_n_counter_max);
}

TEST(Include, NestsSevenDeep)
{
    DATABASE database;
    write_chain(&database, 7);
    database.write(file_name(7), "n_counter_max 7\n");
    EXPECT_TRUE(database.read(TYPE_HEAD + "include " + file_name(1) + "\n"));
    EXPECT_EQ(7, database.basic().m_n_counter_max);
    EXPECT_EQ(1, database.basic().m_m_counter_preferred_min);
}

TEST(Include, FailsWithEightFilesOpenWhateverItNames)
{
    for (const char* operand : {"nowhere.txt", ""}) {
        SCOPED_TRACE(operand);
        DATABASE database;
        write_chain(&database, 7);
        database.write(file_name(7), "n_counter_max 7\ninclude " + std::string(operand));
        EXPECT_FALSE(database.read(TYPE_HEAD + "include " + file_name(1) + "\n"));
        EXPECT_EQ(7, database.basic().m_n_counter_max);
        EXPECT_EQ(-1, database.basic().m_m_counter_preferred_min);
    }
}

TEST(Include, OpensAThousandFilesAndNoMore)
{
    DATABASE database;
    database.write("other.txt", "n_counter_max 1\n");
    std::string includes = TYPE_HEAD;
    for (int i = 0; i < 999; ++i) {
        includes += "include nowhere.txt\ninclude other.txt\n";
    }
    EXPECT_TRUE(database.read(includes));
    EXPECT_FALSE(database.read(includes + "include\n"));
}

TEST(Include, OfItselfFails)
{
    DATABASE database;
    EXPECT_FALSE(database.read(TYPE_HEAD + "include family.txt\n"));
}

TEST(Include, OfEachOtherManyTimesEnds)
{
    DATABASE database;
    for (int i = 1; i <= 7; ++i) {
        std::string text;
        for (int j = 0; j < 100; ++j) {
            text += "include " + file_name(i + 1) + "\n";
        }
        database.write(file_name(i), text);
    }
    EXPECT_FALSE(database.read("include " + file_name(1) + "\n"));
}

}  // namespace
