// Sorting record lists and texts. The exchange sorts compare each position
// with every later one and swap when out of order, so equal values can change
// places; the insertion sort keeps equal values in list order.

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/model/detail/Records.h>
#include <morvane/model/detail/Text.h>

namespace morvane {

namespace {

// Exchange sort over `items` by the texts `textOf` gives. `onSwap` may
// replace the element that moves to the later position.
template <typename Items, typename TextOf, typename OnSwap>
void exchangeSort(Items& items, bool ascend, TextOf textOf, OnSwap onSwap) {
    if (items.size() < 2) return;
    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
        for (std::size_t j = i + 1; j < items.size(); ++j) {
            const int order = detail::compareText(textOf(items[i]), textOf(items[j]));
            if (ascend ? order > 0 : order < 0) {
                std::swap(items[i], items[j]);
                onSwap(items[j]);
            }
        }
    }
}

auto fieldTextOf(std::string_view f) {
    return [f](const Value& element) { return detail::fieldOf(element, f).toText(); };
}

std::string textOf(const Value& element) {
    return element.toText();
}

void keep(Value&) {}

} // namespace

void List::sort(std::string_view f, bool ascend) {
    if (readOnly_) return;
    exchangeSort(items_, ascend, fieldTextOf(f), keep);
}

ListPtr List::sortTemp(std::string_view f, bool ascend) const {
    ListPtr copy = shallowCopy();
    exchangeSort(copy->items_, ascend, fieldTextOf(f), [](Value& moved) {
        if (const NodePtr& record = moved.node()) moved = Value(record->shallowCopy());
    });
    return copy;
}

ListPtr List::sortText(bool ascend) {
    if (!readOnly_) exchangeSort(items_, ascend, textOf, keep);
    return self();
}

ListPtr List::sortTextTemp(bool ascend) const {
    ListPtr copy = shallowCopy();
    exchangeSort(copy->items_, ascend, textOf, keep);
    return copy;
}

ListPtr List::sortArray(std::string_view f) const {
    ListPtr sorted = List::withCapacity(items_.size());
    for (const Value& element : items_) {
        const long at = sorted->findIdx(detail::fieldOf(element, f), f, true);
        if (at < 0)
            sorted->items_.push_back(element);
        else
            sorted->items_.insert(sorted->items_.begin() + at, element);
    }
    return sorted;
}

long List::findIdx(const Value& value, std::string_view f, bool ascend) const {
    const std::string text = value.toText();
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const int order = detail::compareText(detail::fieldOf(items_[i], f).toText(), text);
        if (ascend ? order > 0 : order < 0) return static_cast<long>(i);
    }
    return -1;
}

long List::findText(std::string_view text, bool ascend) const {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const int order = detail::compareText(items_[i].toText(), text);
        if (ascend ? order > 0 : order < 0) return static_cast<long>(i);
    }
    return -1;
}

} // namespace morvane
