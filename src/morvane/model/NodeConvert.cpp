// Conversion copies: a mutable NodeTree from any tree, plain (mutableChange)
// or with every text-holding Node stamped with its path (mutableKey).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <morvane/model/detail/Walk.h>

#include <string>

namespace morvane {

namespace {

// The conversion copies keep only texts, Nodes and lists. A geometry file is
// mostly lists of numbers, whose copies stay empty: reserving the source's
// size would allocate a buffer for each of them that is never used.
bool kept(const Value& value) {
    return value.isText() || value.isNode() || value.isList();
}

std::size_t keptCount(const List& list) {
    std::size_t count = 0;
    for (const Value& element : list)
        count += kept(element);
    return count;
}

// The same for a Node: a record of numbers and flags becomes an empty Node.
std::size_t keptCount(const Node& node) {
    std::size_t count = 0;
    for (const auto& entry : node)
        count += kept(entry.second);
    return count;
}

// The conversion copies keep texts, Nodes and lists, and reserve only for
// what they keep.
struct ConvertRules {
    static constexpr bool kDropsEmpty = false;

    bool keeps(std::string_view, const Value& value, bool) const { return kept(value); }
    NodePtr startNode(const Node& source) const {
        NodePtr copy = Node::make();
        if (const std::size_t count = keptCount(source)) copy->reserve(count);
        return copy;
    }
    ListPtr startList(const List& source) const { return List::withCapacity(keptCount(source)); }
};

// mutableChange: the keys are the source's, so they are distinct; the index
// (of a large copy) is built once at its final size rather than grown key by
// key.
struct ChangeRules : ConvertRules {
    void addEntry(Node& copy, std::string_view key, Value value) const {
        detail::TreeAccess::appendRaw(copy, key, std::move(value));
    }
    void finishNode(const Node&, Node& copy, detail::NoContext) const {
        detail::TreeAccess::rebuildIndex(copy);
    }
    detail::NoContext childContext(detail::NoContext, std::string_view, std::size_t, bool) const {
        return {};
    }
};

// mutableKey: the path of the level being filled is kept in one buffer that
// grows by "/key" on the way down and is cut back on the way up (a path per
// level would cost the square of the depth). A copied Node whose source
// holds a text is stamped with its path under "key" once it is filled, so
// the stamp goes after its other entries (or replaces a "key" text in place).
struct KeyLevel {
    std::size_t pathEnd = 0;   // this level's path: path[0, pathEnd)
    std::size_t parentEnd = 0; // where the buffer goes back to after it
    bool stamped = false;      // the root is not stamped
    bool indexed = false;      // an element of a list: stamped path[index]
    std::size_t index = 0;
};

struct KeyRules : ConvertRules {
    std::string path;

    void addEntry(Node& copy, std::string_view key, Value value) const {
        copy.appendUnchecked(std::string(key), std::move(value));
    }
    KeyLevel childContext(const KeyLevel& parent, std::string_view key, std::size_t index, bool inList) {
        // Nested Nodes of an element take the list's path, not the indexed
        // one: only the element itself is named by its position.
        if (inList) return {parent.pathEnd, parent.pathEnd, true, true, index};
        path += '/';
        path += key;
        return {path.size(), parent.pathEnd, true, false, 0};
    }
    void finishNode(const Node& source, Node& copy, const KeyLevel& level) const {
        if (!level.stamped || !source.containsTxt()) return;
        std::string stamp = path.substr(0, level.pathEnd);
        if (level.indexed) stamp += "[" + std::to_string(level.index) + "]";
        copy.set("key", Value(std::move(stamp)));
    }
    void finishLevel(const KeyLevel& level) { path.resize(level.parentEnd); }
};

} // namespace

NodePtr Node::mutableKey(std::string_view path) const {
    KeyRules rules{{}, std::string(path)};
    return detail::TreeCopy<KeyRules, KeyLevel>(rules).node(*this, {path.size(), path.size()});
}

ListPtr Node::mutableArrayChange(const ListPtr& list, std::string_view path) const {
    if (!list) return List::make();
    KeyRules rules{{}, std::string(path)};
    return detail::TreeCopy<KeyRules, KeyLevel>(rules).list(*list, {path.size(), path.size()});
}

NodePtr Node::mutableChange() const {
    ChangeRules rules;
    return detail::TreeCopy<ChangeRules, detail::NoContext>(rules).node(*this, {});
}

ListPtr Node::mutableArrayChange(const ListPtr& list) const {
    if (!list) return List::make();
    ChangeRules rules;
    return detail::TreeCopy<ChangeRules, detail::NoContext>(rules).list(*list, {});
}

} // namespace morvane
