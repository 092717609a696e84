// What a comparison with a golden file says, and what is left of one that is renewed.
#include "golden.h"
#include "temp_dir.h"

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// Sets or unsets the variable that asks for new golden files, for the time of its life.
class GOLDEN_UPDATE
{
public:
    enum class WISH
    {
        COMPARE,
        WRITE
    };

    explicit GOLDEN_UPDATE(WISH wish)
    {
        const char* const before = std::getenv(NAME);
        m_was_set = before != nullptr;
        m_before = m_was_set ? before : "";
        set(wish == WISH::WRITE, "1");
    }

    ~GOLDEN_UPDATE() { set(m_was_set, m_before.c_str()); }

    GOLDEN_UPDATE(const GOLDEN_UPDATE&) = delete;
    GOLDEN_UPDATE& operator=(const GOLDEN_UPDATE&) = delete;

private:
    static constexpr char NAME[] = "PLL_UPDATE_GOLDEN";

    static void set(bool is_set, const char* value)
    {
        if (is_set) {
            setenv(NAME, value, 1);
        } else {
            unsetenv(NAME);
        }
    }

    bool m_was_set;
    std::string m_before;
};

// The macros below run in a function of their own, which sees nothing of the test's variables.
const TEMP_DIR& directory()
{
    static const TEMP_DIR dir;
    return dir;
}

TEST(GoldenFiles, AreComparedByteForByte)
{
    const GOLDEN_UPDATE compare(GOLDEN_UPDATE::WISH::COMPARE);
    const std::string file = directory().file("compared.txt");
    write_file(file, "text\n");
    expect_golden("text\n", file);
    EXPECT_NONFATAL_FAILURE(expect_golden("text", directory().file("compared.txt")), "golden file");
    EXPECT_NONFATAL_FAILURE(expect_golden("text\n ", directory().file("compared.txt")),
                            "golden file");
}

TEST(GoldenFiles, MustBeThere)
{
    const GOLDEN_UPDATE compare(GOLDEN_UPDATE::WISH::COMPARE);
    EXPECT_FATAL_FAILURE(expect_golden("", directory().file("missing.txt")), "does not exist");
}

TEST(GoldenFiles, FailTheRunThatWritesThem)
{
    const GOLDEN_UPDATE write(GOLDEN_UPDATE::WISH::WRITE);
    EXPECT_NONFATAL_FAILURE(expect_golden("new\n", directory().file("written.txt")), "is written");
    EXPECT_EQ("new\n", read_file(directory().file("written.txt")));
}

}  // namespace
