#pragma once
// Forward declarations of the NodeTree types, for headers that only pass them on.

#include <morvane/model/Ref.h>

namespace morvane {

class Value;
class Node;
class List;
using NodePtr = Ref<Node>;
using ListPtr = Ref<List>;

// The reference counting behind NodePtr and ListPtr (see Ref.h).
void refRetain(const Node* node) noexcept;
void refRelease(const Node* node) noexcept;
long refCount(const Node* node) noexcept;
void refRetain(const List* list) noexcept;
void refRelease(const List* list) noexcept;
long refCount(const List* list) noexcept;

} // namespace morvane
