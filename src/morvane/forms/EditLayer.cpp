#include <morvane/forms/EditLayer.h>

#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>

namespace morvane {

EditLayer::EditLayer(const gfx::Rect& frame) : EditCanvas(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    nTextview_ = UIDataInput::initWithData("Data", "Item", "Price");
    adoptBar(nTextview_);
}

EditLayer::~EditLayer() {
    nTextview_->watchAction(0, {}, {}, {});
}

bool EditLayer::isPictureChild(const ui::View& view) const {
    return dynamic_cast<const ui::ImageView*>(&view) != nullptr;
}

void EditLayer::showOrder() {
    editWithBar(*nTextview_);
}

void EditLayer::layoutSubviews() {
    layoutBar(*nTextview_);
}

} // namespace morvane
