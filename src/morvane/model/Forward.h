#pragma once
// Forward declarations of the NodeTree types, for headers that only pass them on.

#include <memory>

namespace morvane {

class Value;
class Node;
class List;
using NodePtr = std::shared_ptr<Node>;
using ListPtr = std::shared_ptr<List>;

} // namespace morvane
