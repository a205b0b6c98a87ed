#pragma once
// A Node: a map from text keys to Values that yields its keys in insertion
// order (so every result is reproducible and follows the JSON source order).
// Nodes are shared by reference (NodePtr). Setting the absent value under a key
// removes the key. A Node read from a read-only source carries the read-only
// flag; the searches treat such Nodes by their own rules, and the changing
// operations leave them unchanged.
//
// The NodeTree operations are members, grouped by theme below; each group is
// implemented in the source file named after it.

#include <morvane/model/Value.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace morvane {

class Node : public std::enable_shared_from_this<Node> {
  public:
    using Entry = std::pair<std::string, Value>;
    using const_iterator = std::vector<Entry>::const_iterator;

    Node() = default;
    Node(std::initializer_list<Entry> entries);
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    static NodePtr make() { return std::make_shared<Node>(); }
    static NodePtr make(std::initializer_list<Entry> entries) { return std::make_shared<Node>(entries); }

    // ---- The map ------------------------------------------------------------

    // The value under a key; the absent value when there is none.
    const Value& get(std::string_view key) const;
    const Value& operator[](std::string_view key) const { return get(key); }
    bool has(std::string_view key) const { return indexOf(key) != npos; }
    // Sets a value; the absent value removes the key. A new key goes last, an
    // existing key keeps its place. Returns false (and changes nothing) on a
    // read-only Node.
    bool set(std::string_view key, Value value);
    bool remove(std::string_view key);
    void clear();
    // Grows the entry storage ahead of a known number of entries.
    void reserve(std::size_t count);

    std::size_t size() const { return entries_.size(); }
    bool empty() const { return entries_.empty(); }
    const_iterator begin() const { return entries_.begin(); }
    const_iterator end() const { return entries_.end(); }
    const std::vector<Entry>& entries() const { return entries_; }
    // A copy of the keys, for walks that change the Node as they go.
    std::vector<std::string> keys() const;

    bool isReadOnly() const { return readOnly_; }
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }

    // Shallow copy: the same keys and values (nested Nodes and lists shared).
    NodePtr shallowCopy() const;

    // Content equality, deep (see Value::operator==).
    bool equals(const Node& other) const;

    // Appends an entry without looking for an existing key. Only for builders
    // that know the key is new (the JSON reader checks duplicates itself).
    void appendUnchecked(std::string key, Value value);

  private:
    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    // Small Nodes are searched linearly; from this size on a hash index of
    // entry positions is kept beside the entries.
    static constexpr std::size_t kIndexThreshold = 12;

    std::size_t indexOf(std::string_view key) const;
    void rebuildIndex();
    void indexInsert(std::size_t position);

    std::vector<Entry> entries_;
    // Open-addressing table of entry positions + 1 (0 marks a free slot);
    // empty while the Node is small. Kept up to date by every change, so that
    // reading a Node never writes to it.
    std::vector<std::uint32_t> index_;
    bool readOnly_ = false;
};

} // namespace morvane
