// Purging: removes in place the working entries the kit adds to a tree (the
// "key" stamps, the "$" entries of choice lists) before it is stored or
// handed on. Lists themselves are never removed, only entered.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>

namespace morvane {

void Node::mutablePurge() {
    static constexpr std::string_view kPurgeList[] = {"$", "key"};
    for (std::string_view word : kPurgeList)
        mutablePurge(word);
}

void Node::mutablePurge(std::string_view word) {
    // Entries are visited by position; after a removal the next entry has
    // moved into the same position. (Copying the keys first, as a snapshot,
    // made purging a large tree several times slower.)
    std::size_t i = 0;
    while (i < entries_.size()) {
        const auto& [key, value] = entries_[i];
        // Only Node and text entries can go, so only their keys are searched:
        // most entries of a feed or catalogue are numbers, flags and nulls.
        if (const NodePtr& nested = value.node()) {
            if (detail::containsText(key, word)) {
                if (remove(key)) continue;
            } else {
                nested->mutablePurge(word);
            }
        } else if (const ListPtr& list = value.list()) {
            mutablePurgeArray(list, word);
        } else if (value.isText() && detail::containsText(key, word) && remove(key)) {
            continue;
        }
        ++i;
    }
}

void Node::mutablePurgeArray(const ListPtr& list, std::string_view word) {
    if (!list) return;
    for (const Value& element : list->items()) {
        if (const NodePtr& nested = element.node())
            nested->mutablePurge(word);
        else if (element.isList())
            mutablePurgeArray(element.list(), word);
    }
}

} // namespace morvane
