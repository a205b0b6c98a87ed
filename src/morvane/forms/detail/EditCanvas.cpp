#include <morvane/forms/detail/EditCanvas.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/collections/ScrollView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Touch.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

#include <span>
#include <type_traits>

namespace morvane::detail {

namespace {

// The focus border: the colour of the kit's editor panels.
constexpr gfx::Color kFocus = gfx::Color::fromBytes(213, 213, 226);

} // namespace

template <class Base> EditCanvas<Base>::EditCanvas(const gfx::Rect& frame) : Base(frame) {
    MORVANE_ASSERT_MAIN_THREAD();
    camera_ = std::make_shared<NCamera>();
    this->addSubview(camera_);
    camera_->setHidden(true);
    editBtn_ = std::make_shared<ui::Button>();
    editBtn_->setTitle("\u2191");
    editBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(1.2 * gfx::Font::systemFontSize()));
    editBtn_->setBackgroundColor(gfx::Color::blackColor());
    editBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { editButtonAction(); });
    this->addSubview(editBtn_);
    this->bringSubviewToFront(camera_.get());
    this->bringSubviewToFront(editBtn_.get());
    watchCamera();
}

template <class Base> EditCanvas<Base>::~EditCanvas() {
    // The camera and the button may outlive the layer: nothing of theirs may
    // reach back into it.
    editBtn_->removeActions(ui::ControlEvent::TouchUpInside);
    camera_->watch(0, {}, {});
}

template <class Base> ui::View* EditCanvas<Base>::currentView() const {
    return currentIsLayer_ ? const_cast<EditCanvas*>(this) : currentChild_.get();
}

// ---- Edit mode -------------------------------------------------------------------

template <class Base> void EditCanvas<Base>::startEditor() {
    canEdit_ = true;
    clearFocus();
}

template <class Base> void EditCanvas<Base>::stopEditor() {
    canEdit_ = false;
    clearFocus();
}

template <class Base> void EditCanvas<Base>::edit(bool on) {
    if (on)
        startEditor();
    else
        stopEditor();
}

template <class Base> void EditCanvas<Base>::moreAction() {
    canEdit_ = false;
    stopEditor();
}

// ---- Children's texts ------------------------------------------------------------

template <class Base> bool EditCanvas<Base>::isTextChild(const ui::View& view) {
    return dynamic_cast<const ui::TextView*>(&view) || dynamic_cast<const ui::Label*>(&view) ||
           dynamic_cast<const ui::TextField*>(&view);
}

template <class Base> void EditCanvas<Base>::setVal(ui::View& view, std::string_view text) {
    if (auto* textView = dynamic_cast<ui::TextView*>(&view))
        textView->setText(std::string(text));
    else if (auto* label = dynamic_cast<ui::Label*>(&view))
        label->setText(std::string(text));
    else if (auto* field = dynamic_cast<ui::TextField*>(&view))
        field->setText(std::string(text));
}

template <class Base> std::optional<std::string> EditCanvas<Base>::getVal(const ui::View& view) const {
    const ui::View* current = currentView();
    if (!current || !isTextChild(*current)) return std::nullopt;
    if (auto* textView = dynamic_cast<const ui::TextView*>(&view)) return textView->text();
    if (auto* label = dynamic_cast<const ui::Label*>(&view)) return label->text();
    if (auto* field = dynamic_cast<const ui::TextField*>(&view)) return field->text();
    return std::nullopt;
}

// ---- Focus -------------------------------------------------------------------------

template <class Base> void EditCanvas<Base>::clearFocus() {
    MORVANE_ASSERT_MAIN_THREAD();
    editBtn_->setHidden(true);
    for (const auto& child : this->subviews()) {
        child->layer().setBorderColor(gfx::Color::clearColor());
        if (!canEdit_) continue;
        // Touches on a text view must reach the layer while it edits.
        if (auto textView = std::dynamic_pointer_cast<ui::TextView>(child)) {
            textView->setEditable(false);
            textView->setUserInteractionEnabled(false);
            textView->setScrollEnabled(false);
        }
    }
}

template <class Base> void EditCanvas<Base>::focusView(ui::View& view) {
    MORVANE_ASSERT_MAIN_THREAD();
    view.layer().setBorderColor(kFocus);
    view.layer().setBorderWidth(1);
    view.setHidden(false);
    const double s = 1.5 * gfx::Font::systemFontSize();
    const gfx::Rect frame = view.frame();
    editBtn_->setFrame({frame.x + frame.width - 1.2 * s, frame.y + 0.2 * s, s, s});
    editBtn_->layer().setCornerRadius(s / 2);
    editBtn_->setHidden(false);
    this->bringSubviewToFront(editBtn_.get());
}

