// Keyed access: identity of items, lookups by field, the stable insertion
// sorts, copies with selected keys, leaf tagging, path assembly and the
// translation dump.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Text.h>
#include <morvane/model/detail/Walk.h>

#include <algorithm>

namespace morvane {

using detail::compareText;

namespace {

const List& itemsOf(const ListPtr& list) {
    static const List none;
    return list ? *list : none;
}

// The shared rule of the insertion sorts: ascending, the first element that
// sorts after the new one; descending, the first that sorts before it. So an
// equal element stays in front of the new one and equal keys keep the order
// in which they were inserted.
template <typename TextAt>
long insertionIndex(std::size_t count, TextAt textAt, std::string_view text, bool ascend) {
    for (std::size_t i = 0; i < count; ++i) {
        const int order = compareText(textAt(i), text);
        if (ascend ? order > 0 : order < 0) return static_cast<long>(i);
    }
    return -1;
}

void insertAt(std::vector<Value>& items, long index, Value value) {
    if (index < 0)
        items.push_back(std::move(value));
    else
        items.insert(items.begin() + index, std::move(value));
}

std::string fieldText(const Value& element, std::string_view field) {
    const NodePtr& node = element.node();
    return node ? node->get(field).toText() : std::string();
}

} // namespace

NodePtr Node::self() const {
    if (isShared()) return NodePtr(const_cast<Node*>(this));
    return shallowCopy();
}

Value Node::findObj(std::string_view obj, std::string_view field) const {
    for (const auto& [key, value] : entries_) {
        const NodePtr& child = value.node();
        if (!child) continue;
        const std::string* text = child->get(field).text();
        if (text && *text == obj) return Value(key);
    }
    return {};
}

bool Node::alreadyExists(const NodePtr& target) const {
    for (const auto& [key, value] : entries_)
        if (value.isNode() && isSame(value.node(), target)) return true;
    return false;
}

bool Node::isSame(const NodePtr& a, const NodePtr& b) const {
    if (!a) return false;
    static constexpr std::string_view kIdentity[] = {"dscr", "icon", "icond", "item"};
    for (std::string_view key : kIdentity) {
        const Value& mine = a->get(key);
        // A key that `a` lacks makes the pair differ, even if `b` lacks it too.
        if (mine.isAbsent()) return false;
        if (!b || !(mine == b->get(key))) return false;
    }
    return true;
}

ListPtr Node::toSortArrayAtField(std::string_view field) const {
    std::vector<Value> sorted;
    std::vector<std::string> texts; // the sort texts beside the result
    for (const auto& [key, value] : entries_) {
        if (!value.isNode()) continue;
        std::string text = value.node()->get(field).toText();
        const long at = insertionIndex(
            texts.size(), [&](std::size_t i) -> std::string_view { return texts[i]; }, text, true);
        insertAt(sorted, at, value);
        if (at < 0)
            texts.push_back(std::move(text));
        else
            texts.insert(texts.begin() + at, std::move(text));
    }
    return List::make(std::move(sorted));
}

ListPtr Node::toSortArray() {
    return toSortArray(true);
}

ListPtr Node::toSortArray(bool ascend) {
    std::vector<Value> sorted;
    std::vector<std::string_view> keys;
    // The stamp overwrites any earlier "key"; a read-only child refuses it.
    for (const auto& [key, value] : entries_) {
        if (!value.isNode()) continue;
        value.node()->set("key", Value(key));
        const long at = insertionIndex(
            keys.size(), [&](std::size_t i) { return keys[i]; }, key, ascend);
        insertAt(sorted, at, value);
        if (at < 0)
            keys.push_back(key);
        else
            keys.insert(keys.begin() + at, key);
    }
    return List::make(std::move(sorted));
}

ListPtr Node::toSortArrayTxt(bool ascend) const {
    std::vector<Value> sorted;
    std::vector<std::string_view> keys;
    for (const auto& [key, value] : entries_) {
        const long at = insertionIndex(
            keys.size(), [&](std::size_t i) { return keys[i]; }, key, ascend);
        insertAt(sorted, at, Value(key + ": " + value.toText()));
        if (at < 0)
            keys.push_back(key);
        else
            keys.insert(keys.begin() + at, key);
    }
    return List::make(std::move(sorted));
}

long Node::findTxtIdx(const ListPtr& list, std::string_view val, bool ascend) const {
    const auto& items = itemsOf(list);
    return insertionIndex(
        items.size(), [&](std::size_t i) { return items[i].toText(); }, val, ascend);
}

long Node::findIdx(const ListPtr& list, const Value& val, std::string_view field, bool ascend) const {
    const auto& items = itemsOf(list);
    const std::string text = val.toText();
    return insertionIndex(
        items.size(), [&](std::size_t i) { return fieldText(items[i], field); }, text, ascend);
}

long Node::findTextInArray(const ListPtr& list, std::string_view txt, bool ascend) const {
    return findTxtIdx(list, txt, ascend);
}

NodePtr Node::removeExtra(const ListPtr& keys) const {
    NodePtr copy = shallowCopy();
    for (const Value& key : itemsOf(keys))
        if (const std::string* text = key.text()) copy->remove(*text);
    return copy;
}

NodePtr Node::copyObj(const Value& keys) const {
    if (!keys.isList()) return self();
    NodePtr copy = Node::make();
    for (const Value& key : *keys.list()) {
        const std::string* text = key.text();
        if (!text) continue;
        const Value& value = get(*text);
        if (!value.isAbsent()) copy->set(*text, value);
    }
    return copy;
}

NodePtr Node::copyObjExclude(const Value& keys) const {
    if (!keys.isList()) return self();
    return removeExtra(keys.list());
}

void Node::tagChildWithKey(std::string_view key, const Value& val) {
    auto isLeaf = [](const Node& node) {
        return std::all_of(node.entries_.begin(), node.entries_.end(),
                           [](const Entry& entry) { return entry.second.isText(); });
    };
    // Depth first with a stack of its own; only Nodes are entered, and a
    // leaf's new entry is a text, so the levels below stay as they were.
    if (isLeaf(*this)) {
        set(key, val);
        return;
    }
    std::vector<detail::Level> stack{detail::levelOf(*this)};
    while (!stack.empty()) {
        std::string_view childKey;
        const Value* value = stack.back().step(childKey);
        if (!value) {
            stack.pop_back();
        } else if (const NodePtr& nested = value->node()) {
            if (isLeaf(*nested))
                nested->set(key, val);
            else
                stack.push_back(detail::levelOf(*nested));
        }
    }
}

std::string Node::asmKey(const ListPtr& keys) const {
    std::string path;
    bool first = true;
    for (const Value& key : itemsOf(keys)) {
        const std::string name = key.toText();
        const Value& value = get(name);
        const std::string part = value.isText() || value.isNumber() ? value.toText() : name;
        if (!first) path += '/';
        path += part;
        first = false;
    }
    return path;
}

bool Node::areNull(const ListPtr& keys) const {
    for (const Value& key : itemsOf(keys))
        if (const std::string* text = key.text(); text && has(*text)) return false;
    return true;
}

bool Node::containsTxt() const {
    return std::any_of(entries_.begin(), entries_.end(),
                       [](const Entry& entry) { return entry.second.isText(); });
}

namespace {
void collectDumpLines(const Node& root, std::string_view separator, std::vector<Value>& lines) {
    std::vector<detail::Level> stack{detail::levelOf(root)};
    while (!stack.empty()) {
        std::string_view key;
        const Value* value = stack.back().step(key);
        if (!value) {
            stack.pop_back();
        } else if (value->isNode()) {
            stack.push_back(detail::levelOf(*value->node()));
        } else if (const std::string* text = value->text(); text && detail::containsText(key, separator)) {
            const auto pieces = detail::splitText(key, separator);
            std::string line(pieces[1]);
            line += " = ";
            line += *text;
            lines.emplace_back(std::move(line));
        }
    }
}
} // namespace

ListPtr Node::mutableToTextArray(std::string_view separator) const {
    std::vector<Value> lines;
    collectDumpLines(*this, separator, lines);
    return List::make(std::move(lines));
}

std::string Node::mutableToText(std::string_view separator) const {
    std::vector<Value> lines;
    collectDumpLines(*this, separator, lines);
    std::stable_sort(lines.begin(), lines.end(),
                     [](const Value& a, const Value& b) { return compareText(*a.text(), *b.text()) < 0; });
    std::string out;
    for (const Value& line : lines) {
        out += *line.text();
        out += '\n';
    }
    return out;
}

} // namespace morvane
