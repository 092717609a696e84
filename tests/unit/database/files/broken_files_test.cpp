// Every file of a database, cut at every length and with a bit of every byte flipped: whatever the
// reader makes of it, it ends, takes nothing along and leaves the host's locale; and an observer
// hears the truth.
#include "database/files/family_file.h"
#include "error_guard.h"
#include "mem_alloc_sys.h"
#include "pll.h"
#include "pll_manager.h"
#include "pll_observer.h"
#include "sample_files.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstring>
#include <set>
#include <sstream>
#include <string>

using namespace pll_internal;

namespace {

const int BITS_OF_A_BYTE = 8;

TEST(SampleFiles, UseEveryKeyword)
{
    std::set<std::string> words;
    std::istringstream lines(sample_family_text());
    for (std::string line; std::getline(lines, line);) {
        std::istringstream(line) >> line;
        words.insert(line);
    }
    for (const PLL_KEYWORD& keyword : get_keywords()) {
        EXPECT_EQ(1U, words.count(keyword.m_keyword)) << keyword.m_keyword;
    }
}

// Reads every text that it is handed, and counts what makes reading fail.
class LISTENER : public PLL_READ_OBSERVER
{
public:
    void on_statement(const PLL_READ_STATEMENT& statement) override
    {
        listen(statement.m_place);
        m_letters += std::strlen(statement.m_keyword);
        m_letters += statement.m_family == nullptr ? 0 : std::strlen(statement.m_family->m_name);
        m_letters += statement.m_part == nullptr ? 0 : std::strlen(statement.m_part->m_name);
        m_letters += statement.m_speed_grade == nullptr ? 0 : std::strlen(statement.m_speed_grade);
        m_has_failed = m_has_failed || statement.m_result == PLL_READ_RESULT::FAILED;
    }

    void on_finding(const PLL_READ_FINDING& finding) override
    {
        listen(finding.m_place);
        m_letters += std::strlen(finding.m_keyword) + std::strlen(finding.m_word) +
                     std::strlen(finding.m_needed);
        m_has_error = m_has_error || pll_is_read_error(finding.m_finding);
        EXPECT_STRNE("", pll_get_finding_name(finding.m_finding));
    }

    // Whether anything made reading fail since the last call.
    bool take_error()
    {
        EXPECT_TRUE(m_has_error || !m_has_failed);
        const bool has_error = m_has_error;
        m_has_error = false;
        m_has_failed = false;
        return has_error;
    }

private:
    void listen(const PLL_SOURCE_PLACE& place)
    {
        m_letters += std::strlen(place.m_file);
        EXPECT_LE(0, place.m_line);
        EXPECT_LE(0, place.m_column);
        EXPECT_LE(0, place.m_length);
        EXPECT_GE(PLL_LINE_SIZE, place.m_column + place.m_length);
    }

    std::size_t m_letters = 0;
    bool m_has_error = false;
    bool m_has_failed = false;
};

class BrokenFile : public testing::TestWithParam<SAMPLE_FILE>
{
protected:
    BrokenFile()
    {
        for (const SAMPLE_FILE& file : sample_files()) {
            write_file(m_dir.file(file.m_name), file.m_text);
        }
    }

    // Reads the whole database and initialises a PLL of each type from it; true when that works.
    bool use()
    {
        const std::size_t blocks = MEM_MANAGER::get_live_blocks(nullptr);
        const std::size_t bytes = MEM_MANAGER::get_live_bytes(nullptr);
        const std::string locale = std::setlocale(LC_NUMERIC, nullptr);
        EXPECTED_REPORTS reports;
        reports.accept_all();
        const bool is_ok = use_manager();
        PLL::delete_family_info();
        EXPECT_EQ(blocks, MEM_MANAGER::get_live_blocks(nullptr));
        EXPECT_EQ(bytes, MEM_MANAGER::get_live_bytes(nullptr));
        EXPECT_EQ(locale, std::setlocale(LC_NUMERIC, nullptr));
        return is_ok;
    }

    void use_with(const std::string& text)
    {
        write_file(m_dir.file(GetParam().m_name), text);
        use();
        use_observed();
    }

    // An observer changes nothing, and hears of an error exactly when reading fails.
    void use_observed()
    {
        PLL_MANAGER plain;
        PLL_MANAGER observed;
        LISTENER listener;
        EXPECTED_REPORTS plain_reports;
        const bool has_families = plain.read(m_dir.path().c_str());
        const bool has_family = plain.read_family_info("Fam") != nullptr;
        const std::size_t count = plain_reports.count();

        EXPECTED_REPORTS observed_reports;
        observed.set_observer(&listener);
        EXPECT_EQ(has_families, observed.read(m_dir.path().c_str()));
        EXPECT_EQ(!has_families, listener.take_error());
        EXPECT_EQ(has_family, observed.read_family_info("Fam") != nullptr);
        EXPECT_EQ(!has_family, listener.take_error());
        EXPECT_EQ(count, observed_reports.count());
    }

private:
    bool use_manager()
    {
        bool is_ok = PLL::init_family_info(m_dir.path().c_str());
        is_ok = PLL::m_pll_manager->get_number_of_listed_speed_grades("Fam") == 2 && is_ok;
        PLL::m_pll_manager->get_number_of_speed_grades("Other 1");
        for (int type = ENHANCED_PLL; type < PLL_TYPE_MAX; ++type) {
            PLL pll(1, PLL_MAX_TAPS);
            PLL_QUERY query;
            query.m_family = "Fam";
            query.m_type = static_cast<PLL_TYPE_ENUM>(type);
            query.add_migration_part("Fam", "P1", nullptr);
            is_ok = PLL::m_pll_manager->init_pll(&pll, query) && is_ok;
        }
        return is_ok;
    }

    TEMP_DIR m_dir;
};

TEST_P(BrokenFile, IsReadWhenWhole)
{
    EXPECT_TRUE(use());
}

TEST_P(BrokenFile, MayBeCutAtEveryLength)
{
    const std::string& text = GetParam().m_text;
    for (std::size_t size = 0; size < text.size(); ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        use_with(text.substr(0, size));
    }
}

TEST_P(BrokenFile, MayHaveABitOfEachByteFlipped)
{
    const std::string& text = GetParam().m_text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int bit = static_cast<int>(i) % BITS_OF_A_BYTE;
        SCOPED_TRACE("bit " + std::to_string(bit) + " of byte " + std::to_string(i));
        std::string flipped = text;
        flipped[i] = static_cast<char>(flipped[i] ^ (1 << bit));
        use_with(flipped);
    }
}

std::string name_of(const testing::TestParamInfo<SAMPLE_FILE>& info)
{
    std::string name = info.param.m_name;
    name.erase(
        std::remove_if(name.begin(), name.end(), [](char c) { return std::isalpha(c) == 0; }),
        name.end());
    return name;
}

INSTANTIATE_TEST_SUITE_P(Hostile, BrokenFile, testing::ValuesIn(sample_files()), name_of);

}  // namespace
