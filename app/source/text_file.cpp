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
    char block[BLOCK];
    std::size_t count = 0;
    do {
        count = std::fread(block, 1, BLOCK, stream);
        text.append(block, count);
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

std::shared_ptr<const std::string> TEXT_CACHE::read(const std::string& file, std::string* reason)
{
    constexpr std::size_t MOST_KEPT = 4194304;
    const auto known = m_texts.find(file);
    if (known != m_texts.end()) {
        return known->second;
    }
    std::optional<std::string> content = read_text(file, reason);
    if (!content) {
        return nullptr;
    }
    const auto text = std::make_shared<const std::string>(std::move(*content));
    if (m_size + text->size() <= MOST_KEPT) {
        m_size += text->size();
        m_texts.emplace(file, text);
    }
    return text;
}
