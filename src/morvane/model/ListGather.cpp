// Gathering hosted on the list; the walks live in NodeGather.cpp.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Gather.h>

namespace morvane {

std::string List::gatherText(const NodePtr& node, std::string_view k, std::string_view front,
                             std::string_view back) const {
    std::string out;
    if (node) detail::gatherNode(*node, {k, front, back, true}, out);
    return out;
}

std::string List::gatherArrayText(std::string_view k, std::string_view front, std::string_view back) const {
    std::string out;
    detail::gatherList(*this, {k, front, back, true}, out);
    return out;
}

double List::gatherFloat(const NodePtr& node, std::string_view k) const {
    return node ? detail::sumNode(*node, k) : 0.0;
}

double List::gatherArrayFloat(std::string_view k) const {
    return detail::sumList(*this, k);
}

} // namespace morvane
