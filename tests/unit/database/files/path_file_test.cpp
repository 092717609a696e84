// The path file, and the loading of families on first use.
#include "error_guard.h"
#include "manager_builders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace {

const char SOURCE[] = "pll_manager";
const char PATH_FILE[] = "ddb_pll_path.txt";

// The path text that a family gets from a sub-directory.
std::string path_of(const DATABASE& database, const std::string& sub_directory)
{
    return database.m_dir.path() + "/" + sub_directory;
}

bool read_path_file(DATABASE* database, const std::string& text)
{
    database->write(PATH_FILE, text);
    return database->m_manager.read(database->m_dir.path().c_str());
}

TEST(PathFile, NamesFamiliesTheirPathsAndFiles)
{
    DATABASE database;
    EXPECT_TRUE(read_path_file(&database, "# families\n\nAlpha sub/a a.txt ignored\n"
                                          "\t\"Beta 2\" \"b c\" \"b file.txt\" # comment\n"));
    ASSERT_EQ(2, database.m_manager.get_number_of_families());
    EXPECT_EQ(path_of(database, "sub/a"), database.family("alpha").m_path);
    EXPECT_STREQ("a.txt", database.family("alpha").m_file_name);
    EXPECT_EQ(path_of(database, "b c"), database.family("BETA 2").m_path);
    EXPECT_STREQ("b file.txt", database.family("BETA 2").m_file_name);
}

TEST(PathFile, IsFoundWithAndWithoutATrailingSlash)
{
    DATABASE database;
    database.write(PATH_FILE, "Alpha a a.txt\n");
    EXPECT_TRUE(database.m_manager.read((database.m_dir.path() + "/").c_str()));
    EXPECT_EQ(path_of(database, "a"), database.family("Alpha").m_path);
    EXPECT_TRUE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_EQ(path_of(database, "a"), database.family("Alpha").m_path);
}

TEST(PathFile, MayLeavePathAndFileOut)
{
    DATABASE database;
    EXPECT_TRUE(read_path_file(&database, "Alpha\nBeta b"));
    EXPECT_EQ(nullptr, database.family("Alpha").m_path);
    EXPECT_EQ(nullptr, database.family("Alpha").m_file_name);
    EXPECT_EQ(path_of(database, "b"), database.family("Beta").m_path);
    EXPECT_EQ(nullptr, database.family("Beta").m_file_name);
    EXPECT_EQ(nullptr, database.m_manager.read_family_info("Beta"));
}

TEST(PathFile, NamesAFamilyTwiceForItsLastPathAndFile)
{
    DATABASE database;
    EXPECT_TRUE(read_path_file(&database, "Alpha a a.txt\nALPHA b\nalpha\n"));
    ASSERT_EQ(1, database.m_manager.get_number_of_families());
    EXPECT_STREQ("Alpha", database.m_manager.get_family(0));
    EXPECT_EQ(path_of(database, "b"), database.family("Alpha").m_path);
    EXPECT_STREQ("a.txt", database.family("Alpha").m_file_name);
}

TEST(PathFile, OfASecondDirectoryAddsAndReplaces)
{
    DATABASE first;
    DATABASE second;
    EXPECT_TRUE(read_path_file(&first, "Alpha a a.txt\nBeta b b.txt\n"));
    second.write(PATH_FILE, "Beta x x.txt\nGamma g g.txt\n");
    EXPECT_TRUE(first.m_manager.read(second.m_dir.path().c_str()));
    ASSERT_EQ(3, first.m_manager.get_number_of_families());
    EXPECT_EQ(path_of(first, "a"), first.family("Alpha").m_path);
    EXPECT_EQ(path_of(second, "x"), first.family("Beta").m_path);
    EXPECT_STREQ("x.txt", first.family("Beta").m_file_name);
}

TEST(PathFile, MayNameAnEmptyName)
{
    DATABASE database;
    EXPECT_TRUE(read_path_file(&database, "\"\" \"\" \"\"\n"));
    EXPECT_EQ(path_of(database, ""), database.family("").m_path);
    EXPECT_STREQ("", database.family("").m_file_name);
}

TEST(PathFile, WithoutAFamilyIsFalse)
{
    DATABASE database;
    EXPECT_FALSE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_FALSE(read_path_file(&database, ""));
    EXPECT_FALSE(read_path_file(&database, "# one\n\n  \t\r\n#two"));
    EXPECT_EQ(0, database.m_manager.get_number_of_families());
}

TEST(PathFile, ThatIsNoRegularFileIsFalse)
{
    DATABASE database;
    std::filesystem::create_directory(database.m_dir.file(PATH_FILE));
    EXPECT_FALSE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_FALSE(database.m_manager.read("/nowhere/at/all"));
    EXPECT_EQ(0, database.m_manager.get_number_of_families());
}

TEST(PathFile, MayBeALink)
{
    DATABASE database;
    database.write("paths", "Alpha a a.txt\n");
    std::filesystem::create_symlink("paths", database.m_dir.file(PATH_FILE));
    EXPECT_TRUE(database.m_manager.read(database.m_dir.path().c_str()));
    EXPECT_EQ(1, database.m_manager.get_number_of_families());
}

