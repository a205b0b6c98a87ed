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

#include <morvane/model/BlockAllocator.h>
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

namespace detail {
struct TreeAccess;
}

class Node : public RefCounted {
  public:
    using Entry = std::pair<std::string, Value>;
    using Entries = std::vector<Entry, detail::BlockAllocator<Entry>>;
    using const_iterator = Entries::const_iterator;

    Node() = default;
    Node(std::initializer_list<Entry> entries);
    // Releases what the Node held without nesting a destructor per level of
    // the tree (see detail/Release.h).
    ~Node();

    // Nodes come from the pool of tree blocks (see detail/BlockPool.h).
    static void* operator new(std::size_t size);
    static void operator delete(void* block, std::size_t size) noexcept;

    static NodePtr make() { return NodePtr(new Node(), NodePtr::Adopt{}); }
    static NodePtr make(std::initializer_list<Entry> entries) {
        return NodePtr(new Node(entries), NodePtr::Adopt{});
    }

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
    const Entries& entries() const { return entries_; }
    // A copy of the keys, for walks that change the Node as they go.
    std::vector<std::string> keys() const;

    bool isReadOnly() const { return readOnly_; }
    void setReadOnly(bool readOnly) { readOnly_ = readOnly ? 1 : 0; }

    // Shallow copy: the same keys and values (nested Nodes and lists shared).
    NodePtr shallowCopy() const;

    // Content equality, deep (see Value::operator==).
    bool equals(const Node& other) const;

    // Appends an entry without looking for an existing key. Only for builders
    // that know the key is new (the JSON reader checks duplicates itself).
    void appendUnchecked(std::string key, Value value);

    // =========================================================================
    // The NodeTree operations. Conventions shared by all of them:
    // - "Nothing" is the absent Value for operations that may give any kind of
    //   value (or a text), and a null NodePtr / ListPtr for operations whose
    //   result is always a Node / always a list.
    // - A null NodePtr or ListPtr argument reads as an empty Node or list.
    // - Texts compare ordinally by UTF-16 code unit: the UTF-8 texts sort as
    //   their UTF-16 forms would (byte order differs only between U+E000..
    //   U+FFFF and the supplementary planes; see detail/Text.h);
    //   "exact" without more is case-sensitive; "case-free" compares the
    //   lowercased texts; "like" means the first text, lowercased, contains the
    //   second, lowercased (an empty second text is in no text).
    // - Walks go depth first in iteration (insertion) order and stop at the
    //   first hit. They keep their own stack, so a tree of any depth can be
    //   walked, copied, compared and released (the JSON reader caps nesting
    //   at 512 levels; an application can build deeper trees itself).
    // - Operations that change a tree in place leave read-only Nodes and lists
    //   unchanged (their set/remove refuse); copies are always mutable.
    // - An operation that returns "the receiver itself" returns the shared
    //   Node; a Node that is not owned by a NodePtr returns a shallow copy.
    // =========================================================================

    // ---- Keyed access (NodeData.cpp) ---------------------------------------

    // Key of the first child Node whose value under `field` equals `obj`
    // exactly (a text); nothing if none.
    Value findObj(std::string_view obj, std::string_view field) const;
    // True if some child Node isSame(child, target).
    bool alreadyExists(const NodePtr& target) const;
    // True if `a` holds "dscr", "icon", "icond" and "item" and `b` holds equal
    // values under each. The receiver is not read.
    bool isSame(const NodePtr& a, const NodePtr& b) const;
    // The child Nodes, sorted ascending by the text form of `field` (stable).
    ListPtr toSortArrayAtField(std::string_view field) const;
    // The child Nodes sorted by key (stable), each stamped with its key under
    // "key". Text and list children are left out.
    ListPtr toSortArray();
    ListPtr toSortArray(bool ascend);
    // "key: value" for every entry, sorted by key (stable). A value that is
    // not a text contributes its text form (Value::toText: numbers in decimal,
    // everything else "").
    ListPtr toSortArrayTxt(bool ascend) const;
    // Insertion indexes for the stable insertion sorts: the first position
    // whose element sorts after `val` (ascending) or before it (descending);
    // -1 to append. findIdx compares the text forms of the elements' `field`
    // values (an element that is not a Node reads as "").
    long findTxtIdx(const ListPtr& list, std::string_view val, bool ascend) const;
    long findIdx(const ListPtr& list, const Value& val, std::string_view field, bool ascend) const;
    long findTextInArray(const ListPtr& list, std::string_view txt, bool ascend) const;
    // Shallow copy without the listed keys.
    NodePtr removeExtra(const ListPtr& keys) const;
    // New Node with only the listed keys that the receiver has; the receiver
    // itself when `keys` is not a list.
    NodePtr copyObj(const Value& keys) const;
    // Shallow copy without the listed keys; the receiver itself when `keys` is
    // not a list.
    NodePtr copyObjExclude(const Value& keys) const;
    // Sets key = val in every leaf Node (empty, or only texts) of the tree.
    void tagChildWithKey(std::string_view key, const Value& val);
    // Path text: for each key its value here (a text, or a number in decimal)
    // or else the key itself, joined by "/". Empty list gives "".
    std::string asmKey(const ListPtr& keys) const;
    // True if the receiver has none of the keys.
    bool areNull(const ListPtr& keys) const;
    // True if at least one of the receiver's own values is a text.
    bool containsTxt() const;
    // Translation dump: for every text entry (at any depth) whose key holds
    // `separator`, the line "piece = value", where piece is the part of the
    // key after the first separator (up to the next one). Walk order; an
    // empty separator gives no lines.
    ListPtr mutableToTextArray(std::string_view separator) const;
    // The same lines sorted ascending, each followed by "\n"; "" if none.
    std::string mutableToText(std::string_view separator) const;

