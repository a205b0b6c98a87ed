#pragma once
// Short builders for NodeTrees in tests: node({{"a", "x"}}), list({...}).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace morvane::testing {

inline NodePtr node(std::initializer_list<Node::Entry> entries = {}) {
    return Node::make(entries);
}
inline ListPtr list(std::initializer_list<Value> items = {}) {
    return List::make(items);
}

// Marks a tree read-only, as a read-only source would deliver it.
inline void freeze(const Value& value) {
    if (const NodePtr& n = value.node()) {
        for (const auto& entry : *n)
            freeze(entry.second);
        n->setReadOnly(true);
    } else if (const ListPtr& l = value.list()) {
        for (const Value& item : *l)
            freeze(item);
        l->setReadOnly(true);
    }
}
inline NodePtr frozen(NodePtr n) {
    freeze(Value(n));
    return n;
}

inline std::vector<std::string> keysOf(const NodePtr& n) {
    return n ? n->keys() : std::vector<std::string>{};
}

// The texts of a list (elements by their text form).
inline std::vector<std::string> textsOf(const ListPtr& l) {
    std::vector<std::string> out;
    if (l)
        for (const Value& v : *l)
            out.push_back(v.toText());
    return out;
}

// The `field` texts of the records of a list.
inline std::vector<std::string> fieldsOf(const ListPtr& l, const std::string& field) {
    std::vector<std::string> out;
    if (l)
        for (const Value& v : *l)
            out.push_back(v.node() ? v.node()->get(field).toText() : std::string("<not a node>"));
    return out;
}

} // namespace morvane::testing
