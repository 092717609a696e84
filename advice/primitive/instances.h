// Instances of primitives in a Verilog source: their parameters as values, what is connected, and
// the comments beside.
#pragma once

#include "advice/primitive/verilog_tokens.h"
#include "advice/primitive/verilog_values.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace advice {

// What a port is connected to.
struct CONNECTION
{
    std::string m_text;     // of the expression; empty: left open
    bool m_is_used = true;  // a net that nothing else in the module names is not
};

// A comment and what stands in its line.
struct BESIDE
{
    std::string m_text;
    int m_line = 0;
    std::vector<std::string> m_words;
};

struct INSTANCE
{
    std::string m_primitive;
    std::string m_name;  // empty where the source gives none
    std::string m_module;
    int m_line = 0;       // of the primitive's name
    int m_last_line = 0;  // of the end of the statement
    std::map<std::string, VERILOG_VALUE> m_parameters;
    std::map<std::string, int> m_parameter_lines;
    std::map<std::string, CONNECTION> m_ports;
    std::map<std::string, int> m_port_lines;
    std::map<std::string, std::string> m_attributes;
    std::vector<BESIDE> m_comments;  // in the statement, just before it, and beside its nets
};

struct INSTANCES
{
    std::vector<INSTANCE> m_list;  // in the order of the source
    std::string m_problem;         // why the source was not read to its end, else empty
};

// Finds the instances of `primitives`. Modules are read as written, without those that instantiate
// them: parameters have their default values, and all branches of a generate are there.
INSTANCES find_instances(const std::string& text, const std::set<std::string>& primitives);

}  // namespace advice
