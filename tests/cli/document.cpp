#include "document.h"

std::string block_from(const std::vector<std::string>& lines, std::size_t first)
{
    std::string text;
    std::string empty_lines;
    for (std::size_t i = first; i < lines.size(); ++i) {
        if (lines[i].empty()) {
            empty_lines += "\n";
        } else if (lines[i].rfind(DOCUMENT_INDENT, 0) == 0) {
            text += empty_lines + lines[i].substr(DOCUMENT_INDENT.size()) + "\n";
            empty_lines.clear();
        } else {
            break;
        }
    }
    return text;
}
