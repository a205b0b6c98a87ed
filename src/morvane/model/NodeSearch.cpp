// Search by key: values under a key name (searchDict), Nodes hanging under a
// key name (searchNode). Both try a Node's own entries before any nested
// entry, so a hit near the top wins over a deeper one.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>

namespace morvane {

namespace {

// ---- Key search --------------------------------------------------------------

enum class Entering { ByReadOnlyRule, Everything };

struct KeyQuery {
    std::string_view text;
    std::string lowered; // for like matching
    bool exact;
    Entering entering;

    bool matches(std::string_view key) const {
        return exact ? key == text : detail::likeLowered(key, lowered);
    }
    // A mutable Node enters only mutable nested Nodes; a read-only Node, or
    // the two-kind search, enters all of them.
    bool enters(bool hostReadOnly, const Node& nested) const {
        return entering == Entering::Everything || hostReadOnly || !nested.isReadOnly();
    }
};

Value searchKeysIn(const Node& node, const KeyQuery& query);

Value searchKeysInList(const List& list, const KeyQuery& query, bool hostReadOnly) {
    for (const Value& element : list) {
        if (element.isNode()) {
            const Node& nested = *element.node();
            if (!query.enters(hostReadOnly, nested)) continue;
            if (Value found = searchKeysIn(nested, query)) return found;
        } else if (element.listMayHoldContainers()) { // else nothing to search in
            if (Value found = searchKeysInList(*element.list(), query, hostReadOnly)) return found;
        }
    }
    return {};
}

Value searchKeysIn(const Node& node, const KeyQuery& query) {
    for (const auto& [key, value] : node)
        if (value.isText() && query.matches(key)) return value;
    for (const auto& [key, value] : node) {
        // A key with ">" marks a branch the key search never enters.
        if (key.find('>') != std::string::npos) continue;
        if (const NodePtr& nested = value.node()) {
            if (!query.enters(node.isReadOnly(), *nested)) continue;
            if (Value found = searchKeysIn(*nested, query)) return found;
        } else if (const ListPtr& list = value.list(); value.listMayHoldContainers()) {
            if (Value found = searchKeysInList(*list, query, node.isReadOnly())) return found;
        }
    }
    return {};
}

KeyQuery keyQuery(std::string_view t, bool exact, Entering entering) {
    return KeyQuery{t, exact ? std::string() : detail::lowercase(t), exact, entering};
}

// ---- Node search -------------------------------------------------------------

struct NodeQuery {
    std::string lowered;
    bool exact;

    bool matches(std::string_view key) const {
        return exact ? detail::equalsCaseFreeLowered(key, lowered) : detail::likeLowered(key, lowered);
    }
};

NodePtr searchNodesIn(const Node& node, const NodeQuery& query);

NodePtr searchNodesInList(const List& list, const NodeQuery& query) {
    for (const Value& element : list) {
        if (const NodePtr& nested = element.node()) {
            // The element that holds the hit, not the hit.
            if (searchNodesIn(*nested, query)) return nested;
        } else if (const ListPtr& inner = element.list(); element.listMayHoldContainers()) {
            if (NodePtr found = searchNodesInList(*inner, query)) return found;
        }
    }
    return nullptr;
}

NodePtr searchNodesIn(const Node& node, const NodeQuery& query) {
    // First pass: the direct children; a mutable Node tests only its mutable
    // children here, a read-only Node all of them.
    for (const auto& [key, value] : node) {
        const NodePtr& nested = value.node();
        if (nested && (node.isReadOnly() || !nested->isReadOnly()) && query.matches(key)) return nested;
    }
    // Second pass: every nested Node is tested (which can only hit a
    // read-only child of a mutable Node now) and entered.
    for (const auto& [key, value] : node) {
        if (const NodePtr& nested = value.node()) {
            if (query.matches(key)) return nested;
            if (NodePtr found = searchNodesIn(*nested, query)) return found;
        } else if (const ListPtr& list = value.list(); value.listMayHoldContainers()) {
            if (NodePtr found = searchNodesInList(*list, query)) return found;
        }
    }
    return nullptr;
}

} // namespace

Value Node::searchDict(std::string_view t, bool exact) const {
    return searchKeysIn(*this, keyQuery(t, exact, Entering::ByReadOnlyRule));
}

Value Node::searchArray(const ListPtr& list, std::string_view t, bool exact) const {
    if (!list) return {};
    return searchKeysInList(*list, keyQuery(t, exact, Entering::ByReadOnlyRule), isReadOnly());
}

Value Node::searchDict2(std::string_view t, bool exact) const {
    return searchKeysIn(*this, keyQuery(t, exact, Entering::Everything));
}

Value Node::valLikeKey(std::string_view t) const {
    if (Value found = searchDict(t, true)) return found;
    return searchDict(t, false);
}

Value Node::txtInList(const ListPtr& texts) const {
    if (!texts) return {};
    for (const Value& element : *texts) {
        const std::string* text = element.text();
        if (!text) continue;
        if (Value found = valLikeKey(*text)) return found;
    }
    return {};
}

NodePtr Node::searchNode(std::string_view t, bool exact) const {
    return searchNodesIn(*this, NodeQuery{detail::lowercase(t), exact});
}

NodePtr Node::searchNodeArray(const ListPtr& list, std::string_view t, bool exact) const {
    if (!list) return nullptr;
    return searchNodesInList(*list, NodeQuery{detail::lowercase(t), exact});
}

NodePtr Node::nodeKey(std::string_view t) const {
    return searchNode(detail::lowercase(t), true);
}

NodePtr Node::nodeLike(std::string_view t) const {
    const std::string lowered = detail::lowercase(t);
    if (NodePtr found = searchNode(lowered, true)) return found;
    return searchNode(lowered, false);
}

bool Node::isMatch(std::string_view key, std::string_view t, bool exact) const {
    const std::string lowered = detail::lowercase(t);
    return exact ? detail::equalsCaseFreeLowered(key, lowered) : detail::likeLowered(key, lowered);
}

} // namespace morvane
