// Reading family files of growing size.
#include "pll_manager.h"
#include "sections.h"
#include "stopwatch.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace {

constexpr double LONGEST_MEGABYTE_MS = 15.0;
constexpr double MS_PER_S = 1e3;
constexpr double BYTES_PER_MEGABYTE = 1e6;
constexpr double STEEPEST = 2.0;  // time a byte at ten times the size; 1: linear
constexpr int GRADES = 8;
constexpr int MANY_PARTS = 10000;
const char FAMILY_FILE[] = "family.txt";
const char TYPE_HEAD[] = "family \"Bench Family\"\npll ENHANCED_PLL\nm_counter_max 512\n";

std::string part_text(int index)
{
    return "part \"BENCH-" + std::to_string(index) +
           "\"\n    vco_min 1000  # ps\n    vco_max 3334\n    vco_center 1666\n    vco_gain 1880\n"
           "    pfd_min 1500\n    pfd_max 333333\n    input_min 1000\n    input_max 1000000\n"
           "    output_min 1000\n    output_max 1000000\n";
}

// Parts of eight speed grades, as many as wanted.
std::string parts_text(int parts)
{
    std::string text = TYPE_HEAD;
    for (int i = 0; i < parts; ++i) {
        if (i % ((parts + GRADES - 1) / GRADES) == 0) {
            text += "speed_grade \"" + std::to_string(i) + "\"\n";
        }
        text += part_text(i);
    }
    return text;
}

std::string text_of_size(double bytes)
{
    return parts_text(int(bytes / double(part_text(1000).size())) + 1);
}

// A directory that goes with the object.
class SCRATCH_DIRECTORY
{
public:
    SCRATCH_DIRECTORY()
        : m_path(std::filesystem::temp_directory_path() / ("pll_bench." + std::to_string(getpid())))
    {
        std::filesystem::create_directory(m_path);
    }
    ~SCRATCH_DIRECTORY()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    SCRATCH_DIRECTORY(const SCRATCH_DIRECTORY&) = delete;
    SCRATCH_DIRECTORY& operator=(const SCRATCH_DIRECTORY&) = delete;

    void write(const std::string& text) const { std::ofstream(m_path / FAMILY_FILE) << text; }
    std::string path() const { return m_path.string(); }

private:
    std::filesystem::path m_path;
};

// Time of reading `text`, in ms; negative when the reader failed.
double read_ms(const SCRATCH_DIRECTORY& directory, const std::string& text)
{
    directory.write(text);
    bool is_read = true;
    const double seconds = best_seconds([&] {
        PLL_MANAGER manager;
        is_read =
            is_read && manager.read_family_info_from_file(directory.path().c_str(), FAMILY_FILE);
    });
    return is_read ? seconds * MS_PER_S : -1.0;
}

std::string size_note(const std::string& text)
{
    char note[64];
    std::snprintf(note, sizeof(note), "%.2f MB", double(text.size()) / BYTES_PER_MEGABYTE);
    return note;
}

void measure_parts(const SCRATCH_DIRECTORY& directory, TARGET_TABLE* table)
{
    const std::string few = parts_text(MANY_PARTS / 10);
    const std::string many = parts_text(MANY_PARTS);
    const double few_ms = read_ms(directory, few);
    const double many_ms = read_ms(directory, many);
    table->add_figure("family with 10,000 parts", many_ms, "ms", size_note(many));
    const double steepness = many_ms / few_ms * double(few.size()) / double(many.size());
    table->add_most("family with 10,000 parts, time a byte to 1,000", steepness, STEEPEST, "times");
    if (few_ms < 0.0 || many_ms < 0.0) {
        table->add_error("family with 10,000 parts", "cannot be read");
    }
}

}  // namespace

void measure_files(TARGET_TABLE* table)
{
    const SCRATCH_DIRECTORY directory;
    double last_rate = 0.0;  // ms a byte
    for (const double megabytes : {0.1, 1.0, 10.0}) {
        const std::string text = text_of_size(megabytes * BYTES_PER_MEGABYTE);
        const double ms = read_ms(directory, text);
        char work[64];
        std::snprintf(work, sizeof(work), "family file of %.1f MB", megabytes);
        if (ms < 0.0) {
            table->add_error(work, "cannot be read");
            return;
        }
        if (megabytes == 1.0) {
            table->add_most(work, ms, LONGEST_MEGABYTE_MS, "ms", size_note(text));
        } else {
            table->add_figure(work, ms, "ms", size_note(text));
        }
        const double rate = ms / double(text.size());
        if (last_rate > 0.0) {
            table->add_most(std::string(work) + ", time a byte to a tenth of it", rate / last_rate,
                            STEEPEST, "times");
        }
        last_rate = rate;
    }
    measure_parts(directory, table);
}
