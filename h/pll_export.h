// Marks what a shared libpll shows to its hosts. The build of the library defines PLL_API;
// everyone else, a tool that compiles the sources by hand included, gets the empty one.
//
// A build defines it as the attribute of its compiler that makes a name visible, and hides the
// rest: so hosts can rely on nothing that is not in a header.
#pragma once

#ifndef PLL_API
#define PLL_API
#endif
