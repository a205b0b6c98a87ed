// Deep copies that share no Node or list with their source. Unlike
// mutableChange, every kind of value is kept: numbers, nulls and the opaque
// objects (which are shared, as values the kit does not look into).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

namespace morvane {

NodePtr Node::deepCopyDictionary() const {
    NodePtr copy = Node::make();
    copy->reserve(entries_.size());
    for (const auto& [key, value] : entries_) {
        if (const NodePtr& nested = value.node())
            copy->appendUnchecked(key, Value(nested->deepCopyDictionary()));
        else if (const ListPtr& list = value.list())
            copy->appendUnchecked(key, Value(deepCopyArray(list)));
        else
            copy->appendUnchecked(key, value);
    }
    return copy;
}

ListPtr Node::deepCopyArray(const ListPtr& list) const {
    ListPtr copy = List::make();
    if (!list) return copy;
    copy->items().reserve(list->size());
    for (const Value& element : list->items()) {
        if (const NodePtr& nested = element.node())
            copy->items().emplace_back(nested->deepCopyDictionary());
        else if (const ListPtr& inner = element.list())
            copy->items().emplace_back(deepCopyArray(inner));
        else
            copy->items().push_back(element);
    }
    return copy;
}

} // namespace morvane
