#include "app/command/command_line.h"

#include "app/lint/options.h"
#include "app/words/suggestion.h"
#include "app/words/usage_error.h"

#include <CLI/CLI.hpp>

#include <string_view>
#include <vector>

namespace {

const char* const PROGRAM_EXAMPLES =
    "Examples:\n"
    "  pllcalc -i 27MHz -o 148.5MHz -o 74.25MHz,phase=90,duty=40\n"
    "  pllcalc -i 27 -o pix=148.5 -o serial=742.5@90\n"
    "  pllcalc synth --in 100MHz --out ratio=3/2 --spread 0.5% --spread-rate 30kHz\n"
    "  pllcalc ratios --in 100MHz --format csv\n"
    "  pllcalc help synth\n"
    "\n"
    "pllcalc computes the settings of a phase-locked loop from the clocks that are wanted.\n"
    "\n"
    "Usage: pllcalc [COMMAND] [OPTIONS]     (without a command: synth)\n"
    "\n"
    "Commands:\n";

const char* const PROGRAM_OPTIONS =
    "\n"
    "Options:\n"
    "  -h,--help      this text, or that of a command\n"
    "  -V,--version   the version\n"
    "\n"
    "Exit status: 0 met, 1 not met, 2 bad usage, 4 input or output failed, 5 internal error;\n"
    "of lint: 0 clean, 1 warnings with -Werror, 3 errors, 4 unreadable.\n";

const char* const REQUEST_HELP =
    "\nEach --out is one output, numbered from 1: a frequency or ratio=A/B to the input, with a\n"
    "name in front if wanted (pix=148.5MHz), then any of\n"
    "  phase=90         degrees of the output (-360 to 360: a period), or a time such as 1.5ns;\n"
    "                   200MHz@90 is short for 200MHz,phase=90\n"
    "  to=1             the phase counts from output 1, or from one of that name\n"
    "  duty=33.3        percent, above 0 and below 100\n"
    "  delay=-250       ps, whole, -3000 to 3000\n"
    "  even             a counter without the half period\n"
    "  even-count       even high and low counts\n"
    "  pin              it leaves the device, so its limits of external outputs hold\n"
    "  tolerance=1%     how far its frequency may be off, up to 10%; likewise\n"
    "                   phase-tolerance=, duty-tolerance=, delay-tolerance=\n"
    "Frequencies are numbers with Hz, kHz, MHz (or nothing) or GHz, or a period with ps, ns or "
    "us.\n"
    "Numbers are decimals or fractions: 148.5MHz, 1001/37MHz, 148.5/1.001MHz.\n"
    "\n"
    "MET says that every wish and every limit is kept, compared as exact fractions. Tolerances, "
    "if\n"
    "none is given: frequency 100 ppm, phase 1 degree of the output, duty cycle 1 point of "
    "percent,\n"
    "bandwidth, spread and its rate 10 %, delay and all else exact.\n";

const char* const LIMITS_HELP =
    "\nA range by hand replaces the limit in force, wider too: 600-1200MHz, 600MHz- or -1200MHz.\n";

// How much of a device database a command asks for.
enum class DEVICE_OPTIONS
{
    NONE,
    FAMILY,  // the database, or a family of it
    DEVICE
};

struct COMMAND_ENTRY
{
    const char* m_name;
    COMMAND m_command;
    const char* m_summary;
    const char* m_examples;
    const char* m_description;
    bool m_takes_request;
    DEVICE_OPTIONS m_device_options;
    bool m_takes_format;
};

const COMMAND_ENTRY COMMANDS[] = {
    {"synth", COMMAND::SYNTH, "the settings for a request, and what they achieve",
     "  pllcalc synth --in 27MHz --out 148.5MHz --out 74.25MHz,phase=90,duty=40 --out 49.5MHz\n"
     "  pllcalc synth --in 1001/37MHz --out ratio=11/2 --exact\n"
     "  pllcalc synth --in 10ns --out 50MHz,delay=300 --bandwidth 1.2MHz --feedback 1\n"
     "  pllcalc synth --in 27MHz --out pix=148.5MHz --format json\n",
     "Computes the settings for a request and shows what they achieve.", true,
     DEVICE_OPTIONS::DEVICE, false},
    {"explain", COMMAND::EXPLAIN, "why a request is not met, and what can be had instead",
     "  pllcalc explain --in 25MHz --out 1kHz\n"
     "  pllcalc explain --in 27MHz --out 148.5MHz --out 24.576MHz\n",
     "Says why a request is not met: what ended, the smallest conflict, and the nearest requests "
     "that\nare met, each with its command. Exit status as of synth.",
     true, DEVICE_OPTIONS::DEVICE, false},
    {"alternatives", COMMAND::ALTERNATIVES, "the best settings for a request, by cost or otherwise",
     "  pllcalc alternatives --in 27MHz --out 148.5MHz --top 5\n"
     "  pllcalc alternatives --in 27MHz --out 148.5MHz --by vco-lowest --format json\n",
     "Lists the best settings for a request with distinct VCO ratios, and why each comes after "
     "the\n"
     "first. Exit status 1 when the request is not met.",
     true, DEVICE_OPTIONS::DEVICE, true},
    {"crystal", COMMAND::CRYSTAL, "the input clocks that meet a request",
     "  pllcalc crystal --out 148.5MHz --out 74.25MHz\n"
     "  pllcalc crystal --out 125MHz --inputs 24MHz,25MHz,27MHz\n"
     "  pllcalc crystal --out 125MHz --inputs 10-40MHz --step 0.5MHz --top 3\n"
     "  pllcalc crystal --out 148.5MHz --out 24.576MHz --plls 2 --format json\n",
     "Ranks input clocks, those that crystals are sold in or those of --inputs: which meet the\n"
     "outputs, by the worst error, then by cost. Exit status 1 when none does.",
     true, DEVICE_OPTIONS::DEVICE, true},
    {"steps", COMMAND::STEPS,
     "the legal phase steps and duty cycles around the answer to a request",
     "  pllcalc steps --in 100MHz --out 50MHz,phase=45 --out 25MHz,duty=30\n",
     "Lists the legal phase steps and duty cycles around the answer to a request.", true,
     DEVICE_OPTIONS::DEVICE, false},
    {"dump", COMMAND::DUMP, "the library's own reports of a request and its answer",
     "  pllcalc dump --in 100MHz --out 50MHz\n"
     "  pllcalc dump --compact --in 100MHz --out 50MHz\n",
     "Prints the library's own reports of a request and its answer. Their phases are in degrees of "
     "the\ninput clock.",
     true, DEVICE_OPTIONS::DEVICE, false},
    {"ratios", COMMAND::RATIOS, "all VCO ratios that can be realised from an input clock",
     "  pllcalc ratios --in 100MHz\n"
     "  pllcalc ratios --in 37.037ns --format csv\n",
     "Lists all VCO ratios that can be realised from an input clock, by ascending ratio.", false,
     DEVICE_OPTIONS::DEVICE, true},
    {"devices", COMMAND::DEVICES, "the families, parts and speed grades of a device database",
     "  pllcalc devices --database data/sample\n"
     "  pllcalc devices --database data/sample --family Sorrel --format csv\n",
     "Lists the parts of a device database with their VCO, PFD and input ranges.", false,
     DEVICE_OPTIONS::FAMILY, true},
    {"device", COMMAND::DEVICE, "all that a device database knows of one PLL",
     "  pllcalc device --database data/sample --family Lovage --part LV100-2\n"
     "  pllcalc device --database data/sample --family Sorrel --type ENHANCED_PLL --part SR20-7 "
     "--migrate Chervil:CH30-6\n",
     "Shows all that a device database knows of one PLL, limits combined.", false,
     DEVICE_OPTIONS::DEVICE, true},
    {"table", COMMAND::TABLE, "the bandwidth settings table of a PLL, and the row for a request",
     "  pllcalc table --database data/sample --family Tarragon --m 24\n"
     "  pllcalc table --database data/sample --family Chervil --in 27MHz --out 148.5MHz\n",
     "Shows the bandwidth settings table of a PLL and checks it (exit status 1 when it finds "
     "fault);\n"
     "with a request, the rows that it may take, what each costs, and which is taken.",
     true, DEVICE_OPTIONS::DEVICE, true},
    {"limits", COMMAND::LIMITS, "the limits in force, and where each comes from",
     "  pllcalc limits\n"
     "  pllcalc limits --vco 600-1200MHz --m 1-128\n"
     "  pllcalc limits --database data/sample --family Chervil --part CH30-6 --format csv\n",
     "Lists the limits in force: built in, of a device with file and line, or by hand.", false,
     DEVICE_OPTIONS::DEVICE, true},
    {"new-device", COMMAND::NEW_DEVICE, "a device family to start from, as files with comments",
     "  pllcalc new-device Mallow --directory mallow\n",
     "Writes a family file with a comment for each value, and the path file of a database beside "
     "it.",
     false, DEVICE_OPTIONS::NONE, false},
    {"errors", COMMAND::ERRORS, "the error values and their texts", "  pllcalc errors\n",
     "Lists the error values and their texts.", false, DEVICE_OPTIONS::NONE, false},
    {"lint", COMMAND::LINT, "what is wrong with the files of a device database", LINT_EXAMPLES,
     "Looks for mistakes in the files of a device database.", false, DEVICE_OPTIONS::NONE, false},
    {"keywords", COMMAND::KEYWORDS, "the keywords of family files, or all about one",
     "  pllcalc keywords\n"
     "  pllcalc keywords pfd_min\n",
     "Lists the keywords of family files: operand, unit, range and default.", false,
     DEVICE_OPTIONS::NONE, true},
    {"diff", COMMAND::DIFF, "what two device databases say differently",
     "  pllcalc diff data/sample my_database\n",
     "Compares two databases by value, part and table row (exit status 1 when they differ).", false,
     DEVICE_OPTIONS::NONE, true},
    {"verify", COMMAND::VERIFY, "whether an answer in JSON or the PLLs of a Verilog file are right",
     "  pllcalc synth --in 27MHz --out 148.5MHz --format json | pllcalc verify -\n"
     "  pllcalc verify top.v\n"
     "  pllcalc verify --input 25MHz --device ecp5 pll.v --format json\n",
     "Checks an answer that synth --format json wrote: the rules of the counters, every wish, "
     "every\n"
     "limit and every figure that it states. Or recomputes the PLL primitives of a Verilog file "
     "and\n"
     "holds them against the limits of their devices. Exit status: 0 clean, 1 something is "
     "broken,\n"
     "untrue or illegal, 2 no setting.",
     false, DEVICE_OPTIONS::DEVICE, true},
    {"export", COMMAND::EXPORT, "the settings as an instance of the device's primitive",
     "  pllcalc export --as verilog --device ecp5 --in 25MHz --out pix=125MHz --out 250MHz\n"
     "  pllcalc export --as vhdl --device gw1nr-9c --in 27MHz --out 126MHz --module clocks\n"
     "  pllcalc export --as lpf --device ecp5 --in 25MHz --out 125MHz\n",
     "Writes the settings as a module with an instance of the device's primitive, or the "
     "constraint\n"
     "of its input clock; without --device, an instance of a generic PLL.",
     true, DEVICE_OPTIONS::NONE, false},
};

std::vector<std::string_view> list_commands()
{
    std::vector<std::string_view> names;
    for (const COMMAND_ENTRY& entry : COMMANDS) {
        names.emplace_back(entry.m_name);
    }
    return names;
}

std::string join_commands()
{
    std::string text;
    for (const std::string_view name : list_commands()) {
        text += (text.empty() ? "" : ", ") + std::string(name);
    }
    return text;
}

const COMMAND_ENTRY& find_command(std::string_view name)
{
    for (const COMMAND_ENTRY& entry : COMMANDS) {
        if (name == entry.m_name) {
            return entry;
        }
    }
    throw USAGE_ERROR(name.empty() ? "''" : std::string(name), "unknown command; legal are " +
                                                                   join_commands() +
                                                                   suggest(name, list_commands()));
}

void add_text(CLI::App* app, const char* name, const char* unit, const char* description,
              std::optional<std::string>* value)
{
    app->add_option_function<std::string>(
           name, [value](const std::string& text) { *value = text; }, description)
        ->option_text(unit);
}

void add_tolerance_options(CLI::App* app, REQUEST_WORDS* words)
{
    add_text(app, "--tolerance", "PART", "of frequencies, such as 50ppm or 1% (default 100ppm)",
             &words->m_tolerance);
    add_text(app, "--phase-tolerance", "DEG", "in degrees of the output (default 1)",
             &words->m_phase_tolerance);
    add_text(app, "--duty-tolerance", "POINTS", "in points of percent (default 1)",
             &words->m_duty_tolerance);
    add_text(app, "--delay-tolerance", "PS", "of delays (default 0)", &words->m_delay_tolerance);
    add_text(app, "--bandwidth-tolerance", "PART", "of the bandwidth (default 10%)",
             &words->m_bandwidth_tolerance);
    add_text(app, "--spread-tolerance", "PART", "of the spread and of its rate (default 10%)",
             &words->m_spread_tolerance);
    app->add_flag("--exact", words->m_exact, "no tolerance for any wish")->disable_flag_override();
    add_text(app, "--margin", "PERCENT", "warn of a limit that is nearer (default 5)",
             &words->m_margin);
    add_text(app, "--phase-margin", "DEG", "warn of a loop with less (default 45)",
             &words->m_phase_margin);
}

void add_request_options(CLI::App* app, REQUEST_WORDS* words)
{
    add_text(app, "-i,--in", "FREQ", "input clock", &words->m_in);
    add_text(app, "--in2", "FREQ", "second input clock", &words->m_in2);
    app->add_option("-o,--out", words->m_outs, "an output; once for each")
        ->option_text("FREQ|ratio=A/B,...")
        ->allow_extra_args(false);
    add_text(app, "--bandwidth", "WHICH", "high, medium, low, auto, or a frequency",
             &words->m_bandwidth);
    add_text(app, "--spread", "PERCENT", "down spread, above 0, such as 0.5%", &words->m_spread);
    add_text(app, "--spread-rate", "FREQ", "its modulation frequency (default 50kHz)",
             &words->m_spread_rate);
    add_text(app, "--feedback", "OUTPUT", "the output that is the feedback (default: counter M)",
             &words->m_feedback);
    add_text(app, "--vco-ratio", "A/B", "VCO to input, to be met too", &words->m_vco_ratio);
    app->add_flag("--reconfig", words->m_reconfig, "the PLL is reconfigured at run time")
        ->disable_flag_override();
    add_text(app, "--max-outputs", "COUNT", "outputs of the device (default: its own, built in 10)",
             &words->m_max_outputs);
    add_tolerance_options(app, words);
}

void add_limit_options(CLI::App* app, LIMIT_WORDS* words, bool has_m)
{
    add_text(app, "--vco", "RANGE", "legal VCO, before its post-scale, such as 600-1200MHz",
             &words->m_vco);
    add_text(app, "--pfd", "RANGE", "legal PFD", &words->m_pfd);
    add_text(app, "--input-range", "RANGE", "legal inputs", &words->m_input_range);
    add_text(app, "--output-range", "RANGE", "legal outputs", &words->m_output_range);
    if (has_m) {
        add_text(app, "--m", "RANGE", "legal counts of M, such as 1-128", &words->m_m);
    }
    add_text(app, "--n", "RANGE", "legal counts of N", &words->m_n);
    add_text(app, "--k", "RANGE", "legal counts of the outputs", &words->m_k);
    add_text(app, "--post-scales", "LIST", "legal VCO post-scales, such as 1,2",
             &words->m_post_scales);
    add_text(app, "--taps", "LIST", "legal VCO phase taps, such as 0-7", &words->m_taps);
}

void add_export_options(CLI::App* app, PRIMITIVE_WORDS* words)
{
    add_text(app, "--as", "FORM",
             "verilog (default), systemverilog, vhdl, xdc, lpf, pcf, cst or sdc", &words->m_as);
    add_text(app, "--module", "NAME", "name of the module (default pll_clocks)", &words->m_module);
    add_text(app, "--template", "FILE", "a template of your own", &words->m_template);
    app->add_flag("--body", words->m_with_body, "with an empty body of the primitive")
        ->disable_flag_override();
}

void add_primitive_options(const COMMAND_ENTRY& entry, CLI::App* app, PRIMITIVE_WORDS* words)
{
    if (entry.m_command != COMMAND::SYNTH && entry.m_command != COMMAND::VERIFY &&
        entry.m_command != COMMAND::EXPORT) {
        return;
    }
    add_text(app, "--device", "NAME[:GRADE]", "a real device, see 'pllcalc devices'",
             &words->m_device);
    if (entry.m_command == COMMAND::VERIFY) {
        add_text(app, "FILE", "FILE|-", "Verilog, - for the standard input", &words->m_file);
        add_text(app, "--input", "FREQ", "the input clock, where the file gives none",
                 &words->m_input);
        return;
    }
    if (entry.m_command == COMMAND::EXPORT) {
        add_export_options(app, words);
    }
    add_text(app, "--objective", "WHICH", "with --device: sum (default) or worst error to be least",
             &words->m_objective);
    app->add_flag("--no-fraction", words->m_no_fraction, "with --device: no counts in eighths")
        ->disable_flag_override();
}

void add_device_options(DEVICE_OPTIONS options, CLI::App* app, DEVICE_WORDS* words)
{
    if (options == DEVICE_OPTIONS::NONE) {
        return;
    }
    add_text(app, "--database", "DIR", "device database (default: environment PLL_DATABASE)",
             &words->m_database);
    add_text(app, "--family", "NAME", "device family", &words->m_family);
    app->add_flag("--confined", words->m_is_confined, "no file outside of the database's directory")
        ->disable_flag_override();
    if (options == DEVICE_OPTIONS::FAMILY) {
        return;
    }
    add_text(app, "--type", "NAME", "PLL type", &words->m_type);
    add_text(app, "--part", "NAME", "part (default: all, with the widest limits)", &words->m_part);
    add_text(app, "--speed-grade", "NAME", "speed grade (default: all, likewise)",
             &words->m_speed_grade);
    app->add_option("--migrate", words->m_migrate, "a device to fit too; once for each")
        ->option_text("FAMILY:PART:GRADE")
        ->allow_extra_args(false);
}

void add_format_option(CLI::App* app, LIST_FORM* form)
{
    app->add_option_function<std::string>(
           "--format",
           [form](const std::string& text) {
               if (text != "table" && text != "csv" && text != "json") {
                   throw USAGE_ERROR("--format",
                                     "'" + text + "' is not legal; expected table, csv or json");
               }
               *form = text == "csv"    ? LIST_FORM::CSV
                       : text == "json" ? LIST_FORM::JSON
                                        : LIST_FORM::TABLE;
           },
           "table, csv or json (default table)")
        ->option_text("FORM");
}

bool takes_limits(const COMMAND_ENTRY& entry)
{
    return entry.m_takes_request || entry.m_command == COMMAND::LIMITS ||
           entry.m_command == COMMAND::RATIOS;
}

void add_alternative_options(COMMAND command, CLI::App* app, ALTERNATIVE_WORDS* words)
{
    const bool is_synth = command == COMMAND::SYNTH;
    if (is_synth || command == COMMAND::ALTERNATIVES || command == COMMAND::CRYSTAL) {
        add_text(app, "--top", "COUNT",
                 is_synth ? "the best settings instead, see alternatives"
                          : "how many to list (default 10)",
                 &words->m_top);
    }
    if (command == COMMAND::ALTERNATIVES) {
        add_text(app, "--by", "CRITERION",
                 "library, worst-error, vco-highest, vco-lowest, pfd-highest, fewest-counters, "
                 "phase-step, bandwidth or phase-margin",
                 &words->m_by);
    }
    if (command == COMMAND::CRYSTAL) {
        add_text(app, "--inputs", "LIST|RANGE",
                 "inputs to try: 24MHz,25MHz, or a range with --step", &words->m_crystals);
        add_text(app, "--step", "FREQ", "step of a range", &words->m_step);
    }
    if (is_synth || command == COMMAND::CRYSTAL) {
        add_text(app, "--plls", "COUNT", "PLLs that may share the outputs", &words->m_plls);
    }
}

void add_options(const COMMAND_ENTRY& entry, CLI::App* app, COMMAND_LINE* line)
{
    app->set_help_flag("-h,--help", "this text");
    if (entry.m_takes_request) {
        add_request_options(app, &line->m_request);
    }
    if (takes_limits(entry)) {
        add_limit_options(app, &line->m_limits, entry.m_command != COMMAND::TABLE);
    }
    if (entry.m_command == COMMAND::SYNTH) {
        app->add_flag("--summary", line->m_is_summary, "one line for scripts")
            ->disable_flag_override();
    }
    if (entry.m_command == COMMAND::NEW_DEVICE) {
        app->add_option("NAME", line->m_new_device.m_name, "of the family");
        add_text(app, "--directory", "DIR", "where to write it (default: the name, in lower case)",
                 &line->m_new_device.m_directory);
    }
    if (entry.m_command == COMMAND::DUMP) {
        app->add_flag_callback(
               "--compact", [line] { line->m_dump_form = DUMP_FORM::COMPACT; },
               "tab-separated values")
            ->disable_flag_override();
    }
    if (entry.m_command == COMMAND::LINT) {
        add_lint_options(app, &line->m_lint);
    }
    if (entry.m_command == COMMAND::KEYWORDS || entry.m_command == COMMAND::DIFF) {
        const bool is_diff = entry.m_command == COMMAND::DIFF;
        app->add_option(is_diff ? "DATABASE" : "WORD", line->m_words,
                        is_diff ? "the old and the new directory" : "a keyword")
            ->option_text(is_diff ? "OLD NEW" : "WORD");
    }
    if (entry.m_command == COMMAND::DEVICE) {
        app->add_flag("--origin", line->m_shows_origins,
                      "the file and line that set each value, and what they overwrote")
            ->disable_flag_override();
    }
    if (entry.m_command == COMMAND::RATIOS) {
        add_text(app, "-i,--in", "FREQ", "input clock", &line->m_request.m_in);
    }
    add_alternative_options(entry.m_command, app, &line->m_alternatives);
    add_device_options(entry.m_device_options, app, &line->m_device);
    add_primitive_options(entry, app, &line->m_primitive);
    if (entry.m_command == COMMAND::TABLE) {
        add_text(app, "--m", "M", "only the rows of this effective M", &line->m_effective_m);
        app->add_flag("--coverage", line->m_shows_coverage,
                      "for each M, the bandwidths that its rows give and the PFD they need")
            ->disable_flag_override();
    }
    if (entry.m_takes_format || entry.m_command == COMMAND::SYNTH) {
        add_format_option(app, &line->m_list_form);
    }
}

// What is typed as an option and stands elsewhere.
struct MISPLACED
{
    const char* m_option;
    const char* m_place;
};

const MISPLACED MISPLACED_OPTIONS[] = {
    {"--phase", "a phase stands with its output: --out 100MHz,phase=90"},
    {"--duty", "a duty cycle stands with its output: --out 100MHz,duty=40"},
    {"--delay", "a delay stands with its output: --out 100MHz,delay=250"},
    {"--pin", "'pin' stands with its output: --out 100MHz,pin"},
    {"--even", "'even' stands with its output: --out 100MHz,even"},
    {"--ratio", "a ratio stands in the place of a frequency: --out ratio=11/2"},
    {"--format", "of lists: ratios, devices, device, table, limits; for one line see --summary"},
    {"--json", "lists have --format json"},
    {"--device", "real devices are for synth and verify; others are named by --database, --family "
                 "and --part"},
};

// The first word that no option took.
[[noreturn]] void refuse_extra(CLI::App* app)
{
    const std::vector<std::string> rest = app->remaining();
    const std::string word = rest.empty() ? std::string() : rest.front();
    if (word.substr(0, 1) != "-") {
        throw USAGE_ERROR("'" + word + "'", "unexpected; every value stands behind its option");
    }
    std::vector<std::string> names;
    for (const CLI::Option* option : app->get_options()) {
        for (const std::string& long_name : option->get_lnames()) {
            names.push_back("--" + long_name);
        }
    }
    const std::string name = word.substr(0, word.find('='));
    for (const MISPLACED& misplaced : MISPLACED_OPTIONS) {
        if (name == misplaced.m_option) {
            throw USAGE_ERROR(name, std::string("unknown option; ") + misplaced.m_place);
        }
    }
    const std::string nearest = suggest(name, {names.begin(), names.end()});
    const std::string help = "; see " + app->get_name() + " --help";
    throw USAGE_ERROR(name, "unknown option" + (nearest.empty() ? help : nearest));
}

// A value that is missing or out of place, or an option that stands twice.
[[noreturn]] void refuse_count(const CLI::ArgumentMismatch& error)
{
    const std::string text = error.what();
    const std::string name = text.substr(0, text.find_first_of(": "));
    if (text.find("missing") != std::string::npos) {
        throw USAGE_ERROR(name, "needs a value");
    }
    if (text.find("override") != std::string::npos) {
        throw USAGE_ERROR("--" + name, "takes no value");
    }
    throw USAGE_ERROR(name, "may be given once");
}

// Left to itself, the parser takes the word behind "--in=" for the value.
void refuse_empty_values(CLI::App* app, int count, const char* const* words)
{
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const std::string name = word.substr(0, word.find('='));
        const CLI::Option* const option = app->get_option_no_throw(name);
        if (name.size() + 1 == word.size() && option != nullptr &&
            option->get_items_expected() > 0) {
            throw USAGE_ERROR(name, "needs a value");
        }
    }
}

