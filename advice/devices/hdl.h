// A PLL as an instance of its primitive: parameters, ports and what they are connected to, ready to
// be written in any language for hardware.
#pragma once

#include "advice/devices/device_answer.h"

#include <string>
#include <vector>

namespace advice {

struct HDL_PARAMETER
{
    std::string m_name;
    PARAMETER_TYPE m_type = PARAMETER_TYPE::INTEGER;
    int m_width = 0;
    std::string m_value;  // digits; of bits and digits in binary; of strings without quotes
};

enum class HDL_NET
{
    SIGNAL,  // m_signal
    OPEN,
    LOW,
    HIGH
};

struct HDL_PORT
{
    std::string m_name;
    bool m_is_output = false;
    int m_width = 1;
    HDL_NET m_net = HDL_NET::OPEN;
    std::string m_signal;
};

// A port of the module around the instance.
struct HDL_MODULE_PORT
{
    std::string m_name;
    bool m_is_output = false;
    std::string m_comment;
};

struct HDL_MODULE
{
    std::string m_name;
    std::string m_primitive;
    std::vector<std::string> m_comments;    // of the head
    std::vector<std::string> m_attributes;  // NAME = "value" of the instance
    std::vector<HDL_MODULE_PORT> m_ports;
    std::vector<std::string> m_signals;  // inside the module
    std::vector<std::string>
        m_inversions;  // of them, those that are another signal inverted: "a b"
    std::vector<HDL_PARAMETER> m_parameters;
    std::vector<HDL_PORT> m_connections;
    RATIONAL m_input;  // MHz
    std::string m_input_name;
};

// The instance of an answer that has a setting. Every parameter is written, used or not.
HDL_MODULE make_hdl(const DEVICE_REQUEST& request, const DEVICE_ANSWER& answer,
                    const std::string& module);

// A name that all languages take: letters, digits and underscores, no keyword of them.
std::string to_identifier(const std::string& name, const std::string& otherwise);

}  // namespace advice
