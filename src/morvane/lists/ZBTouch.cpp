#include <morvane/lists/ZBTouch.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/lists/ZBTouchCell.h>
#include <morvane/sys/Queue.h>

#include <cmath>

namespace morvane {

ZBTouch::ZBTouch() : ZBTouch(gfx::Rect{}) {}

ZBTouch::ZBTouch(const gfx::Rect& frame) : ui::View(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    tbl_ = std::make_shared<ui::CollectionView>(gfx::Rect{}, ui::FlowLayout{});
    tbl_->setDataSource(this);
    tbl_->setDelegate(this);
    tbl_->registerCell<ZBTouchCell>(kCellIdentifier);
    tbl_->setBackgroundColor(gfx::Color::clearColor());
    addSubview(tbl_);
    ui::View::setBackgroundColor(gfx::Color::clearColor());
}

ZBTouch::~ZBTouch() {
    // The collection view may outlive the strip (anyone can hold it).
    tbl_->setDataSource(nullptr);
    tbl_->setDelegate(nullptr);
}

void ZBTouch::addObj(std::string_view key, NodePtr item) {
    MORVANE_ASSERT_MAIN_THREAD();
    myData_.push_back(Node::make({{"key", Value(key)}, {"data", Value(std::move(item))}}));
}

void ZBTouch::clear() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(true);
    myData_.clear();
}

void ZBTouch::refresh() {
    MORVANE_ASSERT_MAIN_THREAD();
    setHidden(myData_.empty());
    tbl_->reloadData();
}

void ZBTouch::watchItemSelect(SelectCB callback) {
    MORVANE_ASSERT_MAIN_THREAD();
    itemSelectCB_ = std::move(callback);
}

void ZBTouch::setBackgroundColor(const gfx::Color& color) {
    MORVANE_ASSERT_MAIN_THREAD();
    ui::View::setBackgroundColor(gfx::Color::clearColor());
    setCellColor(color);
}

void ZBTouch::setCellColor(const gfx::Color& color) {
    MORVANE_ASSERT_MAIN_THREAD();
    // The buttons' shape depends on the colour: lay them out again.
    bgColor_ = color;
    setNeedsLayout();
}

gfx::Color ZBTouch::getContrastColor(const gfx::Image& image) {
    const auto average = image.averageColor();
    return average && isDark(*average) ? gfx::Color::whiteColor() : gfx::Color::blackColor();
}

bool ZBTouch::isDark(const gfx::Color& color) {
    // Whole-number weights, so that an even grey of one half is not dark.
    return 299 * color.red + 587 * color.green + 114 * color.blue < 500;
}

int ZBTouch::numberOfItems(ui::CollectionView&, int) {
    return int(myData_.size());
}

std::shared_ptr<ui::CollectionViewCell> ZBTouch::cellForItem(ui::CollectionView& collectionView,
                                                             ui::IndexPath indexPath) {
    auto cell = collectionView.dequeueReusableCell(kCellIdentifier, indexPath);
    auto button = std::dynamic_pointer_cast<ZBTouchCell>(cell);
    const std::size_t item = std::size_t(indexPath.item());
    if (!button || item >= myData_.size()) return cell;
    button->addTitle("");
    // Copies: loading a picture may answer at once, through code that could
    // change the entries.
    const NodePtr entry = myData_[item];
    if (const std::string* key = entry->get("key").text()) {
        const Value stamp = entry->get("imaged");
        button->addImage(*key, stamp.text() ? std::optional<std::string_view>(*stamp.text()) : std::nullopt);
        button->setBackgroundColor(bgColor_);
    }
    return cell;
}

void ZBTouch::didSelectItem(ui::CollectionView&, ui::IndexPath indexPath) {
    const std::size_t item = std::size_t(indexPath.item());
    if (!itemSelectCB_ || item >= myData_.size()) return;
    DispatchGuard guard(*this);
    const NodePtr entry = myData_[item];
    const SelectCB callback = itemSelectCB_; // the callback may replace itself
    const std::string* key = entry->get("key").text();
    callback(key ? *key : std::string(), entry->get("data").node());
}

void ZBTouch::layoutSubviews() {
    const double W = bounds().width;
    const double H = bounds().height;
    tbl_->setFrame({0, 0, W, H});
    ui::FlowLayout& layout = tbl_->layout();
    if (bgColor_ == gfx::Color::blackColor()) {
        // On black, full-width bars read better than dots.
        layout.setItemSize({std::floor(W), std::floor(0.15 * H)});
        layout.setMinimumLineSpacing(std::floor(0.02 * H));
    } else {
        layout.setItemSize({std::floor(0.9 * W), std::floor(0.9 * W)});
        layout.setMinimumLineSpacing(std::floor(0.25 * W));
    }
    layout.setMinimumInteritemSpacing(0);
    tbl_->invalidateLayout();
}

} // namespace morvane
