// Deep copies that share no Node or list with their source. Unlike
// mutableChange, every kind of value is kept: numbers, nulls and the opaque
// objects (which are shared, as values the kit does not look into).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <morvane/model/detail/Walk.h>

#include <algorithm>

namespace morvane {

namespace {
// Every entry and element is kept at its position, so a copied Node's key
// index is the source's: copying it beats hashing every key of a large Node
// again, and the entries are then appended without touching it.
struct DeepCopyRules {
    static constexpr bool kDropsEmpty = false;

    bool keeps(std::string_view, const Value&, bool) const { return true; }
    NodePtr startNode(const Node& source) const {
        NodePtr copy = Node::make();
        copy->reserve(source.size());
        detail::TreeAccess::copyIndex(source, *copy);
        return copy;
    }
    ListPtr startList(const List& source) const { return List::withCapacity(source.size()); }
    void addEntry(Node& copy, std::string_view key, Value value) const {
        detail::TreeAccess::appendRaw(copy, key, std::move(value));
    }
    void finishNode(const Node&, Node&, detail::NoContext) const {}
    detail::NoContext childContext(detail::NoContext, std::string_view, std::size_t, bool) const {
        return {};
    }
};
} // namespace

NodePtr Node::deepCopyDictionary() const {
    DeepCopyRules rules;
    return detail::TreeCopy<DeepCopyRules, detail::NoContext>(rules).node(*this, {});
}

ListPtr Node::deepCopyArray(const ListPtr& list) const {
    if (!list) return List::make();
    DeepCopyRules rules;
    return detail::TreeCopy<DeepCopyRules, detail::NoContext>(rules).list(*list, {});
}

} // namespace morvane
