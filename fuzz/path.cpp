// A path file beside a family file that can be read; then every family is loaded.
#include "fuzz.h"
#include "leak.h"
#include "scratch_folder.h"

#include "pll_manager.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int MOST_FAMILIES = 20;
    static SCRATCH_FOLDER folder;
    const auto pieces = split_input({reinterpret_cast<const char*>(data), size}, 2);
    folder.write("ddb_pll_path.txt", pieces[0]);
    folder.write("f.txt", pieces[1]);
    {
        PLL_MANAGER manager;
        manager.read(folder.path().c_str());
        for (int f = 0; f < manager.get_number_of_families() && f < MOST_FAMILIES; ++f) {
            manager.get_number_of_speed_grades(manager.get_family(f));
            manager.get_listed_speed_grade(manager.get_family(f), 0);
        }
    }
    expect_no_live_blocks();
    return 0;
}
