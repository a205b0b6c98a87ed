#include <morvane/Version.h>

#include <cstdio>

int main() {
    std::printf("%s", reinterpret_cast<const char*>(MorvaneVersionString));
    return MorvaneVersionNumber > 0 ? 0 : 1;
}
