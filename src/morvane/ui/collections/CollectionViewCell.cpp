#include <morvane/ui/collections/CollectionViewCell.h>

namespace morvane::ui {

CollectionViewCell::CollectionViewCell(std::string reuseIdentifier)
    : reuseIdentifier_(std::move(reuseIdentifier)) {
    contentView_ = std::make_shared<View>();
    addSubview(contentView_);
}

void CollectionViewCell::setSelected(bool selected) {
    selected_ = selected;
    setNeedsDisplay();
}

void CollectionViewCell::setHighlighted(bool highlighted) {
    highlighted_ = highlighted;
    setNeedsDisplay();
}

void CollectionViewCell::prepareForReuse() {
    selected_ = false;
    highlighted_ = false;
}

void CollectionViewCell::layoutSubviews() {
    contentView_->setFrame({0, 0, bounds().width, bounds().height});
}

} // namespace morvane::ui
