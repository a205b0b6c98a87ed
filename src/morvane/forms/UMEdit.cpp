#include <morvane/forms/UMEdit.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/media/ZBImage.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>

namespace morvane {

UMEdit::UMEdit(const gfx::Rect& frame) : EditCanvas(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    dataInputZB_ = std::make_shared<ZBDataInput>("Data", "Item", "Price");
    dataInputZB_->setHidden(true);
    dataInputZB_->setTag(0);
    addSubview(dataInputZB_);
    // The camera, then the edit button, stay in front of the bar.
    bringSubviewToFront(camera().get());
    bringSubviewToFront(editBtn().get());
    watchDscr();
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
    MORVANE_ASSERT_MAIN_THREAD();
    ui::View* current = currentView();
    if (!current || current == this) return;
    if (isTextChild(*current)) {
        current->layer().setBorderWidth(0);
        editBtn()->setHidden(true);
        dataInputZB_->addData(getVal(*current).value_or(""));
        dataInputZB_->show(*this);
    } else if (isPictureChild(*current)) {
        openCamera(*current);
    }
}

void UMEdit::watchDscr() {
    dataInputZB_->watchAction(
        1,
        [this](const std::string& text) {
            DispatchGuard guard(*this);
            if (auto child = currentChild()) {
                setVal(*child, text);
                txtChanged(text, *child);
            } else if (currentIsLayer()) {
                txtChanged(text, *this);
            }
        },
        [this](bool) {
            DispatchGuard guard(*this);
            if (auto child = currentChild())
                txtChanged("", *child);
            else if (currentIsLayer())
                txtChanged("", *this);
        },
        [](bool) {});
}

void UMEdit::layoutSubviews() {
    EditCanvas::layoutSubviews();
    const double w = frame().width, h = frame().height;
    dataInputZB_->setFrame({0, 0, w, h});
    if (dataInputZB_->tag() == 0) {
        // The camera is placed once; later layouts leave it where it is.
        dataInputZB_->setTag(1);
        camera()->setFrame({0.1 * w, 0.2 * h, 0.8 * w, 0.6 * h});
        camera()->layer().setCornerRadius(0.01 * h);
    }
}

} // namespace morvane
