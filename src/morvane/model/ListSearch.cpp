// Content search hosted on the list: the same walk as Node::searchContent.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

namespace morvane {

ListPtr List::self() const {
    if (isShared()) return ListPtr(const_cast<List*>(this));
    return shallowCopy();
}

NodePtr List::contentsearch(const NodePtr& node, std::string_view field, std::string_view c) const {
    return node ? node->searchContent(field, c) : nullptr;
}

NodePtr List::arraySearch(std::string_view field, std::string_view c) const {
    for (const Value& element : items_) {
        NodePtr found;
        if (const NodePtr& node = element.node())
            found = contentsearch(node, field, c);
        else if (const ListPtr& inner = element.list(); element.listMayHoldContainers())
            found = inner->arraySearch(field, c);
        if (found) return found;
    }
    return nullptr;
}

} // namespace morvane
