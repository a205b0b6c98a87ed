#include <morvane/components/KeyLookup.h>

#include <morvane/model/Node.h>

namespace morvane {

KeyValue firstValue(const Node& row, const std::vector<std::string>& candidates) {
    for (const std::string& key : candidates) {
        if (Value value = row.valLikeKey(key)) return {&key, std::move(value)};
    }
    return {};
}

} // namespace morvane
