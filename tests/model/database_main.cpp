// pll_model_databases: sets the library against the plain model on random databases.
//
//   pll_model_databases [--databases N] [--seed S]
//
// Database i is made of seed S + i. Ends with 1 at the first difference, after printing the
// database in a form that can be run again.
#include "comparison_run.h"
#include "database_comparison.h"

#include "temp_dir.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace {

struct OPTIONS
{
    std::uint64_t m_databases = 2000;
    std::uint64_t m_seed = 1;
};

bool read_options(int argc, char** argv, OPTIONS* options)
{
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string name = argv[i];
        if (name == "--databases") {
            options->m_databases = std::strtoull(argv[i + 1], nullptr, 10);
        } else if (name == "--seed") {
            options->m_seed = std::strtoull(argv[i + 1], nullptr, 10);
        } else {
            return false;
        }
    }
    return argc % 2 == 1 && options->m_databases > 0;
}

bool run_all(const OPTIONS& options, COUNTS* counts)
{
    const TEMP_DIR temporary;
    for (std::uint64_t i = 0; i < options.m_databases; ++i) {
        const RANDOM_DATABASE database = make_random_database(options.m_seed + i);
        const std::string directory = temporary.file("database");
        std::filesystem::create_directory(directory);
        const std::string findings = compare_database(database, directory, counts);
        std::filesystem::remove_all(directory);
        if (!findings.empty()) {
            std::cout << findings << describe_database(database);
            return false;
        }
    }
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    OPTIONS options;
    if (!read_options(argc, argv, &options)) {
        std::cerr << "usage: pll_model_databases [--databases N] [--seed S]\n";
        return 2;
    }
    return run_comparison({options.m_seed, options.m_databases}, "databases",
                          [&](COUNTS* counts) { return run_all(options, counts); });
}