std::string write_program_help()
{
    constexpr std::size_t NAME_WIDTH = 14;
    std::string text = PROGRAM_EXAMPLES;
    for (const COMMAND_ENTRY& entry : COMMANDS) {
        std::string name = entry.m_name;
        name.resize(NAME_WIDTH, ' ');
        text += "  " + name + entry.m_summary + "\n";
    }
    return text + PROGRAM_OPTIONS;
}

std::string write_help(const COMMAND_ENTRY& entry, CLI::App* app)
{
    constexpr std::size_t NAME_WIDTH = 34;
    app->get_formatter()->column_width(NAME_WIDTH);
    return "Examples:\n" + std::string(entry.m_examples) + "\n" + app->help() +
           (entry.m_takes_request ? REQUEST_HELP : "") + (takes_limits(entry) ? LIMITS_HELP : "");
}

bool parse(const COMMAND_ENTRY& entry, int count, const char* const* words, COMMAND_LINE* line,
           std::string* help)
{
    CLI::App app(entry.m_description, std::string("pllcalc ") + entry.m_name);
    add_options(entry, &app, line);
    refuse_empty_values(&app, count, words);
    try {
        app.parse(count, words);
    } catch (const CLI::CallForHelp&) {
        *help = write_help(entry, &app);
        return false;
    } catch (const CLI::ExtrasError&) {
        refuse_extra(&app);
    } catch (const CLI::RequiredError&) {
        // The mistake may be an unknown option instead.
        if (!app.remaining().empty()) {
            refuse_extra(&app);
        }
    } catch (const CLI::ArgumentMismatch& error) {
        refuse_count(error);
    } catch (const CLI::ParseError& error) {
        throw USAGE_ERROR(entry.m_name, error.what());
    }
    if (entry.m_command == COMMAND::DIFF && line->m_words.size() != 2) {
        throw USAGE_ERROR("diff", "takes two database directories, the old and the new one");
    }
    if (entry.m_command == COMMAND::KEYWORDS && line->m_words.size() > 1) {
        throw USAGE_ERROR("keywords", "takes one keyword, or none for all of them");
    }
    if (entry.m_command == COMMAND::LINT) {
        require_lint_path(line->m_lint);
    }
    if (entry.m_command == COMMAND::VERIFY && !line->m_primitive.m_file) {
        throw USAGE_ERROR("FILE", "missing; an answer in JSON or a Verilog file, or - for the "
                                  "standard input");
    }
    return true;
}

}  // namespace