    // ---- Conversion copies (NodeConvert.cpp) -------------------------------

    // Mutable copy of texts, Nodes and lists (other values dropped) in which
    // every nested Node that contains text carries its path under "key":
    // path/childkey for Nodes, path[i] for Nodes in lists. mutableKey("") on
    // a root gives paths that begin with "/".
    NodePtr mutableKey(std::string_view path) const;
    ListPtr mutableArrayChange(const ListPtr& list, std::string_view path) const;
    // Mutable deep copy of texts, Nodes and lists; other values dropped.
    NodePtr mutableChange() const;
    ListPtr mutableArrayChange(const ListPtr& list) const;

    // ---- Search (NodeSearch.cpp) -------------------------------------------
    // Which nested Nodes a search enters: searchDict on a mutable Node enters
    // only mutable nested Nodes (also through its lists), on a read-only Node
    // every nested Node; searchDict2 enters every nested Node. searchNode
    // tests the keys of mutable nested Nodes in its first pass and of every
    // nested Node in its second; on a read-only Node it tests every nested
    // Node in both. The other searches test and enter every nested Node.

    // Value of the first text entry whose key matches `t` (exact:
    // case-sensitive equality; otherwise like), own entries before nested
    // ones; never enters a branch whose key contains ">".
    Value searchDict(std::string_view t, bool exact) const;
    // The same over the elements of a list, by this Node's entering rule.
    Value searchArray(const ListPtr& list, std::string_view t, bool exact) const;
    Value valKey(std::string_view t) const { return searchDict(t, true); }
    // Exact anywhere first, then like anywhere.
    Value valLikeKey(std::string_view t) const;
    // valLikeKey of each text of the list; the first result found.
    Value txtInList(const ListPtr& texts) const;
    Value searchDict2(std::string_view t, bool exact) const;
    Value valKey2(std::string_view t) const { return searchDict2(t, true); }

    // First Node hanging under a key that matches `t` (isMatch), direct
    // children before grandchildren at every level.
    NodePtr searchNode(std::string_view t, bool exact) const;
    // The element of the list that holds a hit (not the hit itself).
    NodePtr searchNodeArray(const ListPtr& list, std::string_view t, bool exact) const;
    NodePtr nodeKey(std::string_view t) const;
    // Case-free exact first, then like.
    NodePtr nodeLike(std::string_view t) const;
    // exact: case-free equality; otherwise `key` is like `t`.
    bool isMatch(std::string_view key, std::string_view t, bool exact) const;

    // ---- Field search and key listing (NodeSearchField.cpp) ----------------

    // First Node of the tree (the receiver included) whose text under `field`
    // is like `c`.
    NodePtr searchContent(std::string_view field, std::string_view c) const;
    NodePtr searchArrayContent(const ListPtr& list, std::string_view field, std::string_view c) const;
    // First Node of the tree (the receiver included) whose text under `field`
    // equals `v` exactly, or a nested Node hanging under the key `field`.
    NodePtr searchNodeFld(std::string_view field, std::string_view v) const;
    NodePtr searchNodeFldArray(const ListPtr& list, std::string_view field, std::string_view v) const;
    // Hit records {"key": k, "val": text} of every text entry whose key is like
    // `t`, at any depth. Every entry of every Node is scanned (the scan does
    // not stop after the first nested Node), so the result does not depend on
    // where nested Nodes sit; lists are not entered.
    ListPtr txtLikeList(std::string_view t) const;
    // Sorts hit records in place ascending by "key" (exchange sort; equal keys
    // are not swapped) and returns the same list.
    ListPtr sortArray(const ListPtr& hits) const;
    // "label: value\n" for every sorted like-hit whose key, lowercased, holds
    // none of the `except` texts, lowercased; label is splitBy(key, "-"), or
    // the whole key when it has no "-". "" when nothing is listed.
    std::string txtLikeKey(std::string_view t, const ListPtr& except) const;
    // The part of `s` after the first `d`, with empty pieces after that
    // dropped (a--b gives b); nothing when `s` holds no `d`.
    Value splitBy(std::string_view s, std::string_view d) const;

