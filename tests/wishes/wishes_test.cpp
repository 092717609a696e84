// Each file of this folder is a list of wishes: the words of a request, the device that it is for
// (a family of the sample database and a part, or nothing), the verdict that starts the answer, the
// exit status, what a person is told and what not. @DATA@ stands for the folder data of the tree.

#include "program.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

typedef nlohmann::json JSON;

std::string words_of_device(const std::string& device)
{
    const std::size_t blank = device.find(' ');
    if (device.empty()) {
        return "";
    }
    return " --database @DATA@/sample --type ENHANCED_PLL --family " + device.substr(0, blank) +
           " --part " + device.substr(blank + 1);
}

void expect_wish(const JSON& wish)
{
    const RUN run = run_pllcalc(wish.at("request").get<std::string>() +
                                words_of_device(wish.at("device").get<std::string>()));
    const std::string told = hide_data_folder(run.m_output);
    EXPECT_EQ(wish.at("exit_status").get<int>(), run.m_status) << run.m_errors;
    EXPECT_EQ("", run.m_errors);
    EXPECT_EQ(0U, told.find(wish.at("verdict").get<std::string>()));
    for (const JSON& text : wish.at("told")) {
        EXPECT_NE(std::string::npos, told.find(text.get<std::string>())) << text << "\n" << told;
    }
    for (const JSON& text : wish.value("untold", JSON::array())) {
        EXPECT_EQ(std::string::npos, told.find(text.get<std::string>())) << text << "\n" << told;
    }
}

std::vector<std::filesystem::path> list_files()
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(PLL_WISHES_DIR)) {
        if (entry.path().extension() == ".json") {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

TEST(Wishes, AreAnsweredAndToldAsTheyShould)
{
    constexpr int LEAST = 105;
    int wishes = 0;
    for (const std::filesystem::path& file : list_files()) {
        std::ifstream stream(file);
        for (const JSON& wish : JSON::parse(stream)) {
            SCOPED_TRACE(file.filename().string() + ": " + wish.at("wish").get<std::string>());
            expect_wish(wish);
            ++wishes;
        }
    }
    EXPECT_LE(LEAST, wishes);
}

}  // namespace
