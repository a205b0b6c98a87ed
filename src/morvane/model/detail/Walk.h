#pragma once
// One level of a tree walk that keeps its own stack (internal).
//
// An application can build a tree far deeper than the JSON reader accepts (a
// chain of a million Nodes, each under a key of the one before), so no walk
// of the model calls itself per level: each keeps a vector of levels, pushes
// one where the recursive form would call itself and pops it where that call
// would return. A level is the entries of a Node or the elements of a list
// and the position reached; walks that carry more per level derive from it.
// Levels hold plain pointers: the walk's caller keeps the tree alive, and a
// walk that changes the tree changes only the entries of the level on top.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvane::detail {

// Levels a walk's stack makes room for at once: most trees apps receive are
// shallower, so a walk over a small document grows its stack just once.
inline constexpr std::size_t kUsualDepth = 32;

// True for a list that holds a Node or a list: the only lists a walk enters.
inline bool isListOfContainers(const Value& value) {
    const ListPtr& list = value.list();
    return list && list->holdsContainers();
}

struct Level {
    const Node* node = nullptr;
    const List* list = nullptr;
    std::size_t next = 0;

    // The value of the next entry or element (its key in `key`; "" in a
    // list), or nullptr past the last one.
    const Value* step(std::string_view& key) noexcept {
        if (node) {
            if (next >= node->size()) return nullptr;
            const auto& entry = node->entries()[next++];
            key = entry.first;
            return &entry.second;
        }
        if (next >= list->size()) return nullptr;
        key = {};
        return &list->at(next++);
    }
};

// Like step, except that in a list it passes by every element that is not a
// Node or a list holding one, in a tight loop: for the walks that only enter
// containers, a geometry file's long lists of points cost little more than a
// scan.
inline const Value* stepToContainer(Level& level, std::string_view& key) noexcept {
    if (level.node) return level.step(key);
    const std::size_t size = level.list->size();
    const Value* elements = level.list->begin();
    while (level.next < size) {
        const Value& element = elements[level.next++];
        if (element.isNode() || isListOfContainers(element)) {
            key = {};
            return &element;
        }
    }
    return nullptr;
}

inline Level levelOf(const Node& node) noexcept {
    return Level{&node, nullptr, 0};
}

inline Level levelOf(const List& list) noexcept {
    return Level{nullptr, &list, 0};
}

// Content equality (see Value::operator==), pair by pair from a list of
// pairs still to compare rather than one call per level.
bool equalNodes(const Node& a, const Node& b);
bool equalLists(const List& a, const List& b);
bool equalValues(const Value& a, const Value& b);

// What the copies below need of a Node beyond its public operations.
struct TreeAccess {
    // Appends an entry and leaves the key index alone (the copy rebuilds or
    // copies it).
    static void appendRaw(Node& node, std::string_view key, Value value) {
        node.entries_.emplace_back(std::string(key), std::move(value));
    }
    // Makes `copy`'s key index the source's: for copies that keep every
    // entry at its position.
    static void copyIndex(const Node& source, Node& copy) {
        if (source.indexSize_ == 0) return;
        copy.index_ = std::make_unique_for_overwrite<std::uint32_t[]>(source.indexSize_);
        std::copy_n(source.index_.get(), source.indexSize_, copy.index_.get());
        copy.indexSize_ = source.indexSize_;
    }
    static void rebuildIndex(Node& node) { node.rebuildIndex(); }
    // A list's elements, for the model's builders and sorts.
    static auto& items(List& list) { return list.items_; }
};