    // ---- Gathering and pulling (NodeGather.cpp, NodePull.cpp) --------------

    // "front"+text for every text under the key `k` in the tree, run together
    // inside a Node and joined by `back` between the elements of a list.
    std::string gatherTxt(std::string_view k, std::string_view front, std::string_view back) const;
    std::string gatherArrayTxt(const ListPtr& list, std::string_view k, std::string_view front,
                               std::string_view back) const;
    // Sum of the numbers that the texts under `k` begin with (leading ASCII
    // white space skipped, each read at single precision); values stored as
    // numbers add nothing.
    double gatherFloat(std::string_view k) const;
    double gatherArrayFloat(const ListPtr& list, std::string_view k) const;
    // The value reached by following the keys; the receiver for an empty list;
    // nothing when a step is missing or passes through something not a Node.
    Value peek(const ListPtr& keys) const;
    // The value of any kind under exactly `k`, own entries before nested ones,
    // every branch entered.
    Value pullDict(std::string_view k) const;
    Value pullArray(const ListPtr& list, std::string_view k) const;
    // The pulled texts joined by `gap`. Pulled values that are not texts count
    // as not found (so do they in the list case of pullIt).
    std::string pullTxt(const ListPtr& keys, std::string_view gap) const;
    // Fills the template in place from this Node, for each of its keys: a
    // text names a source key (pulled; a miss or null removes the entry); a
    // text with ":" is a path whose Nodes scope the next part and whose texts
    // are stored (a miss removes the entry; a number or list is ignored); a
    // list of keys becomes the found texts joined by `gap`; other values stay.
    void pullIt(const NodePtr& templ, std::string_view gap) const;

    // ---- Purge, remove, clean, clone (NodePurge.cpp, NodeClean.cpp,
    //      NodeClone.cpp) ------------------------------------------------------

    // Removes, throughout the tree, the "key" stamps and every entry whose key
    // contains "$" (lists themselves are never removed).
    void mutablePurge();
    // Removes every Node or text entry whose key contains `word`
    // (case-sensitive; an empty word removes nothing); lists are entered.
    void mutablePurge(std::string_view word);
    void mutablePurgeArray(const ListPtr& list, std::string_view word);
    // Deep copy without the key `k` at any level; inside lists a copied Node
    // or list that became empty is dropped (texts and numbers are kept).
    NodePtr removeKey(std::string_view k) const;
    ListPtr removeArray(const ListPtr& list, std::string_view k) const;
    // Deep copy in which a Node without a list, a Node or a text under a key
    // containing `t` is emptied, and dropped where it stands in a list (texts
    // and numbers in lists are kept).
    NodePtr clean(std::string_view t) const;
    ListPtr cleanArray(const ListPtr& list, std::string_view t) const;
    // True if `node` holds a list, a Node, or a text under a key that contains
    // `t` (case-sensitive; an empty `t` is in no key).
    bool ok(const NodePtr& node, std::string_view t) const;
    // Deep copy sharing no Node or list with the source (opaque objects are
    // shared: they are values the kit does not look into).
    NodePtr deepCopyDictionary() const;
    ListPtr deepCopyArray(const ListPtr& list) const;

  private:
    // The copies built level by level (detail/Walk.h) fill Nodes directly.
    friend struct detail::TreeAccess;

    // The shared Node, or a shallow copy when nobody shares this Node.
    NodePtr self() const;

    static constexpr std::size_t npos = static_cast<std::size_t>(-1);
    // Small Nodes are searched linearly; from this size on a hash index of
    // entry positions is kept beside the entries.
    static constexpr std::size_t kIndexThreshold = 12;

    std::size_t indexOf(std::string_view key) const;
    void rebuildIndex();
    void indexInsert(std::size_t position);

    // Every Node of a tree pays for these bytes, so they are packed: with the
    // reference count, the index size and the flag share one word.
    std::uint32_t indexSize_ : 31 = 0;
    std::uint32_t readOnly_ : 1 = 0;
    Entries entries_;
    // Open-addressing table of entry positions + 1 (0 marks a free slot);
    // empty while the Node is small. Kept up to date by every change, so that
    // reading a Node never writes to it. (A bare array and its size, not a
    // vector: most Nodes never have an index.)
    std::unique_ptr<std::uint32_t[]> index_;
};

} // namespace morvane
