// Marks what a shared libpll shows to its hosts. The build of the library defines PLL_API;
// everyone else, a tool that compiles the sources by hand included, gets the empty one.
#pragma once

#ifndef PLL_API
#define PLL_API
#endif
