// Deterministic random databases: their files, and what a host does with them.
#pragma once

#include "model_database.h"
#include "random_request.h"

// One call of the library.
struct RANDOM_STEP
{
    enum class KIND
    {
        READ,          // the path file
        SPEED_GRADES,  // of a family
        FAMILY_FILE,   // a family file by its name
        INIT_INFO,
        INIT_PLL  // and a synthesis
    };

    KIND m_kind = KIND::READ;
    std::string m_name;   // the family or the file
    MODEL_QUERY m_query;  // of INIT_INFO and INIT_PLL
};

struct RANDOM_DATABASE
{
    std::uint64_t m_seed = 0;
    MODEL_FILES m_files;  // by their names in the database's directory
    std::vector<RANDOM_STEP> m_steps;
    MODEL_PROP m_request;  // often one that the main family can meet
};

RANDOM_DATABASE make_random_database(std::uint64_t seed);

// The files and the steps as a text.
std::string describe_database(const RANDOM_DATABASE& database);

// The text of a bandwidth settings table with the rows of `device`, or rows of its own for a
// device without any; now and then a broken one.
std::string make_table_text(const MODEL_DEVICE& device, int size, RANDOM* random);

// Breaks a text in one place.
void damage_text(std::string* text, RANDOM* random);
