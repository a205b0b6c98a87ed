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
    // contentsearch of each Node element, nested lists in turn, is the
    // content search over this list (the receiver Node is not read).
    return Node().searchArrayContent(self(), field, c);
}

} // namespace morvane
