#include <morvane/forms/EditHelp.h>

#include <morvane/components/DispatchGuard.h>
#include <morvane/gfx/Font.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>

namespace morvane {

EditHelp::EditHelp(std::string_view name, std::string_view, bool password)
    : InputField(name, "home", password) {
    const double f = gfx::Font::systemFontSize();
    editBtn_ = std::make_shared<ui::Button>();
    editBtn_->setTitle("\u2191");
    editBtn_->titleLabel()->setFont(gfx::Font::boldSystemFont(1.2 * f));
    editBtn_->setBackgroundColor(gfx::Color::blackColor());
    editBtn_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { editAction(); });
    addSubview(editBtn_);
    if (const auto& icon = photo()) {
        // The application's own "home" picture when it ships one.
        if (gfx::Image home = ResourcePictures::named("home", {f, f}); !home.isNull()) icon->setImage(home);
        icon->setContentMode(gfx::ContentMode::AspectFill);
        bringSubviewToFront(icon.get());
    }
}

std::shared_ptr<EditHelp> EditHelp::initWithName(std::string_view name, std::string_view image,
                                                 bool password) {
    return std::make_shared<EditHelp>(name, image, password);
}

EditHelp::~EditHelp() {
    editBtn_->removeActions(ui::ControlEvent::TouchUpInside);
}

void EditHelp::watchAction(int unused, ValidationCB text, CompleteCB complete) {
    InputField::watchAction(unused, std::move(text));
    completeCB_ = std::move(complete);
}

void EditHelp::addTxt(std::string_view text) {
    txt()->setText(std::string(text));
}

void EditHelp::editAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!completeCB_) return;
    DispatchGuard guard(*this);
    const CompleteCB call = completeCB_;
    call(title()->text(), txt()->text());
}

void EditHelp::textViewDidChange(ui::TextView& view) {
    sys::Log::platform("textViewDidChange  " + view.text());
}

void EditHelp::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, s = 1.2 * gfx::Font::systemFontSize(), e = 1.2 * s;
    if (const auto& icon = photo()) icon->setFrame({0.1 * s, 0.2 * s, s, s});
    txt()->setFrame({0, 0, w, h});
    txt()->setTextContainerInset({0.2 * s, e, 0, 2});
    editBtn_->setFrame({w - 1.2 * e, h - 1.2 * e, e, e});
    editBtn_->layer().setCornerRadius(e / 2);
}

} // namespace morvane
