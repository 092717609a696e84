// Every file of a database, cut at every length and with a bit of every byte flipped: the library
// makes of it what the plain reader makes of it.
#include "database_comparison.h"
#include "sample_files.h"
#include "temp_dir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>

namespace {

const int BITS_OF_A_BYTE = 8;

class BrokenFileModel : public testing::TestWithParam<SAMPLE_FILE>
{
protected:
    BrokenFileModel()
    {
        for (const SAMPLE_FILE& file : sample_files()) {
            m_database.m_files[file.m_name] = file.m_text;
        }
        typedef RANDOM_STEP::KIND KIND;
        m_database.m_steps = {{KIND::READ, "", {}}, {KIND::SPEED_GRADES, "Other 1", {}}};
        for (int type = 0; type < MODEL_TYPES; ++type) {
            MODEL_QUERY query;
            query.m_type = type;
            query.m_own.m_family = "Fam";
            m_database.m_steps.push_back({KIND::INIT_INFO, "", query});
        }
    }

    void compare_with(const std::string& text)
    {
        m_database.m_files[GetParam().m_name] = text;
        ASSERT_EQ("", compare_database(m_database, m_dir.path(), &m_counts));
    }

    TEMP_DIR m_dir;
    RANDOM_DATABASE m_database;
    COUNTS m_counts;
};

TEST_P(BrokenFileModel, MayBeCutAtEveryLength)
{
    const std::string& text = GetParam().m_text;
    for (std::size_t size = 0; size <= text.size(); ++size) {
        SCOPED_TRACE("cut at " + std::to_string(size));
        compare_with(text.substr(0, size));
    }
    EXPECT_LE(4U, m_counts["init_pll_info: true"]);
}

TEST_P(BrokenFileModel, MayHaveABitOfEachByteFlipped)
{
    const std::string& text = GetParam().m_text;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::size_t bit = i % BITS_OF_A_BYTE;
        SCOPED_TRACE("bit " + std::to_string(bit) + " of byte " + std::to_string(i));
        std::string flipped = text;
        flipped[i] = static_cast<char>(flipped[i] ^ (1 << bit));
        compare_with(flipped);
    }
    EXPECT_LE(4U, m_counts["init_pll_info: true"]);
}

std::string name_of(const testing::TestParamInfo<SAMPLE_FILE>& info)
{
    std::string name = info.param.m_name;
    name.erase(
        std::remove_if(name.begin(), name.end(), [](char c) { return std::isalpha(c) == 0; }),
        name.end());
    return name;
}

INSTANTIATE_TEST_SUITE_P(Model, BrokenFileModel, testing::ValuesIn(sample_files()), name_of);

}  // namespace
