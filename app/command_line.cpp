#include "command_line.h"

#include "suggestion.h"
#include "usage_error.h"

#include <CLI/CLI.hpp>

#include <string_view>
#include <vector>

namespace {

const char* const PROGRAM_HELP =
    "Examples:\n"
    "  pllcalc synth --in 27MHz --out 148.5MHz --out 74.25MHz,phase=90,duty=40\n"
    "  pllcalc synth --in 100MHz --out ratio=11/2 --spread 0.5% --spread-rate 30kHz\n"
    "  pllcalc ratios --in 100MHz --format csv\n"
    "  pllcalc synth --help\n"
    "\n"
    "pllcalc computes the settings of a phase-locked loop from the clocks that are wanted.\n"
    "\n"
    "Usage: pllcalc COMMAND [OPTIONS]\n"
    "\n"
    "Commands:\n"
    "  synth   the settings for a request, and what they achieve\n"
    "  steps   the legal phase steps and duty cycles around the answer to a request\n"
    "  dump    the library's own reports of a request and its answer\n"
    "  ratios  all VCO ratios that can be realised from an input clock\n"
    "  errors  the error values and their texts\n"
    "\n"
    "Options:\n"
    "  -h,--help   this text, or that of a command\n"
    "  --version   the version\n"
    "\n"
    "Exit status: 0 met, 1 not met, 2 bad usage, 4 input or output failed, 5 internal error.\n";

const char* const REQUEST_HELP =
    "\nEach --out is one output, numbered from 1: a frequency or ratio=A/B to the input, then any "
    "of\n"
    "  phase=90         degrees of the output (-360 to 360: a period), or a time such as 1.5ns\n"
    "  duty=40          percent, whole, 1 to 99\n"
    "  delay=-250       ps, whole, -3000 to 3000\n"
    "  even             a counter without the half period\n"
    "  even-count       even high and low counts\n"
    "Frequencies are numbers with Hz, kHz, MHz or GHz, or a period with ps, ns or us. Numbers are\n"
    "decimals or fractions: 148.5MHz, 1001/37MHz, 148.5/1.001MHz. The ratio to the input is "
    "formed\n"
    "exactly; the library takes an output within a thousandth for met, see --tolerance.\n";

struct COMMAND_ENTRY
{
    const char* m_name;
    COMMAND m_command;
    const char* m_examples;
    const char* m_description;
    bool m_takes_request;
};

const COMMAND_ENTRY COMMANDS[] = {
    {"synth", COMMAND::SYNTH,
     "  pllcalc synth --in 27MHz --out 148.5MHz --out 74.25MHz,phase=90,duty=40 --out 24.576MHz\n"
     "  pllcalc synth --in 1001/37MHz --out ratio=11/2 --exact\n"
     "  pllcalc synth --in 10ns --out 50MHz,delay=300 --bandwidth 1.2MHz --feedback 1\n",
     "Computes the settings for a request and shows what they achieve.", true},
    {"steps", COMMAND::STEPS,
     "  pllcalc steps --in 100MHz --out 50MHz,phase=45 --out 25MHz,duty=30\n",
     "Lists the legal phase steps and duty cycles around the answer to a request.", true},
    {"dump", COMMAND::DUMP,
     "  pllcalc dump --in 100MHz --out 50MHz\n"
     "  pllcalc dump --compact --in 100MHz --out 50MHz\n",
     "Prints the library's own reports of a request and its answer. Their phases are in degrees of "
     "the\ninput clock.",
     true},
    {"ratios", COMMAND::RATIOS,
     "  pllcalc ratios --in 100MHz\n"
     "  pllcalc ratios --in 37.037ns --format csv\n",
     "Lists all VCO ratios that can be realised from an input clock, by ascending ratio.", false},
    {"errors", COMMAND::ERRORS, "  pllcalc errors\n", "Lists the error values and their texts.",
     false},
};

const COMMAND_ENTRY& find_command(std::string_view name)
{
    std::vector<std::string_view> names;
    for (const COMMAND_ENTRY& entry : COMMANDS) {
        if (name == entry.m_name) {
            return entry;
        }
        names.emplace_back(entry.m_name);
    }
    const bool is_option = name.substr(0, 1) == "-";
    if (is_option) {
        names = {"--help", "--version"};
    }
    throw USAGE_ERROR(std::string(name),
                      std::string(is_option ? "unknown option" : "unknown command") +
                          "; legal are " +
                          (is_option ? "--help, --version, or a command first: " : "") +
                          "synth, steps, dump, ratios, errors" + suggest(name, names));
}

void add_text(CLI::App* app, const char* name, const char* unit, const char* description,
              std::optional<std::string>* value)
{
    app->add_option_function<std::string>(
           name, [value](const std::string& text) { *value = text; }, description)
        ->option_text(unit);
}

void add_request_options(CLI::App* app, REQUEST_WORDS* words)
{
    add_text(app, "--in", "FREQ", "input clock", &words->m_in);
    add_text(app, "--in2", "FREQ", "second input clock", &words->m_in2);
    app->add_option("--out", words->m_outs, "an output; once for each")
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
    add_text(app, "--max-outputs", "COUNT", "outputs of the device, 1 to 10 (default 10)",
             &words->m_max_outputs);
    add_text(app, "--tolerance", "PART", "largest error of an output, such as 50ppm, for 'met'",
             &words->m_tolerance);
    app->add_flag("--exact", words->m_exact, "only exact outputs count as met")
        ->disable_flag_override();
}

void add_options(const COMMAND_ENTRY& entry, CLI::App* app, COMMAND_LINE* line)
{
    app->set_help_flag("-h,--help", "this text");
    if (entry.m_takes_request) {
        add_request_options(app, &line->m_request);
    }
    if (entry.m_command == COMMAND::DUMP) {
        app->add_flag_callback(
               "--compact", [line] { line->m_dump_form = DUMP_FORM::COMPACT; },
               "tab-separated values")
            ->disable_flag_override();
    }
    if (entry.m_command == COMMAND::RATIOS) {
        add_text(app, "--in", "FREQ", "input clock", &line->m_request.m_in);
        app->add_option_function<std::string>(
               "--format",
               [line](const std::string& text) {
                   if (text != "table" && text != "csv") {
                       throw USAGE_ERROR("--format",
                                         "'" + text + "' is not legal; expected table or csv");
                   }
                   line->m_ratio_form = text == "csv" ? RATIO_FORM::CSV : RATIO_FORM::TABLE;
               },
               "table or csv (default table)")
            ->option_text("FORM");
    }
}

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
        names.push_back("--" + option->get_lnames().front());
    }
    const std::string name = word.substr(0, word.find('='));
    throw USAGE_ERROR(name, "unknown option" + suggest(name, {names.begin(), names.end()}));
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

