// Text helpers for NUL-terminated texts, independent of the locale.
//
// Names in a device database are compared with these on every machine alike: the functions of C ask
// the locale of the host, under which "i" and "I" may differ. None of them takes memory.
#pragma once

#include "pll_export.h"

#include <cstddef>

// Characters before the terminating NUL; 0 for a null text.
PLL_API std::size_t gen_strlen(const char* text);

// Copies `source` with its NUL to `destination`, which must have room for it. Returns
// `destination`; nothing is copied when either is null. The two texts may overlap.
PLL_API char* gen_strcpy(char* destination, const char* source);

// Appends `source` to the text in `destination`, which must have room for both. Returns
// `destination`; nothing is appended when either is null.
PLL_API char* gen_strcat(char* destination, const char* source);

// Compares two texts, the letters A to Z taken as a to z whatever the locale: below, equal to or
// above 0 when `a` comes before, equals or comes after `b`. A null text counts as an empty one.
PLL_API int gen_stricmp(const char* a, const char* b);
