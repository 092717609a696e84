// pllcalc as a process beside an empty one that links the same libraries.
#include "sections.h"

#include <algorithm>
#include <chrono>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int RUNS = 300;
constexpr double LONGEST_MS = 1.0;  // beyond the empty process
constexpr double MS_PER_S = 1e3;
constexpr double FAILED = -1.0;

// Wall-clock time in s of a run without output; negative when it failed.
double run_once(const char* const* words)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", 1, 0);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int error =
        posix_spawn(&child, words[0], &actions, nullptr, const_cast<char* const*>(words), environ);
    int status = 1;
    if (error == 0) {
        waitpid(child, &status, 0);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    posix_spawn_file_actions_destroy(&actions);
    return error == 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0 ? elapsed.count() : FAILED;
}

}  // namespace

void measure_processes(TARGET_TABLE* table)
{
    const char* const empty[] = {PLL_EMPTY_PROCESS, nullptr};
    const char* const synth[] = {PLLCALC, "synth",    "--in",  "27MHz",
                                 "--out", "148.5MHz", "--out", "74.25MHz,phase=90,duty=40",
                                 nullptr};
    const std::string work = "pllcalc synth, beyond an empty process";
    double empty_seconds = 1.0;
    double synth_seconds = 1.0;
    for (int run = 0; run < RUNS; ++run) {
        empty_seconds = std::min(empty_seconds, run_once(empty));
        synth_seconds = std::min(synth_seconds, run_once(synth));
    }
    if (empty_seconds < 0.0 || synth_seconds < 0.0) {
        table->add_error(work, "a process failed");
        return;
    }
    char note[64];
    std::snprintf(note, sizeof(note), "%.2f ms to %.2f ms", synth_seconds * MS_PER_S,
                  empty_seconds * MS_PER_S);
    table->add_most(work, (synth_seconds - empty_seconds) * MS_PER_S, LONGEST_MS, "ms", note);
}
