// Whole files as texts.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

// The name that stands for the standard input.
inline constexpr char STANDARD_INPUT[] = "-";

// The text of a regular file, or of the standard input; none when it cannot be read, with the
// system's reason.
std::optional<std::string> read_text(const std::string& file, std::string* reason);

// Keeps the texts of small files that are read again and again.
class TEXT_CACHE
{
public:
    // Null when the file cannot be read; `reason` then receives the system's.
    std::shared_ptr<const std::string> read(const std::string& file, std::string* reason);

private:
    std::unordered_map<std::string, std::shared_ptr<const std::string>> m_texts;
    std::size_t m_size = 0;
};
