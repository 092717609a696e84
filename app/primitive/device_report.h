// Answers of `synth --device`: settings of real devices.
#pragma once

#include "advice/devices/device_answer.h"
#include "app/json/json.h"

#include <string>

// For people.
std::string report_device_answer(const advice::DEVICE_REQUEST& request,
                                 const advice::DEVICE_ANSWER& answer);

// One line for scripts.
std::string summarise_device_answer(const advice::DEVICE_REQUEST& request,
                                    const advice::DEVICE_ANSWER& answer);

// For programs: one object with the keys of every answer.
JSON write_json_device_answer(const advice::DEVICE_REQUEST& request,
                              const advice::DEVICE_ANSWER& answer, int exit_status);
