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
    // A snapshot of the keys keeps the walk safe while entries go.
    for (const std::string& key : keys()) {
        const Value value = get(key);
        if (const NodePtr& nested = value.node()) {
            if (detail::containsText(key, word))
                remove(key);
            else
                nested->mutablePurge(word);
        } else if (value.isList()) {
            mutablePurgeArray(value.list(), word);
        } else if (value.isText() && detail::containsText(key, word)) {
            remove(key);
        }
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
