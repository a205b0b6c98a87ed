#pragma once
// "The first of these keys that has a value": components pick a row's
// picture, header, price or sort key from an ordered list of candidate keys,
// taking the first that the row yields a value for through valLikeKey.

#include <morvane/model/Value.h>

#include <string>
#include <vector>

namespace morvane {

class Node;

struct KeyValue {
    const std::string* key = nullptr; // the candidate that matched; null when none did
    Value value;
    explicit operator bool() const { return key != nullptr; }
};

// The first candidate for which the row yields a value through valLikeKey,
// with that value; nothing when none does.
KeyValue firstValue(const Node& row, const std::vector<std::string>& candidates);

} // namespace morvane
