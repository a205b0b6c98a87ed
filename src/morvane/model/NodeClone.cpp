// Deep copies that share no Node or list with their source. Unlike
// mutableChange, every kind of value is kept: numbers, nulls and the opaque
// objects (which are shared, as values the kit does not look into).

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <algorithm>

namespace morvane {

NodePtr Node::deepCopyDictionary() const {
    NodePtr copy = Node::make();
    copy->entries_.reserve(entries_.size());
    for (const auto& [key, value] : entries_) {
        if (const NodePtr& nested = value.node())
            copy->entries_.emplace_back(key, Value(nested->deepCopyDictionary()));
        else if (const ListPtr& list = value.list())
            copy->entries_.emplace_back(key, Value(deepCopyArray(list)));
        else
            copy->entries_.emplace_back(key, value);
    }
    // Every entry is kept at its position, so the key index is the same one:
    // copying it beats hashing every key of a large Node again.
    if (indexSize_ != 0) {
        copy->index_ = std::make_unique_for_overwrite<std::uint32_t[]>(indexSize_);
        std::copy_n(index_.get(), indexSize_, copy->index_.get());
        copy->indexSize_ = indexSize_;
    }
    return copy;
}

ListPtr Node::deepCopyArray(const ListPtr& list) const {
    if (!list) return List::make();
    ListPtr copy = List::withCapacity(list->size());
    for (const Value& element : *list) {
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
