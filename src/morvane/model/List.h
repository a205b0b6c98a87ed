#pragma once
// A list: an ordered sequence of Values (normally Nodes, sometimes texts or
// nested lists), shared by reference (ListPtr). Like a Node it may carry the
// read-only flag of a read-only source.
//
// The record-list operations are members, grouped by theme below.

#include <morvane/model/Value.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

namespace detail {
struct TreeAccess;
}

class List : public RefCounted {
  private:
    // The elements: a growable array of Values, much like a
    // std::vector<Value> (its iterators are plain pointers). A list made for
    // a known number of elements keeps them inside its own block, so a small
    // list (a point's two coordinates) is one allocation; it moves to a
    // buffer of its own only when it grows past that. Only List and the
    // model's own builders and sorts touch it.
    class Values {
      public:
        using value_type = Value;
        using size_type = std::size_t;
        using iterator = Value*;
        using const_iterator = const Value*;
        using reference = Value&;
        using const_reference = const Value&;

        Values() noexcept = default;
        Values(const Values&) = delete;
        Values& operator=(const Values&) = delete;
        ~Values();

        std::size_t size() const noexcept { return size_; }
        bool empty() const noexcept { return size_ == 0; }
        std::size_t capacity() const noexcept { return capacity_; }
        const_iterator begin() const noexcept { return data_; }
        const_iterator end() const noexcept { return data_ + size_; }
        iterator begin() noexcept { return data_; }
        iterator end() noexcept { return data_ + size_; }
        const Value& operator[](std::size_t i) const noexcept { return data_[i]; }
        Value& operator[](std::size_t i) noexcept { return data_[i]; }

        void reserve(std::size_t count);
        void push_back(const Value& value) { emplace_back(value); }
        void push_back(Value&& value) { emplace_back(std::move(value)); }
        template <typename... Args> void emplace_back(Args&&... args) {
            if (size_ == capacity_) grow(size_ + 1);
            std::construct_at(data_ + size_, std::forward<Args>(args)...);
            ++size_;
        }
        iterator insert(const_iterator position, Value value);
        iterator erase(const_iterator position);
        iterator erase(const_iterator first, const_iterator last);
        void clear() noexcept;
        // Appends copies of a range (its values, through move iterators). The
        // range must not lie in these elements unless room was reserved first.
        template <typename Iterator> void append(Iterator first, Iterator last) {
            reserve(size_ + static_cast<std::size_t>(std::distance(first, last)));
            for (; first != last; ++first)
                emplace_back(*first);
        }
        // Replaces the contents with the given values, in order.
        void assign(std::vector<Value>&& values) {
            clear();
            append(std::make_move_iterator(values.begin()), std::make_move_iterator(values.end()));
        }
        // Removes the elements `remove` holds true for, keeping the order of the
        // rest; returns how many went.
        template <typename Predicate> std::size_t eraseIf(Predicate remove) {
            Value* last = data_ + size_;
            Value* kept = std::remove_if(data_, last, remove);
            const std::size_t removed = static_cast<std::size_t>(last - kept);
            erase(kept, last);
            return removed;
        }

      private:
        friend class List;

        // Storage for `capacity` elements that the owner provides (and frees).
        void adoptStorage(Value* storage, std::size_t capacity) noexcept {
            data_ = storage;
            capacity_ = static_cast<std::uint32_t>(capacity);
        }
        void grow(std::size_t needed);

        Value* data_ = nullptr;
        std::uint32_t size_ = 0;
        std::uint32_t capacity_ : 31 = 0;
        // The elements live in a buffer of their own (not in the owner's block).
        std::uint32_t ownsBuffer_ : 1 = 0;
    };

  public:
    using const_iterator = const Value*;

    List() = default;
    List(std::initializer_list<Value> items);
    explicit List(std::vector<Value> items);

    static ListPtr make();
    static ListPtr make(std::initializer_list<Value> items);
    static ListPtr make(std::vector<Value> items);
    // An empty list with room for `count` elements inside its own block.
    static ListPtr withCapacity(std::size_t count);

