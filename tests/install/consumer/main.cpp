#include <morvane/Version.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <cstdio>

// An application's first steps: read the data it was handed, query it, and
// write it back.
int main() {
    std::printf("%s", reinterpret_cast<const char*>(MorvaneVersionString));
    if (MorvaneVersionNumber <= 0) return 1;

    auto result =
        morvane::json::read(R"({"hotel": {"address": {"city": "Oslo"}}, "rooms": [{"price": "80"}]})");
    if (!result) {
        std::printf(" json: %s\n", result.error->describe().c_str());
        return 1;
    }
    const morvane::NodePtr root = result.value.node();
    if (!root || root->valKey("city") != morvane::Value("Oslo")) return 1;
    if (root->gatherFloat("price") != 80.0) return 1;
    if (morvane::json::write(morvane::Value(root->nodeKey("address"))) != R"({"city":"Oslo"})") return 1;
    if (morvane::List::bookData()->size() != 4) return 1;
    std::printf(" reads JSON\n");
    return 0;
}
