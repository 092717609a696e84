#include "app/output/input_file.h"

#include "pll_observer.h"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

std::optional<std::string> why_unreadable(const std::string& file)
{
    std::error_code error;
    const bool is_file = std::filesystem::is_regular_file(file, error);
    if (error) {
        return error.message();
    }
    if (!is_file) {
        return "not a regular file";
    }
    errno = 0;
    if (!std::ifstream(file)) {
        return std::strerror(errno);
    }
    return std::nullopt;
}

std::string tidy_path(const std::string& path)
{
    return std::filesystem::path(path).lexically_normal().string();
}

std::string describe_system_error(int error)
{
    return error == PLL_NOT_A_REGULAR_FILE ? "not a regular file" : std::strerror(error);
}
