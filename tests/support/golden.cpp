#include "golden.h"

#include "temp_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

std::string golden_path(const std::string& file_name)
{
    return std::filesystem::path(PLL_GOLDEN_DIR) / file_name;
}

void expect_golden(const std::string& actual, const std::string& file_name)
{
    const std::string path = golden_path(file_name);
    if (std::getenv("PLL_UPDATE_GOLDEN") != nullptr) {
        write_file(path, actual);
        ADD_FAILURE() << path << " is written; without PLL_UPDATE_GOLDEN it is compared";
        return;
    }
    ASSERT_TRUE(std::filesystem::exists(path)) << path << " does not exist";
    EXPECT_EQ(read_file(path), actual) << "golden file " << file_name;
}
