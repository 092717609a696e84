#include "msg_internal_error.h"

namespace {

// One handler for the process, as the library itself is called from one thread at a time. Reports
// are counted without one as well: a test that forgets its handler still sees them.
MSG_INTERNAL_ERROR::HANDLER current_handler = nullptr;
void* current_context = nullptr;
unsigned long report_count = 0;

}  // namespace

void MSG_INTERNAL_ERROR::report(const char* condition, const char* component, const char* source,
                                int line)
{
    ++report_count;
    if (current_handler != nullptr) {
        current_handler(condition, component, source, line, current_context);
    }
}

void MSG_INTERNAL_ERROR::set_handler(HANDLER handler, void* context)
{
    current_handler = handler;
    current_context = context;
}

unsigned long MSG_INTERNAL_ERROR::get_report_count()
{
    return report_count;
}
