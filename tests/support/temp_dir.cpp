#include "temp_dir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

TEMP_DIR::TEMP_DIR()
{
    constexpr std::size_t LETTERS_TO_CHOOSE = 6;
    std::string path = (std::filesystem::temp_directory_path() / "pll_test_").string();
    path.append(LETTERS_TO_CHOOSE, 'X');
    if (mkdtemp(path.data()) == nullptr) {
        throw std::runtime_error("no temporary directory " + path);
    }
    m_path = path;
}

TEMP_DIR::~TEMP_DIR()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

TEMP_WORKING_DIR::TEMP_WORKING_DIR() : m_previous(std::filesystem::current_path().string())
{
    std::filesystem::current_path(m_dir.path());
}

TEMP_WORKING_DIR::~TEMP_WORKING_DIR()
{
    std::error_code ignored;
    std::filesystem::current_path(m_previous, ignored);
}

std::string read_file(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void write_file(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    EXPECT_TRUE(file.good()) << "cannot write " << path;
}

bool file_exists(const std::string& path)
{
    return std::filesystem::exists(path);
}
