// Copies that leave things out: without one key anywhere (removeKey), or
// without the records that lack a wanted field (clean). Inside lists, a copy
// that came out empty is dropped, so no empty records are left behind; texts
// and numbers in lists have no entries and are kept as they are.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>

namespace morvane {

namespace {
// True for a Node or list that came out of a copy with nothing in it.
bool isEmptyContainer(const Value& value) {
    if (const NodePtr& node = value.node()) return node->empty();
    if (const ListPtr& list = value.list()) return list->empty();
    return false;
}
} // namespace

NodePtr Node::removeKey(std::string_view k) const {
    NodePtr copy = Node::make();
    copy->reserve(entries_.size());
    for (const auto& [key, value] : entries_) {
        if (key == k) continue; // the same as copying it and removing it after
        if (const NodePtr& nested = value.node())
            copy->appendUnchecked(key, Value(nested->removeKey(k)));
        else if (const ListPtr& list = value.list())
            copy->appendUnchecked(key, Value(removeArray(list, k)));
        else
            copy->appendUnchecked(key, value);
    }
    return copy;
}

ListPtr Node::removeArray(const ListPtr& list, std::string_view k) const {
    if (!list) return List::make();
    ListPtr copy = List::withCapacity(list->size());
    for (const Value& element : *list) {
        Value copied;
        if (const NodePtr& nested = element.node())
            copied = Value(nested->removeKey(k));
        else if (const ListPtr& inner = element.list())
            copied = Value(removeArray(inner, k));
        else
            copied = element;
        if (!isEmptyContainer(copied)) copy->items().push_back(std::move(copied));
    }
    return copy;
}

NodePtr Node::clean(std::string_view t) const {
    NodePtr copy = Node::make();
    copy->reserve(entries_.size());
    for (const auto& [key, value] : entries_) {
        if (const NodePtr& nested = value.node())
            copy->appendUnchecked(key, Value(nested->clean(t)));
        else if (const ListPtr& list = value.list())
            copy->appendUnchecked(key, Value(cleanArray(list, t)));
        else
            copy->appendUnchecked(key, value);
    }
    if (!ok(copy, t)) copy->clear();
    return copy;
}

ListPtr Node::cleanArray(const ListPtr& list, std::string_view t) const {
    if (!list) return List::make();
    ListPtr copy = List::withCapacity(list->size());
    for (const Value& element : *list) {
        Value copied;
        if (const NodePtr& nested = element.node())
            copied = Value(nested->clean(t));
        else if (const ListPtr& inner = element.list())
            copied = Value(cleanArray(inner, t));
        else
            copied = element;
        if (!isEmptyContainer(copied)) copy->items().push_back(std::move(copied));
    }
    return copy;
}

bool Node::ok(const NodePtr& node, std::string_view t) const {
    if (!node) return false;
    for (const auto& [key, value] : *node) {
        if (value.isList() || value.isNode()) return true;
        if (value.isText() && detail::containsText(key, t)) return true;
    }
    return false;
}

} // namespace morvane
