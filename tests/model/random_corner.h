// Requests in the corners of the search: what is limited, asked for or held lies where its steps
// change their mind.
#pragma once

#include "random_request.h"

// Turns a random case of a kind that is about such corners into one; others stay as they are.
void make_corner(RANDOM_CASE* random_case, RANDOM* random);
