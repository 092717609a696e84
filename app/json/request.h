// Requests in JSON: the object under the key "request" of an answer, and a file of --request.
//
//   {"input_hz": "27000000", "outputs": [{"name": "pix", "frequency_hz": "148500000",
//    "phase_deg": 90.0}]}
//
// What a key leaves out is as a fresh advice::REQUEST has it. Writing leaves such keys out too, but
// for name, frequency and phase of the outputs.
#pragma once

#include "app/devices/device.h"
#include "app/json/json.h"
#include "app/json/place.h"

#include "advice/request/request.h"

// A request and the device that it is for.
struct JSON_REQUEST
{
    advice::REQUEST m_request;
    DEVICE_WORDS m_device;  // empty: the built-in limits
};

// Reads a request. Throws a USAGE_ERROR that names an unknown key, a wrong type or a value that is
// not legal, and its place. Does not look at the device.
JSON_REQUEST read_json_request(const PLACE& place);

JSON write_json_request(const advice::REQUEST& request, const DEVICE_WORDS& device);

// Names of presets as both requests and options spell them, in the order of BANDWIDTH_KIND.
inline constexpr const char* BANDWIDTH_NAMES[] = {"high", "medium", "low", "auto"};

// What an output is called in JSON: the user's name, else its number from 1.
std::string json_name_of_output(const advice::REQUEST& request, std::size_t output);
