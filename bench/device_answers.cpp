// device_answers DEVICE < WISHES: the median time of an answer for a real device, in one process. A
// wish is a line with the MHz of the input and of the output. Prints milliseconds.
#include "advice/devices/device_answer.h"
#include "advice/sheets/catalog.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <vector>

namespace {

using advice::RATIONAL;

constexpr int HZ_PER_MHZ = 1000000;

// Seconds that the answer takes; 0 when the wish is no numbers.
double answer(const advice::CANDIDATE_DEVICE& device, const std::string& input,
              const std::string& output)
{
    const auto clock = RATIONAL::parse(input);
    const auto wanted = RATIONAL::parse(output);
    if (!clock || !wanted) {
        return 0.0;
    }
    advice::DEVICE_REQUEST request;
    request.m_device = device;
    request.m_request.m_input = advice::make_input(*clock * RATIONAL(HZ_PER_MHZ));
    advice::OUTPUT_WISH wish;
    wish.m_frequency = *wanted * RATIONAL(HZ_PER_MHZ);
    wish.m_ratio = *wanted / *clock;
    request.m_request.m_outputs.push_back(wish);
    const auto begin = std::chrono::steady_clock::now();
    const bool has_setting = advice::answer_for_device(request).m_has_setting;
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    return has_setting ? taken.count() : 0.0;
}

}  // namespace

int main(int argc, char** argv)
{
    constexpr double MS_PER_S = 1000.0;
    const advice::SHEET_CATALOG catalog(advice::find_devices_directory());
    std::string problem;
    const auto device = catalog.choose(argc == 2 ? argv[1] : "", &problem);
    if (!device) {
        std::fprintf(stderr, "device_answers: %s\n", problem.c_str());
        return 2;
    }
    std::vector<double> seconds;
    std::string input;
    std::string output;
    while (std::cin >> input >> output) {
        seconds.push_back(answer({device->m_sheet, device->m_grade}, input, output));
    }
    if (seconds.empty()) {
        return 1;
    }
    std::sort(seconds.begin(), seconds.end());
    std::printf("%.3f\n", seconds[seconds.size() / 2] * MS_PER_S);
    return 0;
}
