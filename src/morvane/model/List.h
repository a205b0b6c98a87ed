#pragma once
// A list: an ordered sequence of Values (normally Nodes, sometimes texts or
// nested lists), shared by reference (ListPtr). Like a Node it may carry the
// read-only flag of a read-only source.
//
// The record-list operations are members, grouped by theme below.

#include <morvane/model/Value.h>

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class List : public std::enable_shared_from_this<List> {
  public:
    using iterator = std::vector<Value>::iterator;
    using const_iterator = std::vector<Value>::const_iterator;

    List() = default;
    List(std::initializer_list<Value> items) : items_(items) {}
    explicit List(std::vector<Value> items) : items_(std::move(items)) {}
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    static ListPtr make() { return std::make_shared<List>(); }
    static ListPtr make(std::initializer_list<Value> items) { return std::make_shared<List>(items); }
    static ListPtr make(std::vector<Value> items) { return std::make_shared<List>(std::move(items)); }

    // ---- The sequence ------------------------------------------------------

    std::size_t size() const { return items_.size(); }
    bool empty() const { return items_.empty(); }
    // The element at a position; the absent value past the end.
    const Value& at(std::size_t index) const;
    const Value& operator[](std::size_t index) const { return at(index); }
    const_iterator begin() const { return items_.begin(); }
    const_iterator end() const { return items_.end(); }
    // Direct access for the list's own operations and for builders.
    std::vector<Value>& items() { return items_; }
    const std::vector<Value>& items() const { return items_; }

    // The changing operations return false and change nothing on a read-only list.
    bool push(Value value);
    bool insert(std::size_t index, Value value);
    bool erase(std::size_t index);
    bool replace(std::size_t index, Value value);
    void clear();

    bool isReadOnly() const { return readOnly_; }
    void setReadOnly(bool readOnly) { readOnly_ = readOnly; }

    // Shallow copy: the same elements (Nodes and lists shared).
    ListPtr shallowCopy() const;
    bool equals(const List& other) const;

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
    std::vector<Value> items_;
    bool readOnly_ = false;
};

} // namespace morvane