std::optional<COMMAND_LINE> read_command_line(int count, const char* const* words,
                                              std::string* help)
{
    if (count < 2) {
        throw USAGE_ERROR("command",
                          "missing; legal are " + join_commands() + " (see pllcalc --help)");
    }
    const std::string_view name = words[1];
    const bool asks_for_help = name == "--help" || name == "-h" || name == "help";
    if (asks_for_help && count == 2) {
        *help = write_program_help();
        return std::nullopt;
    }
    if (name == "--version" || name == "-V") {
        *help = "pllcalc " PLLCALC_VERSION "\n";
        return std::nullopt;
    }
    COMMAND_LINE line;
    if (asks_for_help) {
        const COMMAND_ENTRY& entry = find_command(words[2]);
        const char* const option[] = {words[2], "--help"};
        parse(entry, static_cast<int>(std::size(option)), option, &line, help);
        return std::nullopt;
    }
    // Without a command, options are those of synth.
    const bool is_option = name.substr(0, 1) == "-";
    const COMMAND_ENTRY& entry = find_command(is_option ? "synth" : name);
    line.m_command = entry.m_command;
    const int skipped = is_option ? 0 : 1;
    if (!parse(entry, count - skipped, words + skipped, &line, help)) {
        return std::nullopt;
    }
    return line;
}
