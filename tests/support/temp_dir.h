// Files and directories for tests.
#pragma once

#include <string>

// A new empty directory; it and all in it are removed with the object.
class TEMP_DIR
{
public:
    TEMP_DIR();
    ~TEMP_DIR();
    TEMP_DIR(const TEMP_DIR&) = delete;
    TEMP_DIR& operator=(const TEMP_DIR&) = delete;

    const std::string& path() const { return m_path; }
    std::string file(const std::string& name) const { return m_path + "/" + name; }

private:
    std::string m_path;
};

// Likewise, and the current directory while the object lives: for the switch files and traces of
// debugging.
class TEMP_WORKING_DIR
{
public:
    TEMP_WORKING_DIR();
    ~TEMP_WORKING_DIR();
    TEMP_WORKING_DIR(const TEMP_WORKING_DIR&) = delete;
    TEMP_WORKING_DIR& operator=(const TEMP_WORKING_DIR&) = delete;

    const std::string& path() const { return m_dir.path(); }

private:
    TEMP_DIR m_dir;
    std::string m_previous;
};

// The whole file; empty when there is none.
std::string read_file(const std::string& path);

// Replaces the file. Fails the running test when that cannot be done.
void write_file(const std::string& path, const std::string& text);

bool file_exists(const std::string& path);
