#pragma once
// The elements of a list (internal): a growable array of Values, much like a
// std::vector<Value> (its iterators are plain pointers). A list made for a
// known number of elements keeps them inside its own block, so a small list
// (a point's two coordinates) is one allocation; it moves to a buffer of its
// own only when it grows past that. Only List and the model's own builders
// and sorts touch it.

#include <morvane/model/Value.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

namespace morvane {
class List;
}

namespace morvane::detail {

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
    friend class morvane::List;

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

} // namespace morvane::detail