// A copy of a tree, built top down: a nested container's copy is added to
// its parent's copy when the walk reaches it, and filled while its level is
// on the stack. The rules decide the rest:
//   bool keeps(std::string_view key, const Value& value, bool inList)
//   NodePtr startNode(const Node& source); ListPtr startList(const List& source)
//   void addEntry(Node& copy, std::string_view key, Value value)
//   void finishNode(const Node& source, Node& copy, const Context& context)
//   optionally void finishLevel(const Context& context), after any level
//   Context childContext(const Context& parent, std::string_view key,
//                        std::size_t index, bool inList)
//   static constexpr bool kDropsEmpty: a copy that came out empty is taken
//   out of the list that holds it.
// `Context` is what a level passes down (a path, or nothing).
template <typename Rules, typename Context> class TreeCopy {
  public:
    explicit TreeCopy(Rules& rules) : rules_(rules) {}

    NodePtr node(const Node& source, Context context) {
        NodePtr copy = rules_.startNode(source);
        stack_.push_back({levelOf(source), copy.get(), nullptr, std::move(context)});
        run();
        return copy;
    }

    ListPtr list(const List& source, Context context) {
        ListPtr copy = rules_.startList(source);
        stack_.push_back({levelOf(source), nullptr, copy.get(), std::move(context)});
        run();
        return copy;
    }

  private:
    struct CopyLevel : Level {
        Node* nodeCopy;
        List* listCopy;
        Context context;
    };

    void add(CopyLevel& level, std::string_view key, Value value) {
        if (level.nodeCopy)
            rules_.addEntry(*level.nodeCopy, key, std::move(value));
        else
            level.listCopy->push(std::move(value));
    }

    void run() {
        while (!stack_.empty()) {
            CopyLevel& level = stack_.back();
            std::string_view key;
            const Value* value = level.step(key);
            if (!value) {
                finish();
                continue;
            }
            const bool inList = level.list != nullptr;
            if (!rules_.keeps(key, *value, inList)) continue;
            if (const NodePtr& nested = value->node(); nested && isFlat(*nested)) {
                // Most Nodes of a tree hold nothing to go into: copied here.
                Context context = rules_.childContext(level.context, key, level.next - 1, inList);
                NodePtr copy = rules_.startNode(*nested);
                for (const auto& [entryKey, entry] : *nested) {
                    if (!rules_.keeps(entryKey, entry, false)) continue;
                    if (const ListPtr& flat = entry.list())
                        rules_.addEntry(*copy, entryKey, Value(flatCopy(*flat)));
                    else
                        rules_.addEntry(*copy, entryKey, entry);
                }
                rules_.finishNode(*nested, *copy, context);
                if constexpr (requires { rules_.finishLevel(context); }) rules_.finishLevel(context);
                if constexpr (Rules::kDropsEmpty) {
                    if (inList && copy->empty()) continue;
                }
                add(level, key, Value(std::move(copy)));
            } else if (nested) {
                NodePtr copy = rules_.startNode(*nested);
                Node* target = copy.get();
                Context context = rules_.childContext(level.context, key, level.next - 1, inList);
                add(level, key, Value(std::move(copy)));
                stack_.push_back({levelOf(*nested), target, nullptr, std::move(context)});
            } else if (const ListPtr& inner = value->list(); inner && !inner->holdsContainers()) {
                // Nothing in it to go into: copied here, without a level.
                ListPtr copy = flatCopy(*inner);
                if constexpr (Rules::kDropsEmpty) {
                    if (inList && copy->empty()) continue;
                }
                add(level, key, Value(std::move(copy)));
            } else if (const ListPtr& inner = value->list()) {
                ListPtr copy = rules_.startList(*inner);
                List* target = copy.get();
                Context context = rules_.childContext(level.context, key, level.next - 1, inList);
                add(level, key, Value(std::move(copy)));
                stack_.push_back({levelOf(*inner), nullptr, target, std::move(context)});
            } else {
                add(level, key, *value);
            }
        }
    }

    // A Node holding no Node and no list that holds one.
    static bool isFlat(const Node& node) {
        for (const auto& entry : node)
            if (entry.second.isNode() || isListOfContainers(entry.second)) return false;
        return true;
    }

    // The copy of a list that holds no Node or list.
    ListPtr flatCopy(const List& source) {
        ListPtr copy = rules_.startList(source);
        for (const Value& element : source)
            if (rules_.keeps({}, element, true)) copy->push(element);
        return copy;
    }

    void finish() {
        CopyLevel done = std::move(stack_.back());
        stack_.pop_back();
        if (done.nodeCopy) rules_.finishNode(*done.node, *done.nodeCopy, done.context);
        if constexpr (requires { rules_.finishLevel(done.context); }) rules_.finishLevel(done.context);
        if constexpr (Rules::kDropsEmpty) {
            if (stack_.empty() || !stack_.back().listCopy) return;
            const bool empty = done.nodeCopy ? done.nodeCopy->empty() : done.listCopy->empty();
            List& parent = *stack_.back().listCopy;
            if (empty) parent.erase(parent.size() - 1);
        }
    }

    Rules& rules_;
    std::vector<CopyLevel> stack_;
};

// For copies that pass nothing down.
struct NoContext {};

} // namespace morvane::detail
