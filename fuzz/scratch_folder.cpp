#include "scratch_folder.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

[[noreturn]] void give_up(const char* what)
{
    std::perror(what);
    std::abort();
}

}  // namespace

// In memory where the system has such a folder.
SCRATCH_FOLDER::SCRATCH_FOLDER()
{
    const std::string temporary = std::filesystem::temp_directory_path().string();
    if (!make_folder("/dev/shm") && !make_folder(temporary)) {
        give_up("mkdtemp");
    }
    m_path += '/';
}

bool SCRATCH_FOLDER::make_folder(const std::string& parent)
{
    constexpr std::size_t LETTERS_TO_CHOOSE = 6;
    m_path = parent + "/pll_fuzz_";
    m_path.append(LETTERS_TO_CHOOSE, 'X');
    return mkdtemp(m_path.data()) != nullptr;
}

SCRATCH_FOLDER::~SCRATCH_FOLDER()
{
    for (const std::string& name : m_files) {
        unlink((m_path + name).c_str());
    }
    rmdir(m_path.c_str());
}

void SCRATCH_FOLDER::write(const char* name, std::string_view text)
{
    const std::string path = m_path + name;
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, S_IRUSR | S_IWUSR);
    if (file < 0 || ::write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        give_up(path.c_str());
    }
    close(file);
    if (std::find(m_files.begin(), m_files.end(), name) == m_files.end()) {
        m_files.emplace_back(name);
    }
}

std::vector<std::string_view> split_input(std::string_view input, std::size_t count)
{
    constexpr std::string_view MARK = "\n%%\n";
    std::vector<std::string_view> pieces;
    while (pieces.size() + 1 < count) {
        const std::size_t mark = input.find(MARK);
        pieces.push_back(input.substr(0, mark));
        input = mark == std::string_view::npos ? "" : input.substr(mark + MARK.size());
    }
    pieces.push_back(input);
    return pieces;
}
