#include <morvane/model/List.h>

namespace morvane {

namespace {
const Value kAbsent;
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
    return List::make(items_);
}

bool List::equals(const List& other) const {
    if (this == &other) return true;
    if (size() != other.size()) return false;
    for (std::size_t i = 0; i < items_.size(); ++i)
        if (!(items_[i] == other.items_[i])) return false;
    return true;
}

} // namespace morvane
