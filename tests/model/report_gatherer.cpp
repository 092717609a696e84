#include "report_gatherer.h"

#include "msg_internal_error.h"

#include <string>

namespace {

void gather(const char* condition, const char* component, const char*, int, void* context)
{
    std::string text = condition;
    if (std::string(component) != "PLL") {
        text += std::string(" by ") + component;
    }
    static_cast<MODEL_REPORTS*>(context)->push_back(text);
}

}  // namespace

REPORT_GATHERER::REPORT_GATHERER(MODEL_REPORTS* reports)
{
    MSG_INTERNAL_ERROR::set_handler(gather, reports);
}

REPORT_GATHERER::~REPORT_GATHERER()
{
    MSG_INTERNAL_ERROR::set_handler(nullptr, nullptr);
}

void compare_reports(const char* what, const MODEL_REPORTS& library, const MODEL_REPORTS& model,
                     std::ostream& stream)
{
    if (library == model) {
        return;
    }
    std::size_t i = 0;
    while (i < library.size() && i < model.size() && library[i] == model[i]) {
        ++i;
    }
    stream << what << ": library made " << library.size() << " reports, model " << model.size()
           << "; number " << i << ": library "
           << (i < library.size() ? library[i] : std::string("none")) << ", model "
           << (i < model.size() ? model[i] : std::string("none")) << '\n';
}
