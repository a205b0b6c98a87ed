// Copies that leave things out: without one key anywhere (removeKey), or
// without the records that lack a wanted field (clean). Inside lists, a copy
// that came out empty is dropped, so no empty records are left behind; texts
// and numbers in lists have no entries and are kept as they are.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>
#include <morvane/model/detail/Walk.h>

namespace morvane {

namespace {
// Node::ok for a Node in hand.
bool holdsWanted(const Node& node, std::string_view t) {
    for (const auto& [key, value] : node) {
        if (value.isList() || value.isNode()) return true;
        if (value.isText() && detail::containsText(key, t)) return true;
    }
    return false;
}

// Copies that leave entries out; inside lists a copy that came out empty is
// dropped.
struct LeaveOutRules {
    static constexpr bool kDropsEmpty = true;

    NodePtr startNode(const Node& source) const {
        NodePtr copy = Node::make();
        copy->reserve(source.size());
        return copy;
    }
    ListPtr startList(const List& source) const { return List::withCapacity(source.size()); }
    void addEntry(Node& copy, std::string_view key, Value value) const {
        copy.appendUnchecked(std::string(key), std::move(value));
    }
    detail::NoContext childContext(detail::NoContext, std::string_view, std::size_t, bool) const {
        return {};
    }
};

struct RemoveKeyRules : LeaveOutRules {
    std::string_view k;

    // Leaving the entry out is the same as copying it and removing it after.
    bool keeps(std::string_view key, const Value&, bool inList) const { return inList || key != k; }
    void finishNode(const Node&, Node&, detail::NoContext) const {}
};

struct CleanRules : LeaveOutRules {
    std::string_view t;

    bool keeps(std::string_view, const Value&, bool) const { return true; }
    void finishNode(const Node&, Node& copy, detail::NoContext) const {
        if (!holdsWanted(copy, t)) copy.clear();
    }
};
} // namespace

NodePtr Node::removeKey(std::string_view k) const {
    RemoveKeyRules rules{{}, k};
    return detail::TreeCopy<RemoveKeyRules, detail::NoContext>(rules).node(*this, {});
}

ListPtr Node::removeArray(const ListPtr& list, std::string_view k) const {
    if (!list) return List::make();
    RemoveKeyRules rules{{}, k};
    return detail::TreeCopy<RemoveKeyRules, detail::NoContext>(rules).list(*list, {});
}

NodePtr Node::clean(std::string_view t) const {
    CleanRules rules{{}, t};
    return detail::TreeCopy<CleanRules, detail::NoContext>(rules).node(*this, {});
}

ListPtr Node::cleanArray(const ListPtr& list, std::string_view t) const {
    if (!list) return List::make();
    CleanRules rules{{}, t};
    return detail::TreeCopy<CleanRules, detail::NoContext>(rules).list(*list, {});
}

bool Node::ok(const NodePtr& node, std::string_view t) const {
    return node && holdsWanted(*node, t);
}

} // namespace morvane
