// A folder whose files are the pieces of an input.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Made once for each process, removed at its end.
class SCRATCH_FOLDER
{
public:
    SCRATCH_FOLDER();
    ~SCRATCH_FOLDER();
    SCRATCH_FOLDER(const SCRATCH_FOLDER&) = delete;
    SCRATCH_FOLDER& operator=(const SCRATCH_FOLDER&) = delete;

    // With a slash at its end.
    const std::string& path() const { return m_path; }

    // Replaces the file. Ends the process when that cannot be done.
    void write(const char* name, std::string_view text);

private:
    // Makes a folder of a new name in `parent`. False where that cannot be.
    bool make_folder(const std::string& parent);

    std::string m_path;
    std::vector<std::string> m_files;
};

// The pieces of an input between lines that say "%%"; always `count` of them.
std::vector<std::string_view> split_input(std::string_view input, std::size_t count);
