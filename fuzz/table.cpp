// A table file for a family whose counters the first byte chooses; then its rows are listed.
#include "fuzz.h"
#include "leak.h"
#include "scratch_folder.h"

#include "pll_info.h"
#include "pll_manager.h"

#include <sstream>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static SCRATCH_FOLDER folder;
    if (size == 0) {
        return 0;
    }
    folder.write("t.txt", {reinterpret_cast<const char*>(data) + 1, size - 1});
    {
        PLL_MANAGER manager;
        PLL_FAMILY_INFO* const family = manager.create_family_info("F");
        family->m_basic_infos[0].m_m_counter_max = data[0];
        const std::string path = folder.path() + "t.txt";
        pll_read_bandwidth_settings_table_file(family, PLL_TYPE_ENUM::ENHANCED_PLL, path.c_str());
        PLL_INFO info;
        info.m_basic_info = &family->m_basic_infos[0];
        std::ostringstream stream;
        info.dump_bandwidth_settings_table(stream);
    }
    expect_no_live_blocks();
    return 0;
}