std::string write_help(const COMMAND_ENTRY& entry, CLI::App* app)
{
    constexpr std::size_t NAME_WIDTH = 34;
    app->get_formatter()->column_width(NAME_WIDTH);
    return "Examples:\n" + std::string(entry.m_examples) + "\n" + app->help() +
           (entry.m_takes_request ? REQUEST_HELP : "");
}

bool parse(const COMMAND_ENTRY& entry, int count, const char* const* words, COMMAND_LINE* line,
           std::string* help)
{
    CLI::App app(entry.m_description, std::string("pllcalc ") + entry.m_name);
    add_options(entry, &app, line);
    try {
        app.parse(count, words);
    } catch (const CLI::CallForHelp&) {
        *help = write_help(entry, &app);
        return false;
    } catch (const CLI::ExtrasError&) {
        refuse_extra(&app);
    } catch (const CLI::ArgumentMismatch& error) {
        refuse_count(error);
    } catch (const CLI::ParseError& error) {
        throw USAGE_ERROR(entry.m_name, error.what());
    }
    return true;
}

}  // namespace

std::optional<COMMAND_LINE> read_command_line(int count, const char* const* words,
                                              std::string* help)
{
    if (count < 2) {
        throw USAGE_ERROR("command", "missing; legal are synth, steps, dump, ratios, errors (see "
                                     "pllcalc --help)");
    }
    const std::string_view name = words[1];
    if (name == "--help" || name == "-h" || name == "help") {
        *help = PROGRAM_HELP;
        return std::nullopt;
    }
    if (name == "--version") {
        *help = "pllcalc " PLLCALC_VERSION "\n";
        return std::nullopt;
    }
    const COMMAND_ENTRY& entry = find_command(name);
    COMMAND_LINE line;
    line.m_command = entry.m_command;
    if (!parse(entry, count - 1, words + 1, &line, help)) {
        return std::nullopt;
    }
    return line;
}
