#include "app/output/input_file.h"

#include "pll_observer.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

std::optional<std::string> why_unreadable(const std::string& file)
{
    std::error_code error;
    const bool is_file = std::filesystem::is_regular_file(file, error);
    if (error) {
        return error.message();
    }
    if (!is_file) {
        return describe_system_error(PLL_NOT_A_REGULAR_FILE);
    }
    int descriptor = -1;
    do {
        descriptor = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    } while (descriptor < 0 && errno == EINTR);
    if (descriptor < 0) {
        return describe_system_error(errno);
    }
    close(descriptor);
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