template <class Base> bool EditCanvas<Base>::inside(const gfx::Rect& rect, gfx::Point point) {
    return point.y > rect.y && point.y < rect.y + rect.height;
}

template <class Base> ui::View& EditCanvas<Base>::searchView(gfx::Point p) {
    const ui::View* indicator = nullptr;
    if constexpr (std::is_base_of_v<ui::ScrollView, Base>) indicator = this->scrollIndicator();
    ui::View* best = this;
    for (const auto& child : this->subviews()) {
        if (child.get() == this || child == camera_ || child.get() == indicator || isEditor(*child)) continue;
        const gfx::Rect f = child->frame();
        if (!(p.x > f.x && p.x < f.x + f.width && p.y > f.y && p.y < f.y + f.height)) continue;
        // The best so far is measured by its frame; the layer's own is in
        // its parent's coordinates, as it has always been.
        const gfx::Rect b = best->frame();
        if (f.y >= b.y || f.x >= b.x) best = child.get();
    }
    return *best;
}

// ---- Touches -------------------------------------------------------------------------

template <class Base> void EditCanvas<Base>::touchesBegan(const ui::Touches&) {
    if (touchesChoose()) clearFocus();
}

template <class Base> void EditCanvas<Base>::touchesMoved(const ui::Touches&) {}

template <class Base> void EditCanvas<Base>::touchesEnded(const ui::Touches& touches) {
    if (!touchesChoose() || touches.empty()) return;
    ui::View& chosen = searchView(touches.front().locationIn(this));
    if (&chosen == this) {
        currentIsLayer_ = true;
        currentChild_.reset();
        return;
    }
    currentIsLayer_ = false;
    for (const auto& child : this->subviews())
        if (child.get() == &chosen) currentChild_ = child;
    focusView(chosen);
}

// ---- The camera ------------------------------------------------------------------------

template <class Base> void EditCanvas<Base>::openCamera(ui::View& picture) {
    if (!cameraCB_) {
        camera_->setHidden(false);
        this->bringSubviewToFront(camera_.get());
        return;
    }
    DispatchGuard guard(*this);
    const CameraCB call = cameraCB_;
    call(picture.accessibilityHint());
}

template <class Base> void EditCanvas<Base>::watchCamera() {
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

// ---- Layers edited through a data input bar ------------------------------------------------

template <class Base> void EditCanvas<Base>::adoptBar(const std::shared_ptr<DataInputBar>& bar) {
    bar->setHidden(true);
    bar->setTag(0);
    this->addSubview(bar);
    // The camera, then the edit button, stay in front of the bar.
    this->bringSubviewToFront(camera_.get());
    this->bringSubviewToFront(editBtn_.get());
    watchBar(*bar);
}

template <class Base> void EditCanvas<Base>::editWithBar(DataInputBar& bar) {
    MORVANE_ASSERT_MAIN_THREAD();
    ui::View* current = currentView();
    if (!current || current == this) return;
    if (isTextChild(*current)) {
        current->layer().setBorderWidth(0);
        editBtn_->setHidden(true);
        bar.addData(getVal(*current).value_or(""));
        bar.show(*this);
    } else if (isPictureChild(*current)) {
        openCamera(*current);
    }
}

template <class Base> void EditCanvas<Base>::watchBar(DataInputBar& bar) {
    bar.watchAction(
        1,
        [this](const std::string& text) {
            DispatchGuard guard(*this);
            if (auto child = currentChild_) {
                setVal(*child, text);
                txtChanged(text, *child);
            } else if (currentIsLayer_) {
                txtChanged(text, *this);
            }
        },
        [this](bool) {
            DispatchGuard guard(*this);
            if (auto child = currentChild_)
                txtChanged("", *child);
            else if (currentIsLayer_)
                txtChanged("", *this);
        },
        [](bool) {});
}

template <class Base> void EditCanvas<Base>::layoutBar(DataInputBar& bar) {
    const double w = this->frame().width, h = this->frame().height;
    bar.setFrame({0, 0, w, h});
    if (bar.tag() == 0) {
        // The camera is placed once; later layouts leave it where it is.
        bar.setTag(1);
        camera_->setFrame({0.1 * w, 0.2 * h, 0.8 * w, 0.6 * h});
        camera_->layer().setCornerRadius(0.01 * h);
    }
}

template <class Base> void EditCanvas<Base>::txtChanged(const std::string&, ui::View&) {}
template <class Base> void EditCanvas<Base>::imageChanged(const gfx::Image&, ui::View&) {}

template class EditCanvas<ui::View>;
template class EditCanvas<ui::ScrollView>;

} // namespace morvane::detail
