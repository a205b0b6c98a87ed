#include <morvane/forms/UMEdit.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/media/ZBImage.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Touch.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

#include <span>

namespace morvane {

namespace {

// The focus border: the colour of the kit's editor panels.
constexpr gfx::Color kFocus = gfx::Color::fromBytes(213, 213, 226);

} // namespace

UMEdit::UMEdit(const gfx::Rect& frame) : ui::ScrollView(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    dataInputZB_ = std::make_shared<ZBDataInput>("Data", "Item", "Price");
    dataInputZB_->setHidden(true);
    dataInputZB_->setTag(0);
    addSubview(dataInputZB_);
    camera_ = std::make_shared<NCamera>();
    addSubview(camera_);
    camera_->setHidden(true);
    editBtn_ = std::make_shared<ui::Button>();
    editBtn_->setTitle("\u2191");
    editBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(1.2 * gfx::Font::systemFontSize()));
    editBtn_->setBackgroundColor(gfx::Color::blackColor());
    editBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { showOrder(); });
    addSubview(editBtn_);
    bringSubviewToFront(camera_.get());
    bringSubviewToFront(editBtn_.get());
    watchDscr();
    watchCamera();
}

UMEdit::~UMEdit() {
    // The bar, the camera and the button may outlive the canvas: nothing of
    // theirs may reach back into it.
    editBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    dataInputZB_->watchAction(0, {}, {}, {});
    camera_->watch(0, {}, {});
}

ui::View* UMEdit::currentView() const {
    return currentIsCanvas_ ? const_cast<UMEdit*>(this) : currentChild_.get();
}

// ---- Edit mode -------------------------------------------------------------------

void UMEdit::editEnable(bool enable) {
    MORVANE_ASSERT_MAIN_THREAD();
    canEdit_ = enable;
    setNeedsLayout();
    clearFocus();
}

void UMEdit::startEditor() {
    canEdit_ = true;
    clearFocus();
}

void UMEdit::stopEditor() {
    canEdit_ = false;
    clearFocus();
}

void UMEdit::edit(bool on) {
    if (on)
        startEditor();
    else
        stopEditor();
}

void UMEdit::moreAction() {
    canEdit_ = false;
    stopEditor();
}

// ---- Children's texts ------------------------------------------------------------

bool UMEdit::isTextChild(const ui::View& view) {
    return dynamic_cast<const ui::TextView*>(&view) || dynamic_cast<const ui::Label*>(&view) ||
           dynamic_cast<const ui::TextField*>(&view);
}

bool UMEdit::isPictureChild(const ui::View& view) {
    return dynamic_cast<const ui::ImageView*>(&view) || dynamic_cast<const ZBImage*>(&view);
}

void UMEdit::setVal(ui::View& view, std::string_view text) {
    if (auto* textView = dynamic_cast<ui::TextView*>(&view))
        textView->setText(std::string(text));
    else if (auto* label = dynamic_cast<ui::Label*>(&view))
        label->setText(std::string(text));
    else if (auto* field = dynamic_cast<ui::TextField*>(&view))
        field->setText(std::string(text));
}

std::optional<std::string> UMEdit::getVal(const ui::View& view) const {
    const ui::View* current = currentView();
    if (!current || !isTextChild(*current)) return std::nullopt;
    if (auto* textView = dynamic_cast<const ui::TextView*>(&view)) return textView->text();
    if (auto* label = dynamic_cast<const ui::Label*>(&view)) return label->text();
    if (auto* field = dynamic_cast<const ui::TextField*>(&view)) return field->text();
    return std::nullopt;
}

// ---- Focus -------------------------------------------------------------------------

void UMEdit::clearFocus() {
    MORVANE_ASSERT_MAIN_THREAD();
    editBtn_->setHidden(true);
    for (const auto& child : subviews()) {
        child->layer().setBorderColor(gfx::Color::clearColor());
        if (!canEdit_) continue;
        // Touches on a text view must reach the canvas while it edits.
        if (auto textView = std::dynamic_pointer_cast<ui::TextView>(child)) {
            textView->setEditable(false);
            textView->setUserInteractionEnabled(false);
            textView->setScrollEnabled(false);
        }
    }
}

void UMEdit::focusView(ui::View& view) {
    MORVANE_ASSERT_MAIN_THREAD();
    view.layer().setBorderColor(kFocus);
    view.layer().setBorderWidth(1);
    view.setHidden(false);
    const double s = 1.5 * gfx::Font::systemFontSize();
    const gfx::Rect frame = view.frame();
    editBtn_->setFrame({frame.x + frame.width - 1.2 * s, frame.y + 0.2 * s, s, s});
    editBtn_->layer().setCornerRadius(s / 2);
    editBtn_->setHidden(false);
    bringSubviewToFront(editBtn_.get());
}

