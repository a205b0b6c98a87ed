#include <morvane/model/Node.h>
#include <morvane/model/detail/BlockPool.h>
#include <morvane/model/detail/Release.h>
#include <morvane/model/detail/Walk.h>

#include <algorithm>
#include <bit>
#include <functional>

namespace morvane {

namespace {
const Value kAbsent;

std::size_t hashKey(std::string_view key) {
    return std::hash<std::string_view>{}(key);
}
} // namespace

void refRetain(const Node* node) noexcept {
    node->retainRef();
}

void refRelease(const Node* node) noexcept {
    if (node->releaseRef()) delete node;
}

long refCount(const Node* node) noexcept {
    return node->refCount();
}

void* Node::operator new(std::size_t size) {
    return detail::allocateBlock(size);
}

void Node::operator delete(void* block, std::size_t size) noexcept {
    detail::freeBlock(block, size);
}

Node::Node(std::initializer_list<Entry> entries) {
    reserve(entries.size());
    for (const auto& [key, value] : entries)
        set(key, value);
}

Node::~Node() {
    // Most Nodes of a tree hold no Node or list: nothing can nest below them.
    if (std::none_of(entries_.begin(), entries_.end(),
                     [](const Entry& entry) { return entry.second.isNode() || entry.second.isList(); }))
        return;
    detail::ReleaseScope scope;
    if (scope.deep())
        for (Entry& entry : entries_)
            scope.defer(entry.second);
    entries_.clear(); // inside the scope
}

std::size_t Node::indexOf(std::string_view key) const {
    if (entries_.size() < kIndexThreshold) {
        for (std::size_t i = 0; i < entries_.size(); ++i)
            if (entries_[i].first == key) return i;
        return npos;
    }
    const std::size_t mask = indexSize_ - 1;
    for (std::size_t slot = hashKey(key) & mask;; slot = (slot + 1) & mask) {
        const std::uint32_t stored = index_[slot];
        if (stored == 0) return npos;
        if (entries_[stored - 1].first == key) return stored - 1;
    }
}

void Node::rebuildIndex() {
    if (entries_.size() < kIndexThreshold) {
        index_.reset();
        indexSize_ = 0;
        return;
    }
    // Twice the entries, rounded up to a power of two, keeps probes short.
    const std::size_t capacity = std::bit_ceil(std::max<std::size_t>(entries_.size() * 2, 32));
    index_ = std::make_unique<std::uint32_t[]>(capacity); // zeroed: every slot free
    indexSize_ = static_cast<std::uint32_t>(capacity);
    for (std::size_t i = 0; i < entries_.size(); ++i)
        indexInsert(i);
}

void Node::indexInsert(std::size_t position) {
    const std::size_t mask = indexSize_ - 1;
    std::size_t slot = hashKey(entries_[position].first) & mask;
    while (index_[slot] != 0)
        slot = (slot + 1) & mask;
    index_[slot] = static_cast<std::uint32_t>(position + 1);
}

const Value& Node::get(std::string_view key) const {
    const std::size_t i = indexOf(key);
    return i == npos ? kAbsent : entries_[i].second;
}

bool Node::set(std::string_view key, Value value) {
    if (readOnly_) return false;
    if (value.isAbsent()) {
        remove(key);
        return true;
    }
    const std::size_t i = indexOf(key);
    if (i != npos) {
        entries_[i].second = std::move(value);
        return true;
    }
    appendUnchecked(std::string(key), std::move(value));
    return true;
}

void Node::appendUnchecked(std::string key, Value value) {
    entries_.emplace_back(std::move(key), std::move(value));
    if (entries_.size() < kIndexThreshold) return;
    if (entries_.size() * 2 > indexSize_) {
        rebuildIndex(); // grows the table; amortised like the vector itself
        return;
    }
    indexInsert(entries_.size() - 1);
}

bool Node::remove(std::string_view key) {
    if (readOnly_) return false;
    const std::size_t i = indexOf(key);
    if (i == npos) return false;
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(i));
    // Positions after the removed entry moved; erasing was linear already.
    rebuildIndex();
    return true;
}

void Node::clear() {
    if (readOnly_) return;
    entries_.clear();
    index_.reset();
    indexSize_ = 0;
}

void Node::reserve(std::size_t count) {
    entries_.reserve(count);
}

std::vector<std::string> Node::keys() const {
    std::vector<std::string> out;
    out.reserve(entries_.size());
    for (const auto& entry : entries_)
        out.push_back(entry.first);
    return out;
}

NodePtr Node::shallowCopy() const {
    auto copy = Node::make();
    copy->entries_ = entries_;
    if (indexSize_ != 0) {
        copy->index_ = std::make_unique_for_overwrite<std::uint32_t[]>(indexSize_);
        std::copy_n(index_.get(), indexSize_, copy->index_.get());
        copy->indexSize_ = indexSize_;
    }
    return copy;
}

bool Node::equals(const Node& other) const {
    return detail::equalNodes(*this, other);
}

} // namespace morvane
