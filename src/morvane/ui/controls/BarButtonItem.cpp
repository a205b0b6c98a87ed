#include <morvane/ui/controls/BarButtonItem.h>

namespace morvane::ui {

BarButtonItem::BarButtonItem(SystemItem kind, std::string title, Action action)
    : kind_(kind), title_(std::move(title)), action_(std::move(action)) {}

std::shared_ptr<BarButtonItem> BarButtonItem::systemItem(SystemItem item, Action action) {
    std::string title;
    if (item == SystemItem::Done) title = "Done";
    if (item == SystemItem::Cancel) title = "Cancel";
    return std::make_shared<BarButtonItem>(item, std::move(title), std::move(action));
}

std::shared_ptr<BarButtonItem> BarButtonItem::withTitle(std::string title, Action action) {
    return std::make_shared<BarButtonItem>(SystemItem::Custom, std::move(title), std::move(action));
}

std::shared_ptr<BarButtonItem> BarButtonItem::flexibleSpace() {
    return std::make_shared<BarButtonItem>(SystemItem::FlexibleSpace, std::string(), Action());
}

std::shared_ptr<BarButtonItem> BarButtonItem::fixedSpace(double width) {
    auto item = std::make_shared<BarButtonItem>(SystemItem::FixedSpace, std::string(), Action());
    item->setWidth(width);
    return item;
}

void BarButtonItem::trigger() {
    // Copied: the action may replace itself or drop the item.
    auto action = action_;
    if (action) action(*this);
}

} // namespace morvane::ui