bool UMEdit::inside(const gfx::Rect& rect, gfx::Point point) {
    return point.y > rect.y && point.y < rect.y + rect.height;
}

ui::View& UMEdit::searchView(gfx::Point p) {
    ui::View* best = this;
    for (const auto& child : subviews()) {
        if (child.get() == this || child == dataInputZB_ || child == camera_ ||
            child.get() == scrollIndicator())
            continue;
        const gfx::Rect f = child->frame();
        if (!(p.x > f.x && p.x < f.x + f.width && p.y > f.y && p.y < f.y + f.height)) continue;
        // The best so far is measured by its frame; the canvas's own is in
        // its parent's coordinates, as it has always been.
        const gfx::Rect b = best->frame();
        if (f.y >= b.y || f.x >= b.x) best = child.get();
    }
    return *best;
}

// ---- Touches -------------------------------------------------------------------------

void UMEdit::touchesBegan(const ui::Touches&) {
    if (dataInputZB_->isHidden() && canEdit_) clearFocus();
}

void UMEdit::touchesMoved(const ui::Touches&) {}

void UMEdit::touchesEnded(const ui::Touches& touches) {
    if (!dataInputZB_->isHidden() || !canEdit_ || touches.empty()) return;
    ui::View& chosen = searchView(touches.front().locationIn(this));
    if (&chosen == this) {
        currentIsCanvas_ = true;
        currentChild_.reset();
        return;
    }
    currentIsCanvas_ = false;
    for (const auto& child : subviews())
        if (child.get() == &chosen) currentChild_ = child;
    focusView(chosen);
}

// ---- The edit button ------------------------------------------------------------------

void UMEdit::showOrder() {
    MORVANE_ASSERT_MAIN_THREAD();
    ui::View* current = currentView();
    if (!current || current == this) return;
    if (isTextChild(*current)) {
        current->layer().setBorderWidth(0);
        editBtn_->setHidden(true);
        dataInputZB_->addData(getVal(*current).value_or(""));
        dataInputZB_->show(*this);
    } else if (isPictureChild(*current)) {
        if (!cameraCB_) {
            camera_->setHidden(false);
            bringSubviewToFront(camera_.get());
        } else {
            DispatchGuard guard(*this);
            const CameraCB call = cameraCB_;
            call(current->accessibilityHint());
        }
    }
}

void UMEdit::watchDscr() {
    dataInputZB_->watchAction(
        1,
        [this](const std::string& text) {
            DispatchGuard guard(*this);
            if (auto child = currentChild_) {
                setVal(*child, text);
                txtChanged(text, *child);
            } else if (currentIsCanvas_) {
                txtChanged(text, *this);
            }
        },
        [this](bool) {
            DispatchGuard guard(*this);
            if (auto child = currentChild_)
                txtChanged("", *child);
            else if (currentIsCanvas_)
                txtChanged("", *this);
        },
        [](bool) {});
}

void UMEdit::watchCamera() {
    camera_->watch(
        1,
        [this](const std::vector<std::uint8_t>& photo) {
            DispatchGuard guard(*this);
            auto child = currentChild_;
            if (child && isPictureChild(*child)) {
                std::string why;
                const gfx::Image image = gfx::Image::fromData(std::span(photo.data(), photo.size()), 1, &why);
                imageChanged(image, *child);
            }
            camera_->setHidden(true);
            if (ui::View* current = currentView(); current && current != this) focusView(*current);
        },
        [this](bool) {
            camera_->setHidden(true);
            if (ui::View* current = currentView(); current && current != this) focusView(*current);
        });
}

void UMEdit::txtChanged(const std::string&, ui::View&) {}
void UMEdit::imageChanged(const gfx::Image&, ui::View&) {}

void UMEdit::layoutSubviews() {
    ui::ScrollView::layoutSubviews();
    const double w = frame().width, h = frame().height;
    dataInputZB_->setFrame({0, 0, w, h});
    if (dataInputZB_->tag() == 0) {
        // The camera is placed once; later layouts leave it where it is.
        dataInputZB_->setTag(1);
        camera_->setFrame({0.1 * w, 0.2 * h, 0.8 * w, 0.6 * h});
        camera_->layer().setCornerRadius(0.01 * h);
    }
}

} // namespace morvane
