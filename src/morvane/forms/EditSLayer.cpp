#include <morvane/forms/EditSLayer.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

namespace morvane {

EditSLayer::EditSLayer(const gfx::Rect& frame) : EditCanvas(frame), myIden_(Node::make()) {
    MORVANE_ASSERT_MAIN_THREAD();
    editHelp_ = EditHelp::initWithName("edit", "home", false);
    addSubview(editHelp_);
    editHelp_->setHidden(true);
    bringSubviewToFront(camera().get());
    bringSubviewToFront(editBtn().get());
    watchEditHelp();
    setScrollEnabled(false);
}

EditSLayer::~EditSLayer() {
    editHelp_->watchAction(0, {}, {});
}

void EditSLayer::addID(std::string_view key, const Value& value) {
    myIden_->set(key, value);
}

bool EditSLayer::isPictureChild(const ui::View& view) const {
    return dynamic_cast<const ui::ImageView*>(&view) != nullptr;
}

void EditSLayer::edit(bool on) {
    EditCanvas::edit(on);
    setScrollEnabled(on);
}

void EditSLayer::clearFocus() {
    MORVANE_ASSERT_MAIN_THREAD();
    editBtn()->setHidden(true);
    editHelp_->setHidden(true);
    editHelp_->resign();
    setContentOffset({0, 0}, true);
    EditCanvas::clearFocus();
}

void EditSLayer::editAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    const auto current = currentChild();
    if (!current) return;
    if (dynamic_cast<ui::TextField*>(current.get())) {
        current->layer().setBorderWidth(0);
        editBtn()->setHidden(true);
        editHelp_->setHidden(true);
    } else if (auto* label = dynamic_cast<ui::Label*>(current.get())) {
        label->layer().setBorderWidth(0);
        editBtn()->setHidden(true);
        editHelp_->addTxt(label->text());
        editHelp_->setFrame(label->frame());
        editHelp_->setHidden(false);
        bringSubviewToFront(editHelp_.get());
        setContentOffset({0, editHelp_->frame().y - 5}, true);
    } else if (auto* textView = dynamic_cast<ui::TextView*>(current.get())) {
        textView->layer().setBorderWidth(2);
        editBtn()->setHidden(true);
        // Typing happens in the text view itself: it takes touches and the
        // keyboard until the next touch on the layer.
        textView->setEditable(true);
        textView->setUserInteractionEnabled(true);
        textView->becomeFirstResponder();
    } else if (isPictureChild(*current)) {
        openCamera(*current);
    }
}

void EditSLayer::watchEditHelp() {
    editHelp_->watchAction(
        1,
        [this](const std::string&, const std::string& text) -> Value {
            if (auto child = currentChild()) setVal(*child, text);
            return {};
        },
        [this](const std::string&, const std::string& text) {
            DispatchGuard guard(*this);
            auto child = currentChild();
            if (!child) return;
            setVal(*child, text);
            txtChanged(text, *child);
            clearFocus();
        });
}

void EditSLayer::layoutSubviews() {
    EditCanvas::layoutSubviews();
    const double w = frame().width, h = frame().height;
    camera()->setFrame({0.1 * w, 0.2 * h, 0.8 * w, 0.6 * h});
    camera()->layer().setCornerRadius(0.01 * h);
    setContentSize({w, 1.5 * h});
}

} // namespace morvane
