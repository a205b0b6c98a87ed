#pragma once
// Field access on record lists (internal).

#include <morvane/model/Node.h>

#include <string>
#include <string_view>

namespace morvane::detail {

// The record's value under `field`; absent for an element that is not a Node.
inline const Value& fieldOf(const Value& element, std::string_view field) {
    static const Value absent;
    const NodePtr& node = element.node();
    return node ? node->get(field) : absent;
}

// True if the element is a record holding exactly the text `v` under `field`.
inline bool holdsText(const Value& element, std::string_view field, std::string_view v) {
    const std::string* text = fieldOf(element, field).text();
    return text && *text == v;
}

} // namespace morvane::detail
