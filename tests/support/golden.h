// Comparison of a text with a golden file. They lie in tests/golden/, those of the program in
// tests/cli/.
#pragma once

#include <string>

// Fails the running test unless `actual` equals the golden file `file_name`, byte for byte. With
// the environment variable PLL_UPDATE_GOLDEN set, writes the file instead and fails the test, since
// nothing was compared; look at the difference in git before you believe it.
void expect_golden(const std::string& actual, const std::string& file_name);

// The path of a golden file, or of a folder of them; an absolute path is taken as it is.
std::string golden_path(const std::string& file_name);