    // ---- The sequence ------------------------------------------------------

    std::size_t size() const { return items_.size(); }
    bool empty() const { return items_.empty(); }
    // True if some element is a Node or a list. The tree walks ask it before
    // entering a list: most lists of a geometry file hold only numbers. (A
    // short list's elements share the cache line of its header, so the walk
    // that asks has already paid for reading them.)
    bool holdsContainers() const {
        return std::any_of(items_.begin(), items_.end(),
                           [](const Value& element) { return element.isNode() || element.isList(); });
    }
    // The element at a position; the absent value past the end.
    const Value& at(std::size_t index) const;
    const Value& operator[](std::size_t index) const { return at(index); }
    const_iterator begin() const { return items_.begin(); }
    const_iterator end() const { return items_.end(); }

    // The changing operations return false and change nothing on a read-only list.
    bool push(Value value);
    bool insert(std::size_t index, Value value);
    bool erase(std::size_t index);
    bool replace(std::size_t index, Value value);
    void clear();

    bool isReadOnly() const { return readOnly_; }
    void setReadOnly(bool readOnly) { readOnly_ = readOnly ? 1 : 0; }

    // Shallow copy: the same elements (Nodes and lists shared).
    ListPtr shallowCopy() const;
    bool equals(const List& other) const;

    // =========================================================================
    // The list-hosted NodeTree operations; the conventions of Node.h hold
    // ("nothing" is the absent Value, or a null NodePtr / ListPtr where the
    // result is always a Node / list; null arguments read as empty; texts
    // compare by UTF-16 code unit). A record is a Node element; an element
    // that is not a Node has no fields (its field values read as absent, their
    // text form as ""). In-place changes leave a read-only list unchanged.
    // =========================================================================

    // ---- Search (ListSearch.cpp) -------------------------------------------

    // Node::searchContent of `node`, run by the list.
    NodePtr contentsearch(const NodePtr& node, std::string_view field, std::string_view c) const;
    // contentsearch of each Node element, nested lists in turn; first hit.
    NodePtr arraySearch(std::string_view field, std::string_view c) const;

    // ---- Gathering (ListGather.cpp) ----------------------------------------
    // As Node::gatherTxt, except that a Node's own value under `k` comes first,
    // before the pieces of its nested Nodes and lists.

    std::string gatherText(const NodePtr& node, std::string_view k, std::string_view front,
                           std::string_view back) const;
    std::string gatherArrayText(std::string_view k, std::string_view front, std::string_view back) const;
    double gatherFloat(const NodePtr& node, std::string_view k) const;
    double gatherArrayFloat(std::string_view k) const;

    // ---- Record lists: find, count, remove (ListRecords.cpp) ---------------
    // These scan from the last record to the first: the first hit is the one
    // with the highest index.

    // True if some record holds the text `v` under `f`.
    bool containsObj(std::string_view f, std::string_view v) const;
    NodePtr findObj(std::string_view f, std::string_view v) const;
    // The last record whose `f` text is like `v`.
    NodePtr findObjContains(std::string_view f, std::string_view v) const;
    // Highest index whose record holds `v` under `f`; -1 if none.
    long findIdx(std::string_view f, std::string_view v) const;
    void removeObj(std::string_view f, std::string_view v);
    // Removes the matching records except those holding `w` under `k`.
    void removeObj(std::string_view f, std::string_view v, std::string_view k, std::string_view w);
    // Number of distinct values (value equality) under `f`.
    long countItem(std::string_view f) const;
    // 1 if some record holds `v` under `f`, else 0.
    long countItem(std::string_view f, std::string_view v) const;
    // Appends every element of `list` (shared, not copied).
    void copyAll(const ListPtr& list);
    // Node of the records that have `f`, each copied without `f`, under the
    // key "%c%02d-%@": the character 65 + i ('A' for index 0; past 'Z' the
    // code point runs on and is written in UTF-8), i in two digits, and
    // splitString of the text form of `f` with "-". Records without `f`
    // still count for i.
    NodePtr toDictionary(std::string_view f) const;
    // The part after the first separator (as Node::splitBy); the text itself
    // when it holds no separator.
    std::string splitString(std::string_view text, std::string_view separator) const;
    // The current local time as "HHmmsss": hours, minutes and the seconds in
    // three digits (date-pattern letters: "sss" pads the seconds to three).
    std::string getDate() const;

