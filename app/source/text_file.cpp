#include "app/source/text_file.h"

#include "app/output/input_file.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

namespace {

constexpr std::size_t BLOCK = 65536;

std::optional<std::string> read_stream(std::FILE* stream, std::string* reason)
{
    std::string text;
    std::size_t count = 0;
    do {
        const std::size_t size = text.size();
        text.resize(size + BLOCK);
        count = std::fread(text.data() + size, 1, BLOCK, stream);
        text.resize(size + count);
    } while (count == BLOCK);
    if (std::ferror(stream) != 0) {
        *reason = std::strerror(errno);
        return std::nullopt;
    }
    return text;
}

}  // namespace

std::optional<std::string> read_text(const std::string& file, std::string* reason)
{
    if (file == STANDARD_INPUT) {
        return read_stream(stdin, reason);
    }
    if (const std::optional<std::string> problem = why_unreadable(file)) {
        *reason = *problem;
        return std::nullopt;
    }
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::fopen(file.c_str(), "rb"),
                                                                 std::fclose);
    if (stream == nullptr) {
        *reason = std::strerror(errno);
        return std::nullopt;
    }
    return read_stream(stream.get(), reason);
}
