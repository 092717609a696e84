// What the command line holds of real devices and their primitives, unread.
#pragma once

#include <optional>
#include <string>

struct PRIMITIVE_WORDS
{
    std::optional<std::string> m_device;     // NAME[:GRADE] of a device sheet
    std::optional<std::string> m_objective;  // sum or worst
    bool m_no_fraction = false;
    std::optional<std::string> m_as;  // of export, as are those up to the body
    std::optional<std::string> m_module;
    std::optional<std::string> m_template;
    bool m_with_body = false;
    std::optional<std::string> m_file;   // of verify
    std::optional<std::string> m_input;  // of verify: where the file gives none
};
