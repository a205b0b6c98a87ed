#include <morvane/model/List.h>
#include <morvane/model/detail/BlockPool.h>
#include <morvane/model/detail/Release.h>
#include <morvane/model/detail/Walk.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace morvane {

namespace {
const Value kAbsent;
constexpr std::size_t kMaxElements = (std::size_t{1} << 29) - 1;
} // namespace

// ---- Values ----------------------------------------------------------------

List::Values::~Values() {
    clear();
    if (ownsBuffer_) ::operator delete(data_);
}

void List::Values::grow(std::size_t needed) {
    if (needed > kMaxElements) throw std::length_error("a list holds at most 2^29 - 1 elements");
    const std::size_t capacity =
        std::min(kMaxElements, std::max<std::size_t>({needed, std::size_t{2} * capacity_, 4}));
    auto* buffer = static_cast<Value*>(::operator new(capacity * sizeof(Value)));
    for (std::uint32_t i = 0; i < size_; ++i) {
        std::construct_at(buffer + i, std::move(data_[i]));
        std::destroy_at(data_ + i);
    }
    if (ownsBuffer_) ::operator delete(data_);
    data_ = buffer;
    capacity_ = static_cast<std::uint32_t>(capacity);
    ownsBuffer_ = 1;
}

void List::Values::reserve(std::size_t count) {
    if (count > capacity_) grow(count);
}

List::Values::iterator List::Values::insert(const_iterator position, Value value) {
    const std::size_t at = static_cast<std::size_t>(position - data_);
    emplace_back(std::move(value));
    std::rotate(data_ + at, data_ + size_ - 1, data_ + size_);
    return data_ + at;
}

List::Values::iterator List::Values::erase(const_iterator position) {
    return erase(position, position + 1);
}

List::Values::iterator List::Values::erase(const_iterator first, const_iterator last) {
    Value* from = data_ + (first - data_);
    if (first == last) return from;
    Value* end = std::move(data_ + (last - data_), data_ + size_, from);
    std::destroy(end, data_ + size_);
    size_ = static_cast<std::uint32_t>(end - data_);
    return from;
}

void List::Values::clear() noexcept {
    std::destroy(data_, data_ + size_);
    size_ = 0;
}

// ---- List ------------------------------------------------------------------

void refRetain(const List* list) noexcept {
    list->retainRef();
}

void refRelease(const List* list) noexcept {
    if (list->releaseRef()) List::destroy(list);
}

long refCount(const List* list) noexcept {
    return list->refCount();
}

static_assert(sizeof(List) % alignof(Value) == 0, "a list's own elements follow it in its block");

List* List::allocate(std::size_t count) {
    count = std::min(count, kMaxElements);
    void* block = detail::allocateBlock(sizeof(List) + count * sizeof(Value));
    List* list = ::new (block) List();
    list->items_.adoptStorage(reinterpret_cast<Value*>(static_cast<char*>(block) + sizeof(List)), count);
    list->inlineCapacity_ = static_cast<std::uint32_t>(count);
    return list;
}

void List::destroy(const List* list) noexcept {
    List* owned = const_cast<List*>(list);
    const std::size_t size = sizeof(List) + owned->inlineCapacity_ * sizeof(Value);
    if (!owned->holdsContainers()) { // nothing can nest below it
        owned->~List();
        detail::freeBlock(owned, size);
        return;
    }
    {
        detail::ReleaseScope scope;
        if (scope.deep())
            for (std::uint32_t i = 0; i < owned->items_.size_; ++i)
                scope.defer(owned->items_.data_[i]);
        owned->~List(); // inside the scope
    }
    detail::freeBlock(owned, size);
}

List::List(std::initializer_list<Value> items) {
    items_.append(items.begin(), items.end());
}

List::List(std::vector<Value> items) {
    items_.assign(std::move(items));
}

ListPtr List::make() {
    return withCapacity(0);
}

ListPtr List::make(std::initializer_list<Value> items) {
    ListPtr list = withCapacity(items.size());
    list->items_.append(items.begin(), items.end());
    return list;
}

ListPtr List::make(std::vector<Value> items) {
    ListPtr list = withCapacity(items.size());
    list->items_.assign(std::move(items));
    return list;
}

ListPtr List::withCapacity(std::size_t count) {
    return ListPtr(allocate(count), ListPtr::Adopt{});
}

const Value& List::at(std::size_t index) const {
    return index < items_.size() ? items_[index] : kAbsent;
}

bool List::push(Value value) {
    if (readOnly_) return false;
    items_.push_back(std::move(value));
    return true;
}

bool List::insert(std::size_t index, Value value) {
    if (readOnly_ || index > items_.size()) return false;
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(index), std::move(value));
    return true;
}

bool List::erase(std::size_t index) {
    if (readOnly_ || index >= items_.size()) return false;
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
}

bool List::replace(std::size_t index, Value value) {
    if (readOnly_ || index >= items_.size()) return false;
    items_[index] = std::move(value);
    return true;
}

void List::clear() {
    if (!readOnly_) items_.clear();
}

ListPtr List::shallowCopy() const {
    ListPtr copy = withCapacity(items_.size());
    copy->items_.append(items_.begin(), items_.end());
    return copy;
}

bool List::equals(const List& other) const {
    return detail::equalLists(*this, other);
}

} // namespace morvane
