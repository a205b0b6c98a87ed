#include <morvane/Version.h>

#define MORVANE_STR2(x) #x
#define MORVANE_STR(x) MORVANE_STR2(x)

extern "C" {
const double MorvaneVersionNumber = MORVANE_VERSION_MAJOR + MORVANE_VERSION_MINOR / 100.0;
const unsigned char MorvaneVersionString[] = "@(#)PROGRAM:Morvane  PROJECT:Morvane-" MORVANE_STR(
    MORVANE_VERSION_MAJOR) "." MORVANE_STR(MORVANE_VERSION_MINOR) "." MORVANE_STR(MORVANE_VERSION_PATCH) "\n";
}
