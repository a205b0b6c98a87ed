#include <morvane/forms/UMEdit.h>

#include <morvane/media/ZBImage.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>

namespace morvane {

UMEdit::UMEdit(const gfx::Rect& frame) : EditCanvas(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    dataInputZB_ = std::make_shared<ZBDataInput>("Data", "Item", "Price");
    adoptBar(dataInputZB_);
}

UMEdit::~UMEdit() {
    dataInputZB_->watchAction(0, {}, {}, {});
}

void UMEdit::editEnable(bool enable) {
    MORVANE_ASSERT_MAIN_THREAD();
    setCanEdit(enable);
    setNeedsLayout();
    clearFocus();
}

bool UMEdit::isPictureChild(const ui::View& view) const {
    return dynamic_cast<const ui::ImageView*>(&view) || dynamic_cast<const ZBImage*>(&view);
}

void UMEdit::showOrder() {
    editWithBar(*dataInputZB_);
}

void UMEdit::layoutSubviews() {
    EditCanvas::layoutSubviews();
    layoutBar(*dataInputZB_);
}

} // namespace morvane
