// Device sheets: those of the source tree are clean, and what is wrong with a sheet is told with
// its place.
#include "advice/sheets/catalog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>

namespace advice {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const SHEET_CATALOG& catalog()
{
    static const SHEET_CATALOG CATALOG(PLL_DATA_DIR "/devices");
    return CATALOG;
}

// A sheet that is complete; tests put their lines before its tables or behind them.
std::string small_sheet(const std::string& head, const std::string& tail)
{
    return "name = \"small\"\ntitle = \"Small\"\nfilter = \"not published\"\n"
           "primitives = [\"SMALL\"]\noutput = [ { name = \"Q\" } ]\n" +
           head +
           "[[grade]]\nname = \"a\"\npart = \"small\"\n"
           "[sources]\nbook = \"a book\"\n"
           "[[figure]]\nwhat = \"vco\"\nmin = 400\nmax = 800.5\nsources = [\"book\"]\n"
           "[[figure]]\nwhat = \"pfd\"\nmin = \"10/3\"\nmax = 400\nsources = [\"book\"]\n"
           "[[figure]]\nwhat = \"n\"\nmin = 1\nmax = 16\nsources = [\"book\"]\n"
           "[[figure]]\nwhat = \"m\"\nmin = 1\nmax = 16\nsources = [\"book\"]\n" +
           tail;
}

std::string first_problem(const std::string& text)
{
    const SHEET_FILE file = parse_sheet(text, "small.toml");
    return file.m_problems.empty() ? "" : to_text(file.m_problems.front());
}

TEST(Sheets, OfTheTreeAreClean)
{
    EXPECT_THAT(catalog().get_sheets(), SizeIs(17));
    for (const SHEET_PROBLEM& problem : catalog().get_problems()) {
        ADD_FAILURE() << to_text(problem);
    }
}

TEST(Sheets, GiveEveryFigureASourceThatIsListed)
{
    int figures = 0;
    for (const SHEET* each : catalog().get_sheets()) {
        const SHEET& sheet = *each;
        for (const FIGURE& figure : sheet.m_figures) {
            EXPECT_FALSE(figure.m_sources.empty()) << sheet.m_name << ":" << figure.m_line;
            for (const std::string& source : figure.m_sources) {
                EXPECT_EQ(1U, sheet.m_sources.count(source)) << sheet.m_name << " " << source;
            }
            ++figures;
        }
    }
    EXPECT_GT(figures, 100);
}

TEST(Sheets, KeepDecimalsAsWritten)
{
    const SHEET_FILE file = parse_sheet(small_sheet("", ""), "small.toml");
    ASSERT_THAT(file.m_problems, IsEmpty());
    const FIGURE* vco = file.m_sheet.find_figure(FIGURE_KIND::VCO, "a", "", "");
    EXPECT_EQ(RATIONAL(8005, 10), *vco->m_range.m_most);
    const FIGURE* pfd = file.m_sheet.find_figure(FIGURE_KIND::PFD, "a", "", "");
    EXPECT_EQ(RATIONAL(10, 3), *pfd->m_range.m_least);
}

TEST(Sheets, TellWhatIsWrongAndWhere)
{
    struct CASE
    {
        const char* m_name;
        const char* m_head;
        const char* m_tail;
        const char* m_problem;
    };
    // clang-format off
    constexpr CASE CASES[] = {
        {"unknown key",        "colour = 3\n", "", "small.toml:6:10: unknown key 'colour'"},
        {"wrong type",         "devices = 3\n", "", "small.toml:6:11: a list of texts is needed"},
        {"unknown role",       "parameter = [ { name = \"X\", is = \"y\", type = \"real\" } ]\n", "", "small.toml:6:34: 'y' is none of fixed, n"},
        {"missing key",        "port = [ { name = \"X\" } ]\n", "", "small.toml:6:10: the key 'is' is missing"},
        {"no TOML",            "port = [ \n", "", "small.toml:7:"},
        {"no source",          "", "[[figure]]\nwhat = \"input\"\nmin = 3\nsources = []\n", "small.toml:31: a figure needs a source"},
        {"unknown source",     "", "[[figure]]\nwhat = \"input\"\nmin = 3\nsources = [\"x\"]\n", "the source 'x' is not listed"},
        {"crossed limits",     "", "[[figure]]\nwhat = \"input\"\nmin = 3\nmax = 2.5\nsources = [\"book\"]\n", "the limits are crossed: 3 to 2.5"},
        {"unknown grade",      "", "[[figure]]\nwhat = \"input\"\ngrades = [\"b\"]\nmin = 3\nsources = [\"book\"]\n", "there is no grade 'b'"},
        {"unknown output",     "feedback = \"R\"\n", "", "'feedback' names the unknown output 'R'"},
        {"include is missing", "include = \"none.toml\"\n", "", "cannot read the included 'none.toml'"},
    };
    // clang-format on
    for (const CASE& each : CASES) {
        SCOPED_TRACE(each.m_name);
        EXPECT_THAT(first_problem(small_sheet(each.m_head, each.m_tail)),
                    HasSubstr(each.m_problem));
    }
}

TEST(Sheets, CutAtAnyLengthAreToldOrRead)
{
    const std::string whole = small_sheet("eighths = [\"m\"]\n", "");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        static_cast<void>(first_problem(whole.substr(0, length)));
    }
    EXPECT_EQ("", first_problem(whole));
}