TEST(PathFile, WithoutADirectoryIsReported)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    EXPECT_FALSE(manager.read(nullptr));
    reports.expect_only("path != NULL", SOURCE);
}

TEST(PathFile, OfAnEmptyDirectoryTextLiesInTheRoot)
{
    PLL_MANAGER manager;
    TEMP_WORKING_DIR here;
    write_file(PATH_FILE, "Alpha a a.txt\n");
    EXPECT_FALSE(manager.read(""));
    EXPECT_TRUE(manager.read("."));
}

TEST(PathFile, LosesTheRestOfALongLine)
{
    DATABASE database;
    const std::string line = "Alpha a " + std::string(1015, 'x');
    EXPECT_EQ(1023U, line.size());
    EXPECT_TRUE(read_path_file(&database, line + "yyy\r\nBeta b b.txt\r\n"));
    EXPECT_EQ(std::string(1015, 'x'), database.family("Alpha").m_file_name);
    EXPECT_STREQ("b.txt", database.family("Beta").m_file_name);
}

// ---- Loading

TEST(FamilyLoading, ReadsTheFileOnce)
{
    DATABASE database;
    database.write("family.txt", PART_HEAD);
    EXPECT_TRUE(read_path_file(&database, "Fam . family.txt\n"));
    EXPECT_EQ(0, database.family("Fam").m_number_of_parts);
    EXPECT_EQ(&database.family("Fam"), database.m_manager.read_family_info("fam"));
    EXPECT_EQ(1, database.family("Fam").m_number_of_parts);
    database.write("family.txt", "broken");
    EXPECT_EQ(&database.family("Fam"), database.m_manager.read_family_info("Fam"));
}

TEST(FamilyLoading, OfAnUnknownNameIsNullAndCreatesTheRecord)
{
    PLL_MANAGER manager;
    EXPECT_EQ(nullptr, manager.read_family_info("New"));
    ASSERT_EQ(1, manager.get_number_of_families());
    EXPECT_STREQ("New", manager.get_family(0));
}

TEST(FamilyLoading, OfANullNameIsReported)
{
    EXPECTED_REPORTS reports;
    PLL_MANAGER manager;
    EXPECT_EQ(nullptr, manager.read_family_info(nullptr));
    reports.expect_only("family_info != NULL", SOURCE);
    EXPECT_EQ(0, manager.get_number_of_families());
}

TEST(FamilyLoading, ThatFailsAfterAPartCountsAsDone)
{
    DATABASE database;
    database.write("family.txt", PART_HEAD + "broken\n");
    EXPECT_TRUE(read_path_file(&database, "Fam . family.txt\n"));
    EXPECT_EQ(nullptr, database.m_manager.read_family_info("Fam"));
    EXPECT_EQ(&database.family("Fam"), database.m_manager.read_family_info("Fam"));
}

TEST(FamilyLoading, WithoutAPartReadsAgainEachTime)
{
    DATABASE database;
    database.write("family.txt", TYPE_HEAD + "n_counter_max 5\n");
    EXPECT_TRUE(read_path_file(&database, "Fam . family.txt\n"));
    EXPECT_NE(nullptr, database.m_manager.read_family_info("Fam"));
    EXPECT_EQ(5, database.basic().m_n_counter_max);
    database.write("family.txt", TYPE_HEAD + "n_counter_max 6\nbroken\n");
    EXPECT_EQ(nullptr, database.m_manager.read_family_info("Fam"));
    EXPECT_EQ(6, database.basic().m_n_counter_max);
    database.write("family.txt", TYPE_HEAD + "n_counter_max 7\n");
    EXPECT_NE(nullptr, database.m_manager.read_family_info("Fam"));
    EXPECT_EQ(7, database.basic().m_n_counter_max);
}

TEST(FamilyLoading, SkipsTheOwnFileOfAFamilyThatGotPartsElsewhere)
{
    DATABASE database;
    database.write("other.txt", "family Other\n" + PART_HEAD + "family Other\npart P2\n");
    database.write("family.txt", "broken\n");
    EXPECT_TRUE(read_path_file(&database, "Other . other.txt\nFam . family.txt\n"));
    EXPECT_NE(nullptr, database.m_manager.read_family_info("Other"));
    EXPECT_EQ(&database.family("Fam"), database.m_manager.read_family_info("Fam"));
}

TEST(FamilyLoading, ReadsOnlyTheFamilyThatIsNamed)
{
    DATABASE database;
    database.write("family.txt", PART_HEAD);
    EXPECT_TRUE(read_path_file(&database, "Fam . family.txt\nOther . family.txt\n"));
    EXPECT_NE(nullptr, database.m_manager.read_family_info("Other"));
    EXPECT_EQ(0, database.family("Other").m_number_of_parts);
    EXPECT_EQ(1, database.family("Fam").m_number_of_parts);
}

}  // namespace
