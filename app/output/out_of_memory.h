// What becomes of the program when memory is exhausted.
#pragma once

// Writes "out of memory" and ends the program with the exit status of failed input and output.
// Takes no memory itself.
[[noreturn]] void end_without_memory();

// From now on the program ends at the first allocation that fails, its own and the library's. No
// command goes on without something that it asked for, so none gives an answer that lacks it.
void end_when_memory_is_exhausted();
