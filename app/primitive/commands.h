// The commands that know real devices.
#pragma once

#include "app/json/place.h"
#include "app/output/record_list.h"
#include "app/primitive/check_device_answer.h"
#include "app/primitive/words.h"
#include "app/request/request.h"

#include <string>

// All receive their text in `text` and return the exit status. They throw a USAGE_ERROR for words
// that they do not understand, an INPUT_ERROR for files that cannot be read.

// verify FILE|-: the primitives of `description`, the text of the file.
int verify_description(const PRIMITIVE_WORDS& words, const std::string& description, LIST_FORM form,
                       std::string* text);

// verify FILE|-: an answer of synth --device.
CHECKED_DEVICE_ANSWER verify_device_answer(const PRIMITIVE_WORDS& words, const PLACE& answer);

enum class ANSWER_FORM
{
    TEXT,
    SUMMARY,
    OBJECT,
    EXPORT  // the instance of its primitive; nothing when there is no setting
};

// synth --device.
int answer_for_real_device(const PRIMITIVE_WORDS& words, const REQUEST_WORDS& request,
                           ANSWER_FORM form, std::string* text);

// export without a device.
int export_generic(const PRIMITIVE_WORDS& words, const REQUEST_WORDS& request,
                   const LIMIT_WORDS& limits, std::string* text);

// devices without a database: those that have sheets.
int list_real_devices(LIST_FORM form, std::string* text);
