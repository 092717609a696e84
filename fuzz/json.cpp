// A request in JSON. What is no JSON or no request is a usage error.
#include "fuzz.h"

#include "app/json/place.h"
#include "app/json/request.h"
#include "app/words/usage_error.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const JSON document = JSON::parse(data, data + size, nullptr, false);
    if (document.is_discarded()) {
        return 0;
    }
    try {
        const JSON_REQUEST request = read_json_request(PLACE("request", document));
        write_json_request(request.m_request, request.m_device);
    } catch (const USAGE_ERROR&) {
        return 0;
    }
    return 0;
}
