#include <morvane/forms/detail/DataInputBar.h>

#include <morvane/sys/Queue.h>

namespace morvane::detail {

DataInputBar::DataInputBar(std::shared_ptr<EditorPanel> panel, double margin)
    : ui::View(gfx::Rect{}), panel_(std::move(panel)), margin_(margin) {
    addSubview(panel_);
    setBackgroundColor(gfx::Color(0, 0, 0, 0.5));
    watchDscr();
}

DataInputBar::~DataInputBar() {
    panel_->watchAction(1, {}, {}, {});
}

void DataInputBar::watchDscr() {
    // The panel is the bar's own child and the bar takes these callbacks back
    // when it goes; while one runs, the bar is held, since the owner's
    // callback may release it.
    panel_->watchAction(
        1,
        [this](const std::string& text) {
            auto keep = weak_from_this().lock();
            minimize(true);
            if (SaveCB save = saveCB_) save(text);
        },
        [this](bool value) {
            auto keep = weak_from_this().lock();
            minimize(true);
            if (DoneCB done = deleteCB_) done(value);
        },
        [this](bool) {
            auto keep = weak_from_this().lock();
            minimize(true);
            if (DoneCB done = cancelCB_) done(true);
        });
}

void DataInputBar::show(ui::View& owner) {
    MORVANE_ASSERT_MAIN_THREAD();
    owner.bringSubviewToFront(this);
    setHidden(false);
    minimize(false);
}

gfx::Rect DataInputBar::panelFrame(double y) const {
    const double w = bounds().width;
    return {margin_ * w, y, (1 - 2 * margin_) * w, 0.4 * bounds().height};
}

void DataInputBar::minimize(bool out) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double h = bounds().height;
    const std::uint64_t slide = ++slides_;
    if (!out) {
        panel_->removeAllAnimations();
        panel_->setFrame(panelFrame(h));
        animate(kSlideSeconds, [&] { panel_->setFrame(panelFrame(0.15 * h)); });
        return;
    }
    std::weak_ptr<ui::View> weak = weak_from_this();
    animate(
        kSlideSeconds, [&] { panel_->setFrame(panelFrame(h)); },
        [weak, slide](bool) {
            auto self = std::static_pointer_cast<DataInputBar>(weak.lock());
            if (self && self->slides_ == slide) self->setHidden(true);
        });
}

void DataInputBar::addData(std::string_view text) {
    panel_->addData(text);
}

void DataInputBar::watchAction(int, SaveCB save, DoneCB del, DoneCB cancel) {
    saveCB_ = std::move(save);
    deleteCB_ = std::move(del);
    cancelCB_ = std::move(cancel);
}

} // namespace morvane::detail
