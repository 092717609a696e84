// A family file with two files that it may include or take for tables; then every part is asked
// for, and a clock.
#include "fuzz.h"
#include "leak.h"
#include "scratch_folder.h"

#include "pll.h"
#include "pll_manager.h"
#include "pll_prop.h"

namespace {

constexpr int FIN_PERIOD = 37037;  // ps
constexpr int MOST_PARTS = 4;      // that are asked for
constexpr int LARGEST_COUNT = 600;

// Counters of a million and more are legal, but a search through them is not what this is about.
bool is_quick(const PLL& pll)
{
    return pll.m_m.m_max_count <= LARGEST_COUNT && pll.m_n.m_max_count <= LARGEST_COUNT;
}

void ask_for(PLL_MANAGER* manager, const PLL_FAMILY_INFO& family, const PLL_PART_INFO& part)
{
    PLL_QUERY query;
    query.m_family = family.m_name;
    query.m_type = part.m_type;
    query.m_part = part.m_name;
    query.m_speed_grade = part.m_speed_grade;
    PLL pll(1, PLL_MAX_TAPS);
    if (!manager->init_pll(&pll, query) || !is_quick(pll)) {
        return;
    }
    PLL_PROP request(1);
    request.m_fin_period = FIN_PERIOD;
    request.m_taps[0].m_mult = 3;
    request.m_taps[0].m_div = 2;
    pll.synthesize(request);
    request.set_properties_from_internals(pll);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static SCRATCH_FOLDER folder;
    const auto pieces = split_input({reinterpret_cast<const char*>(data), size}, 3);
    folder.write("f.txt", pieces[0]);
    folder.write("a.txt", pieces[1]);
    folder.write("b.txt", pieces[2]);
    {
        PLL_MANAGER manager;
        manager.read_family_info_from_file(folder.path().c_str(), "f.txt");
        for (int f = 0; f < manager.get_number_of_families(); ++f) {
            const PLL_FAMILY_INFO& family = *manager.m_families[f];
            for (int p = 0; p < family.m_number_of_parts && p < MOST_PARTS; ++p) {
                ask_for(&manager, family, *family.m_parts[p]);
            }
        }
    }
    expect_no_live_blocks();
    return 0;
}
