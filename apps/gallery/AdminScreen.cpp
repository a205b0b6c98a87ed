#include "AdminScreen.h"

#include "Style.h"

#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/ui/controls/ImageView.h>

namespace gallery {

using namespace morvane;

namespace {
using Keys = std::vector<std::string>;
} // namespace

AdminScreen::AdminScreen(const gfx::Rect& frame) : Screen(frame) {
    setBackgroundColor(style::kBar);
    admin_ = UIAdmin::initWithBackButton(true);
    status_ = style::statusLine("Tap a record · the pen edits it");
    status_->setNumberOfLines(2);
    addSubview(admin_);
    addSubview(status_);
}

std::shared_ptr<AdminScreen> AdminScreen::make(const gfx::Rect& frame, const NodePtr& sample, Back back) {
    auto screen = std::make_shared<AdminScreen>(frame);
    screen->wire(sample ? sample : Node::make(), std::move(back));
    return screen;
}

void AdminScreen::wire(const NodePtr& sample, Back back) {
    std::weak_ptr<AdminScreen> weak = std::static_pointer_cast<AdminScreen>(shared_from_this());
    admin_->setBackgroundColor(style::kBar);
    admin_->cfg({.list = {.header = [](Keys& keys) { keys = {"name"}; },
                          .body =
                              [](Keys& keys) {
                                  keys = {"phone", "email"};
                              },
                          .sortBy = [](Keys& keys) { keys = {"name"}; },
                          // The list marks rows by default; here a tap opens the card.
                          .checkBox = [](bool& on) { on = false; }},
                 .profileBody = [](Keys& keys) {
                     keys = {"name", "phone", "email", "time"};
                 }});
    admin_->addHeaderImage(sample->get("photo").textOr(), std::nullopt);
    admin_->addHeaderTitle(sample->get("title").textOr());
    admin_->addHeaderSubtitle(sample->get("subtitle").textOr());
    if (const NodePtr sets = sample->get("sets").node())
        for (const auto& [name, records] : *sets)
            admin_->addDataWhenSelect(name, records);
    admin_->showBackBtn(true);
    admin_->watchBackCB([back](const std::string&, const NodePtr&) {
        if (back) back();
    });
    // The pen is shown, editing starts off: the pen turns it on.
    admin_->editEnable(true);
    admin_->profileUI()->editEnable(false);
    for (const char* field : {"name", "phone", "email", "time"})
        admin_->watchField(field, [weak](const std::string& key, const std::string& title,
                                         const std::string& name, const std::string& text) {
            if (auto self = weak.lock())
                self->status_->setText("watchField \"" + name + "\": " + key + " (" + title + ") is now \"" +
                                       text + "\"");
        });
    admin_->refresh();
}

std::string AdminScreen::waitingFor() const {
    const auto& card = *admin_->profileUI();
    if (!card.isHidden() && !card.dataInputZB()->isHidden()) return "the data input bar to slide away";
    return {};
}

void AdminScreen::layoutSubviews() {
    const gfx::Size size = bounds().size();
    const double foot = style::kStatusHeight + 12;
    admin_->setFrame({0, 0, size.width, size.height - foot});
    status_->setFrame({0, size.height - foot, size.width, foot});
}

} // namespace gallery