// Values in ps of the keywords in one speed grade of a family file, and of those above all grades.
std::map<std::string, std::int64_t> read_grade(const std::string& family, const std::string& grade)
{
    std::ifstream file(std::string(PLL_DATA_DIR "/devices/") + family + "/" + family + "_pll.txt");
    std::map<std::string, std::int64_t> values;
    bool is_in_grade = false;
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string key;
        std::string value;
        words >> key >> value;
        if (key == "speed_grade") {
            is_in_grade = value == grade;
        } else if (is_in_grade &&
                   key.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") == std::string::npos &&
                   key != "part" && !key.empty()) {
            values[key] = std::stoll(value);
        }
    }
    return values;
}

// The periods of the family file hold all that the figure allows.
void expect_enclosed(const FIGURE& figure, const std::string& keyword,
                     const std::map<std::string, std::int64_t>& periods)
{
    const RATIONAL picoseconds(1000000);
    if (figure.m_range.m_most) {
        ASSERT_EQ(1U, periods.count(keyword + "_min")) << keyword;
        EXPECT_LE(RATIONAL(periods.at(keyword + "_min")), picoseconds / *figure.m_range.m_most)
            << keyword;
    }
    if (figure.m_range.m_least) {
        ASSERT_EQ(1U, periods.count(keyword + "_max")) << keyword;
        EXPECT_LE(picoseconds / *figure.m_range.m_least, RATIONAL(periods.at(keyword + "_max")))
            << keyword;
    }
}

TEST(Sheets, AreEnclosedByTheirFamilyFiles)
{
    const std::map<FIGURE_KIND, std::string> keywords = {{FIGURE_KIND::INPUT, "input"},
                                                         {FIGURE_KIND::PFD, "pfd"},
                                                         {FIGURE_KIND::VCO, "vco"},
                                                         {FIGURE_KIND::OUTPUT, "output"}};
    int figures = 0;
    for (const SHEET* sheet : catalog().get_sheets()) {
        for (const GRADE& grade : sheet->m_grades) {
            SCOPED_TRACE(sheet->m_name + ":" + grade.m_name);
            const auto periods = read_grade(sheet->m_name, grade.m_name);
            for (const auto& [kind, keyword] : keywords) {
                const FIGURE* figure = sheet->find_figure(kind, grade.m_name, "", "");
                if (figure != nullptr) {
                    expect_enclosed(*figure, keyword, periods);
                    ++figures;
                }
            }
        }
    }
    EXPECT_LT(70, figures);
}

TEST(Catalog, ChoosesByNameAndGrade)
{
    std::string problem;
    EXPECT_EQ("-1", catalog().choose("xc7-plle2", &problem)->m_grade);
    EXPECT_EQ("-2", catalog().choose("xc7-plle2:-2", &problem)->m_grade);
    EXPECT_EQ("-2", catalog().choose("XC7-PLLE2:2", &problem)->m_grade);
    EXPECT_EQ("C6/I5", catalog().choose("gw1n-1", &problem)->m_grade);
    EXPECT_EQ("C5/I4", catalog().choose("gw1n-1:c5/i4", &problem)->m_grade);
    EXPECT_EQ("", problem);
    EXPECT_FALSE(catalog().choose("xc7-plle2:-4", &problem));
    EXPECT_EQ("xc7-plle2 has no grade '-4'; legal are -1, -2, -3", problem);
    EXPECT_FALSE(catalog().choose("ecp6", &problem));
    EXPECT_THAT(problem, HasSubstr("unknown device 'ecp6'; legal are ecp5, "));
}

TEST(Catalog, OfAFolderThatIsNotThereIsEmpty)
{
    const SHEET_CATALOG none("/nowhere/at/all");
    EXPECT_THAT(none.get_names(), IsEmpty());
    EXPECT_THAT(none.get_sheets(), IsEmpty());
    EXPECT_THAT(none.get_problems(), IsEmpty());
}

}  // namespace
}  // namespace advice
