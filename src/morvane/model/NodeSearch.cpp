// Search by key: values under a key name (searchDict), Nodes hanging under a
// key name (searchNode). Both try a Node's own entries before any nested
// entry, so a hit near the top wins over a deeper one. Both keep their own
// stack (see detail/Walk.h).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>
#include <morvane/model/detail/Walk.h>

#include <vector>

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

// The key search from a Node (`root`) or over a list (`rootList`, hosted by a
// Node whose flag is `hostReadOnly`). A Node's text entries are tested when
// it is entered, before any of its nested entries.
Value searchKeys(const Node* root, const List* rootList, bool hostReadOnly, const KeyQuery& query) {
    // A list takes the entering rule of the nearest Node above it.
    struct KeyLevel : detail::Level {
        bool hostReadOnly;
    };
    std::vector<KeyLevel> stack;
    stack.reserve(detail::kUsualDepth);
    // A Node with nothing to go into (most of them) needs no level.
    auto enter = [&](const Node& node) -> const Value* {
        bool holdsContainer = false;
        for (const auto& [key, value] : node) {
            if (value.isText()) {
                if (query.matches(key)) return &value;
            } else if (!holdsContainer) {
                holdsContainer = value.isNode() || detail::isListOfContainers(value);
            }
        }
        if (holdsContainer) stack.push_back({detail::levelOf(node), node.isReadOnly()});
        return nullptr;
    };
    if (root) {
        if (const Value* found = enter(*root)) return *found;
    } else {
        stack.push_back({detail::levelOf(*rootList), hostReadOnly});
    }
    while (!stack.empty()) {
        std::string_view key;
        const Value* value = detail::stepToContainer(stack.back(), key);
        if (!value) {
            stack.pop_back();
            continue;
        }
        const bool host = stack.back().hostReadOnly;
        // A key with ">" marks a branch the key search never enters.
        auto closed = [&] { return key.find('>') != std::string_view::npos; };
        if (const NodePtr& nested = value->node()) {
            if (closed() || !query.enters(host, *nested)) continue;
            if (const Value* found = enter(*nested)) return *found;
        } else if (detail::isListOfContainers(*value)) { // else nothing to search in
            if (!closed()) stack.push_back({detail::levelOf(*value->list()), host});
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

// The Node search from a Node or over a list. A hit found inside an element
// of a list gives that element (the one of the outermost list on the way
// down), not the hit itself.
NodePtr searchNodes(const Node* root, const List* rootList, const NodeQuery& query) {
    std::vector<detail::Level> stack;
    auto found = [&](const NodePtr& hit) -> NodePtr {
        for (std::size_t i = 1; i < stack.size(); ++i)
            if (stack[i - 1].list && stack[i].node)
                return NodePtr(stack[i - 1].list->at(stack[i - 1].next - 1).node());
        return hit;
    };
    // First pass over a Node entered: the direct children; a mutable Node
    // tests only its mutable children here, a read-only Node all of them.
    auto enter = [&](const Node& node) -> const NodePtr* {
        stack.push_back(detail::levelOf(node));
        for (const auto& [key, value] : node) {
            const NodePtr& nested = value.node();
            if (nested && (node.isReadOnly() || !nested->isReadOnly()) && query.matches(key)) return &nested;
        }
        return nullptr;
    };
    if (root) {
        if (const NodePtr* hit = enter(*root)) return found(*hit);
    } else {
        stack.push_back(detail::levelOf(*rootList));
    }
    // Second pass: every nested Node is tested (which can only hit a
    // read-only child of a mutable Node now) and entered.
    while (!stack.empty()) {
        std::string_view key;
        const Value* value = detail::stepToContainer(stack.back(), key);
        if (!value) {
            stack.pop_back();
            continue;
        }
        const bool inNode = stack.back().node != nullptr;
        if (const NodePtr& nested = value->node()) {
            if (inNode && query.matches(key)) return found(nested);
            if (const NodePtr* hit = enter(*nested)) return found(*hit);
        } else if (detail::isListOfContainers(*value)) {
            stack.push_back(detail::levelOf(*value->list()));
        }
    }
    return nullptr;
}

} // namespace

Value Node::searchDict(std::string_view t, bool exact) const {
    return searchKeys(this, nullptr, false, keyQuery(t, exact, Entering::ByReadOnlyRule));
}

Value Node::searchArray(const ListPtr& list, std::string_view t, bool exact) const {
    if (!list) return {};
    return searchKeys(nullptr, list.get(), isReadOnly(), keyQuery(t, exact, Entering::ByReadOnlyRule));
}

Value Node::searchDict2(std::string_view t, bool exact) const {
    return searchKeys(this, nullptr, false, keyQuery(t, exact, Entering::Everything));
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
    return searchNodes(this, nullptr, NodeQuery{detail::lowercase(t), exact});
}

NodePtr Node::searchNodeArray(const ListPtr& list, std::string_view t, bool exact) const {
    if (!list) return nullptr;
    return searchNodes(nullptr, list.get(), NodeQuery{detail::lowercase(t), exact});
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
