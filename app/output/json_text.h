// Texts of JSON documents that are written piece by piece.
#pragma once

#include <string>
#include <string_view>

// A string with its quotes. Bytes that are no UTF-8 become the replacement character.
std::string json_text(std::string_view text);