    // ---- Record lists: join and find (ListJoin.cpp) ------------------------
    // These scan from the first record to the last.

    bool dataExist(std::string_view f, std::string_view v) const;
    NodePtr findData(std::string_view f, std::string_view v) const;
    // The first record that agrees with `t` on every listed field (both lack
    // it or both hold equal values); the first record for an empty list.
    NodePtr find(const NodePtr& t, const ListPtr& fields) const;
    // Removes every record whose `f` text contains `text` (case-sensitive;
    // an empty text is in no text).
    void removeFlds(std::string_view f, std::string_view text);
    // The compact choice text. The first argument is not read. A listed
    // field that a record lacks (or holds as a Node or list) contributes
    // nothing, not even its ":"; numbers contribute their decimal text.
    std::string combineTextWith(const Value& ignored, std::string_view f) const;
    std::string combineTextWith(const Value& ignored, const ListPtr& fields) const;
    std::string combineTextWith(const Value& ignored, std::string_view k, std::string_view w,
                                const ListPtr& fields) const;
    // Labels of the choice texts under `f`: the part before the first ":" of
    // every ","-separated entry; empty entries are skipped.
    ListPtr getAlreadyUsed(std::string_view f) const;

    // ---- Record lists: sort (ListSort.cpp) ---------------------------------
    // The exchange sorts compare position i with every later j and swap when
    // out of order; their order of equal values is their own. The insertion
    // sort keeps equal values in list order.

    // In place, by the text form of `f`.
    void sort(std::string_view f, bool ascend);
    // Sorted copy; a record that moves to the later position of a swap is a
    // shallow copy.
    ListPtr sortTemp(std::string_view f, bool ascend) const;
    // Texts (elements by their text form), in place; returns this list.
    ListPtr sortText(bool ascend);
    ListPtr sortTextTemp(bool ascend) const;
    // New list, stable insertion sort by the text form of `f`, ascending.
    ListPtr sortArray(std::string_view f) const;
    // Insertion indexes as Node::findIdx and Node::findTextInArray.
    long findIdx(const Value& value, std::string_view f, bool ascend) const;
    long findText(std::string_view text, bool ascend) const;

    // ---- Booking samples (ListBooking.cpp) ----------------------------------
    // The sample records of a shuttle booking that the item-price selector
    // reads: four Nodes with "title", "alias" and "list", each kept as a JSON
    // object text. The texts carry a comma after their last member, so
    // defaultDict reads them with the lenient reader.

    // A new list of the four sample records, in the order of the texts below.
    static ListPtr bookData();
    // The mutable Node read from an object text (a trailing comma allowed);
    // nullptr when the text is not a JSON object.
    static NodePtr defaultDict(std::string_view text);
    static std::string myDate1();
    static std::string myDeparture();
    static std::string myBellingham();
    static std::string mySeaTac();

  private:
    friend void refRelease(const List* list) noexcept;
    // The model's own builders and sorts fill and reorder lists directly.
    friend struct detail::TreeAccess;
    // A list with room for `count` elements after the object itself.
    static List* allocate(std::size_t count);
    static void destroy(const List* list) noexcept;

    // The shared list, or a shallow copy when nobody shares this list.
    ListPtr self() const;

    std::uint32_t readOnly_ : 1 = 0;
    // Elements that fit in the list's own block (kept after they moved out).
    std::uint32_t inlineCapacity_ : 31 = 0;
    Values items_;
};

} // namespace morvane
