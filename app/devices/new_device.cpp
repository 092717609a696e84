#include "app/devices/new_device.h"

#include "app/devices/database.h"
#include "app/output/input_error.h"
#include "app/words/letter_case.h"
#include "app/words/usage_error.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

// Every number is one to be replaced; together they make a PLL that can be synthesised.
const char* const FAMILY_TEXT = R"(# @NAME@: replace each number by that of the device's data sheet.
#
# Periods are in ps (a highest frequency is a shortest period), bandwidths in Hz, resistances in ohm,
# capacitances in pF, currents in uA, VCO gains in MHz/V. A line that does not apply can be deleted.
family @NAME@

pll ENHANCED_PLL
number_of_output_counters               4       # at most 10
m_counter_high_low_max                  256     # so M is at most 512
m_counter_initial_max                   512     # of the counter start that delays M
m_counter_phase_tap_max                 7       # VCO phase taps 0 to 7, of 45 degrees each
m_counter_phase_tap_resolution          45
n_counter_max                           64      # input divider
vco_post_scale_counter_max              1       # 2 where the VCO can be halved before its taps
output_counter_high_low_max             256     # so an output divides by at most 512
output_counter_initial_max              512
output_counter_phase_tap_max            7
output_counter_phase_tap_resolution     45
output_counter_cascade                  no      # yes: counters can feed one another
time_delay_max                          3000    # delay chains of N, M and the outputs
time_delay_resolution                   250

charge_pump_current_default             50
charge_pump_current                     10 20 40 50 60 80 90 100 150 200
loop_filter_resistor_default            2000
loop_filter_resistor                    1000 2000 4000 8000 12000 16000
loop_filter_capacitor_default           10
loop_filter_capacitor                   5 10 15 20
loop_filter_fixed_capacitor             650
bandwidth_low                           1.5e5
bandwidth_medium                        8.0e5
bandwidth_high                          2.0e6
bandwidth_relative_tolerance            0.1
bandwidth_settings_table_file           unused  # or the table of characterised settings
bandwidth_pfd_min_frequency_multiplier  8
phase_absolute_tolerance                1.0

ss_counter_max                          32768   # spread spectrum
ss_bandwidth                            1.4e5
ss_down_spread_min                      0.002   # parts of the frequency
ss_down_spread_max                      0.006
ss_charge_pump_current                  90

# ---- Parts: the limits that depend on part and speed grade

speed_grade 1
part        @NAME@-1
vco_min             1000                        # 1000 MHz
vco_max             3333                        # 300 MHz
vco_center          1666
vco_gain            1000
ss_vco_max          1667
pfd_min             2500                        # 400 MHz
pfd_max             200000                      # 5 MHz
input_min           1250                        # 800 MHz
input_max           200000                      # 5 MHz
output_min          1250                        # 800 MHz
output_max          100000000                   # 10 kHz
external_output_min 2500                        # 400 MHz, at a pin
external_output_max 100000000                   # 10 kHz
)";

const char* const PATH_TEXT =
    R"(# The path file of the database: one device family a line, with the folder of its files and the name
# of its family file.
#
# family    folder      family file
@NAME@ . @FILE@
)";

std::string replace_all(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

bool is_name_character(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
           c == '-';
}

void require_name(const std::string& name)
{
    constexpr std::size_t LONGEST = 64;
    const bool is_legal = !name.empty() && name.size() <= LONGEST &&
                          std::all_of(name.begin(), name.end(), is_name_character) &&
                          name.front() != '-';
    if (!is_legal) {
        throw USAGE_ERROR("NAME", "'" + name +
                                      "' is not legal; expected 1 to 64 letters, digits, '_' and "
                                      "'-', such as pllcalc new-device Mallow");
    }
}

void write_file(const std::filesystem::path& file, const std::string& text)
{
    std::ofstream stream(file);
    stream << text;
    stream.close();
    if (!stream) {
        throw INPUT_ERROR("cannot write " + file.string() + ": " + std::strerror(errno));
    }
}

}  // namespace

std::string write_new_device(const NEW_DEVICE_WORDS& words)
{
    require_name(words.m_name);
    const std::string lower = lower_case(words.m_name);
    const std::filesystem::path directory = words.m_directory.value_or(lower);
    const std::filesystem::path path_file = directory / PATH_FILE;
    const std::string family_file = lower + "_pll.txt";
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (error) {
        throw INPUT_ERROR("cannot make the directory " + directory.string() + ": " +
                          error.message());
    }
    for (const std::filesystem::path& file : {path_file, directory / family_file}) {
        if (std::filesystem::exists(file, error)) {
            throw USAGE_ERROR("--directory", file.string() + " is there already");
        }
    }
    write_file(directory / family_file, replace_all(FAMILY_TEXT, "@NAME@", words.m_name));
    write_file(path_file,
               replace_all(replace_all(PATH_TEXT, "@NAME@", words.m_name), "@FILE@", family_file));
    const std::string place = directory.string();
    return "Written: " + (directory / family_file).string() + "\n         " + path_file.string() +
           "\nReplace its numbers by those of the device, then:\n  pllcalc lint " + place +
           "\n  pllcalc synth --database " + place + " --family " + words.m_name +
           " --in 100MHz --out 50MHz\n";
}
