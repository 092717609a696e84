// docs/database-format.md says what the reader does: its keywords, their scopes, operands and
// defaults are those of the keyword table, and the device that it builds up synthesises.
#include "database/files/family_file.h"
#include "manager_builders.h"
#include "pll.h"
#include "pll_prop.h"
#include "verifier.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

using namespace pll_internal;

namespace {

const std::string DOCUMENT = read_file(PLL_DOCS_DIR "/database-format.md");

std::vector<std::string> lines_of(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::vector<std::string> cells_of(const std::string& row)
{
    std::vector<std::string> cells;
    std::istringstream stream(row.substr(1));
    for (std::string cell; std::getline(stream, cell, '|');) {
        cells.push_back(trimmed(cell));
    }
    return cells;
}

// ---- Keywords

const std::map<std::string, PLL_SCOPE> SCOPES = {
    {"### Anywhere", PLL_SCOPE::ANYWHERE},
    {"### In a family", PLL_SCOPE::FAMILY},
    {"### In a family, a PLL type and a speed grade", PLL_SCOPE::SPEED_GRADE},
    {"### In a PLL type", PLL_SCOPE::PLL_TYPE},
    {"### In a reconfiguration type", PLL_SCOPE::RECONFIG},
    {"### In a part", PLL_SCOPE::PART},
};

const std::map<std::string, PLL_OPERAND_KIND> KINDS = {
    {"name", PLL_OPERAND_KIND::NAME},
    {"word", PLL_OPERAND_KIND::WORD},
    {"number", PLL_OPERAND_KIND::NUMBER},
    {"post-scale number", PLL_OPERAND_KIND::POST_SCALE_NUMBER},
    {"real", PLL_OPERAND_KIND::REAL},
    {"flag", PLL_OPERAND_KIND::FLAG},
    {"sorted list", PLL_OPERAND_KIND::SORTED_NUMBERS},
    {"list", PLL_OPERAND_KIND::NUMBERS},
    {"counters", PLL_OPERAND_KIND::COUNTERS},
};

// A keyword as the document has it: keyword, operand and effect, or unit, range and default
// besides.
struct DOCUMENTED
{
    std::string m_keyword;
    std::string m_scope;  // the heading
    std::vector<std::string> m_cells;

    const std::string& operand() const { return m_cells[1]; }
    bool has_value() const { return m_cells.size() == VALUE_CELLS; }
    const std::string& default_value() const { return m_cells[4]; }

    static constexpr std::size_t VALUE_CELLS = 6;
    static constexpr std::size_t PLAIN_CELLS = 3;
};

std::vector<DOCUMENTED> documented_keywords()
{
    std::vector<DOCUMENTED> rows;
    std::string heading;
    for (const std::string& line : lines_of(DOCUMENT)) {
        if (line.rfind('#', 0) == 0) {
            heading = line;
        }
        if (line.rfind("| `", 0) == 0 && SCOPES.count(heading) != 0) {
            const std::vector<std::string> cells = cells_of(line);
            rows.push_back({cells[0].substr(1, cells[0].size() - 2), heading, cells});
        }
    }
    return rows;
}

TEST(DatabaseDocument, HasEveryKeywordOnceWithScopeAndOperand)
{
    std::set<std::string> seen;
    for (const DOCUMENTED& row : documented_keywords()) {
        SCOPED_TRACE(row.m_keyword);
        EXPECT_TRUE(seen.insert(row.m_keyword).second) << "stands twice";
        const PLL_KEYWORD* const keyword = find_keyword(row.m_keyword.c_str());
        ASSERT_NE(nullptr, keyword);
        EXPECT_EQ(row.m_keyword, keyword->m_keyword);
        EXPECT_EQ(SCOPES.at(row.m_scope), keyword->m_scope);
        ASSERT_EQ(1U, KINDS.count(row.operand())) << row.operand();
        EXPECT_EQ(KINDS.at(row.operand()), keyword->m_kind);
    }
    for (const PLL_KEYWORD& keyword : get_keywords()) {
        EXPECT_EQ(1U, seen.count(keyword.m_keyword)) << keyword.m_keyword << " is missing";
    }
}

TEST(DatabaseDocument, SaysUnitRangeDefaultAndEffectOfEveryValue)
{
    for (const DOCUMENTED& row : documented_keywords()) {
        SCOPED_TRACE(row.m_keyword);
        ASSERT_TRUE(row.has_value() || row.m_cells.size() == DOCUMENTED::PLAIN_CELLS);
        const bool is_value =
            row.operand() != "name" && row.operand() != "word" && row.operand() != "counters";
        EXPECT_TRUE(!is_value || row.has_value());
        for (const std::string& cell : row.m_cells) {
            EXPECT_FALSE(cell.empty());
        }
        EXPECT_EQ('.', row.m_cells.back().back());
    }
}

// The first place where a record shows `shown` and a fresh one does not; what the fresh one has
// there is the default.
template <class RECORD, class VALUE>
std::optional<VALUE> default_of(const RECORD& record, VALUE shown)
{
    const RECORD fresh;
    for (std::size_t at = 0; at + sizeof shown <= sizeof record; at += alignof(VALUE)) {
        VALUE value;
        VALUE usual;
        std::memcpy(&value, reinterpret_cast<const char*>(&record) + at, sizeof value);
        std::memcpy(&usual, reinterpret_cast<const char*>(&fresh) + at, sizeof usual);
        if (value == shown && value != usual) {
            return usual;
        }
    }
    return std::nullopt;
}

std::string text_of_default(std::optional<int> value)
{
    if (!value) {
        return "not stored";
    }
    return *value == PLL_UNSET_MINIMUM || *value == -1 ? "none" : std::to_string(*value);
}

std::string text_of_default(std::optional<double> value)
{
    if (!value) {
        return "not stored";
    }
    std::ostringstream stream;
    stream << *value;
    return *value == std::numeric_limits<double>::max() ? "none" : stream.str();
}

// Reads the keyword with an operand of its own, and looks at what stood there before.
std::string default_in_code(const PLL_KEYWORD& keyword)
{
    const int NUMBER = 123457;
    const double REAL = 123457.25;
    DATABASE database;
    const std::string scale = keyword.m_kind == PLL_OPERAND_KIND::POST_SCALE_NUMBER ? "1 " : "";
    const bool is_real = keyword.m_kind == PLL_OPERAND_KIND::REAL;
    EXPECT_TRUE(database.read(PART_HEAD + keyword.m_keyword + " " + scale +
                              (is_real ? "123457.25" : "123457")));
    if (keyword.m_scope == PLL_SCOPE::PART) {
        return text_of_default(default_of(database.timing(), NUMBER));
    }
    return is_real ? text_of_default(default_of(database.basic(), REAL))
                   : text_of_default(default_of(database.basic(), NUMBER));
}

TEST(DatabaseDocument, HasTheDefaultsOfTheRecords)
{
    int checked = 0;
    for (const DOCUMENTED& row : documented_keywords()) {
        SCOPED_TRACE(row.m_keyword);
        const bool is_number = row.operand() == "number" || row.operand() == "real" ||
                               row.operand() == "post-scale number";
        // A post-scale of 123457 is reported; its default is that of every count.
        if (is_number && row.m_keyword != "vco_post_scale_counter_max") {
            EXPECT_EQ(row.default_value(), default_in_code(*find_keyword(row.m_keyword.c_str())));
            ++checked;
        } else if (row.operand() == "flag") {
            EXPECT_EQ("false", row.default_value());
        } else if (row.has_value() && !is_number) {
            EXPECT_EQ("none", row.default_value());
        }
    }
    EXPECT_LT(50, checked);
}

// ---- The walk from an empty folder to a device

// Writes the files that the document shows: a line "`name`:" and the fenced text after it.
int write_shown_files(DATABASE* database)
{
    int files = 0;
    std::string name;
    std::string text;
    bool is_inside = false;
    for (const std::string& line : lines_of(DOCUMENT)) {
        const bool is_fence = line.rfind("```", 0) == 0;
        if (is_fence && is_inside && !name.empty()) {
            const std::filesystem::path path = database->m_dir.file(name);
            std::filesystem::create_directories(path.parent_path());
            database->write(name, text);
            name.clear();
            ++files;
        } else if (is_inside && !is_fence) {
            text += line + "\n";
        } else if (line.size() > 3 && line.front() == '`' && line.substr(line.size() - 2) == "`:") {
            name = line.substr(1, line.size() - 3);
        }
        if (is_fence) {
            is_inside = !is_inside;
            text.clear();
        }
    }
    return files;
}

class DatabaseWalk : public testing::Test
{
protected:
    DatabaseWalk() : m_pll(2, PLL_MAX_TAPS), m_request(2)
    {
        EXPECT_EQ(3, write_shown_files(&m_database));
        EXPECT_TRUE(m_database.m_manager.read(m_database.m_dir.path().c_str()));
        m_request.m_fin_period = 20000;
        m_request.m_taps[0].m_mult = 4;
        m_request.m_taps[1].m_mult = 2;
    }

    bool init()
    {
        PLL_QUERY query;
        query.m_family = "Basil";
        query.m_type = ENHANCED_PLL;
        query.m_part = "BS10-6";
        query.m_speed_grade = "6";
        return m_database.m_manager.init_pll(&m_pll, query);
    }

    DATABASE m_database;
    PLL m_pll;
    PLL_PROP m_request;
};

TEST_F(DatabaseWalk, EndsInADeviceThatSynthesisesAsItSays)
{
    ASSERT_TRUE(init());
    EXPECT_EQ(1, m_database.m_manager.get_number_of_listed_speed_grades("Basil"));
    EXPECT_TRUE(m_pll.m_info.is_bandwidth_settings_table_valid());
    PLL before(2, PLL_MAX_TAPS);
    before = m_pll;
    ASSERT_TRUE(m_pll.synthesize(m_request));
    EXPECT_EQ(1, m_pll.get_n());
    EXPECT_EQ(12, m_pll.get_m());
    EXPECT_EQ(20000.0 / 12, m_pll.get_vco_period());
    EXPECT_EQ(3, m_pll.m_taps[0].m_count);
    EXPECT_EQ(6, m_pll.m_taps[1].m_count);
    EXPECT_TRUE(verify_result(m_request, before, m_pll).m_objections.empty());
}

TEST_F(DatabaseWalk, ReachesEveryDivisionWithoutItsTable)
{
    m_request.m_taps[1].m_mult = 1;
    m_request.m_taps[1].m_div = 1;
    m_request.m_taps[0].m_mult = 13;  // of 50 MHz: 650 MHz, M is 13 then
    ASSERT_TRUE(init());
    EXPECT_FALSE(m_pll.synthesize(m_request));
    const std::string name = "basil/basil_pll.txt";
    std::string text = read_file(m_database.m_dir.file(name));
    text.erase(text.find("bandwidth_settings_table_file"),
               std::string("bandwidth_settings_table_file bandwidth.txt").size());
    m_database.write(name, text);
    PLL_MANAGER manager;
    ASSERT_TRUE(manager.read(m_database.m_dir.path().c_str()));
    PLL_QUERY query;
    query.m_family = "basil";
    query.m_type = ENHANCED_PLL;
    PLL pll(2, PLL_MAX_TAPS);
    ASSERT_TRUE(manager.init_pll(&pll, query));
    EXPECT_TRUE(pll.synthesize(m_request)) << pll.m_error;
    EXPECT_EQ(13, pll.get_m());
}

}  // namespace
