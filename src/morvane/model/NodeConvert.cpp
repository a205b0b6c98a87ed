// Conversion copies: a mutable NodeTree from any tree, plain (mutableChange)
// or with every text-holding Node stamped with its path (mutableKey).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

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

} // namespace

NodePtr Node::mutableKey(std::string_view path) const {
    NodePtr result = Node::make();
    if (const std::size_t count = keptCount(*this)) result->reserve(count);
    for (const auto& [key, value] : entries_) {
        if (const NodePtr& child = value.node()) {
            std::string childPath(path);
            childPath += '/';
            childPath += key;
            NodePtr copy = child->mutableKey(childPath);
            if (child->containsTxt()) copy->set("key", Value(std::move(childPath)));
            result->appendUnchecked(key, Value(std::move(copy)));
        } else if (value.isList()) {
            std::string childPath(path);
            childPath += '/';
            childPath += key;
            result->appendUnchecked(key, Value(mutableArrayChange(value.list(), childPath)));
        } else if (value.isText()) {
            result->appendUnchecked(key, value);
        }
    }
    return result;
}

ListPtr Node::mutableArrayChange(const ListPtr& list, std::string_view path) const {
    if (!list) return List::make();
    ListPtr result = List::withCapacity(keptCount(*list));
    long index = 0;
    for (const Value& element : *list) {
        if (const NodePtr& node = element.node()) {
            // Nested Nodes of an element take the list's path, not the indexed
            // one: only the element itself is named by its position.
            NodePtr copy = node->mutableKey(path);
            if (node->containsTxt())
                copy->set("key", Value(std::string(path) + "[" + std::to_string(index) + "]"));
            result->items().emplace_back(std::move(copy));
        } else if (element.isList()) {
            result->items().emplace_back(mutableArrayChange(element.list(), path));
        } else if (element.isText()) {
            result->items().push_back(element);
        }
        ++index;
    }
    return result;
}

NodePtr Node::mutableChange() const {
    NodePtr result = Node::make();
    if (const std::size_t count = keptCount(*this)) result->reserve(count);
    for (const auto& [key, value] : entries_) {
        if (value.isNode())
            result->entries_.emplace_back(key, Value(value.node()->mutableChange()));
        else if (value.isList())
            result->entries_.emplace_back(key, Value(mutableArrayChange(value.list())));
        else if (value.isText())
            result->entries_.emplace_back(key, value);
    }
    // The keys are the source's, so they are distinct; the index (of a large
    // copy) is built once at its final size rather than grown key by key.
    result->rebuildIndex();
    return result;
}

ListPtr Node::mutableArrayChange(const ListPtr& list) const {
    if (!list) return List::make();
    ListPtr result = List::withCapacity(keptCount(*list));
    for (const Value& element : *list) {
        if (element.isNode())
            result->items().emplace_back(element.node()->mutableChange());
        else if (element.isList())
            result->items().emplace_back(mutableArrayChange(element.list()));
        else if (element.isText())
            result->items().push_back(element);
    }
    return result;
}

} // namespace morvane
