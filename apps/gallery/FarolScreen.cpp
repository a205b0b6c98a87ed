#include "FarolScreen.h"

#include "Style.h"

#include <morvane/components/MainQueue.h>
#include <morvane/gfx/Font.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Notifications.h>
#include <morvane/ui/controls/ImageView.h>

#include <map>

namespace gallery {

using namespace morvane;

namespace {
using Keys = std::vector<std::string>;
} // namespace

FarolScreen::FarolScreen(const gfx::Rect& frame, std::shared_ptr<Translator> translator)
    : Screen(frame), translator_(std::move(translator)) {
    setBackgroundColor(style::kBar);
    menu_ = std::make_shared<Morvane>();
    status_ = style::statusLine("Tap an item · ✓ switches check marks");
    // Long enough for what the desktop was handed and why it was not shown.
    status_->setNumberOfLines(3);
    status_->setFont(gfx::Font::systemFont(12));
    checkMarks_ = style::actionButton("✓ off", style::kList);
    for (const auto& view : std::initializer_list<std::shared_ptr<ui::View>>{menu_, status_, checkMarks_})
        addSubview(view);
}

FarolScreen::~FarolScreen() {
    sys::Notifications::setDeliveryObserver({});
}

std::shared_ptr<FarolScreen> FarolScreen::make(const gfx::Rect& frame, const NodePtr& sample,
                                               std::shared_ptr<Translator> translator, Back back) {
    auto screen = std::make_shared<FarolScreen>(frame, std::move(translator));
    screen->wire(sample ? sample : Node::make(), std::move(back));
    return screen;
}

void FarolScreen::say(const std::string& text) {
    status_->setText(text);
}

void FarolScreen::configure(bool checkMarks) {
    checkMarksOn_ = checkMarks;
    checkMarks_->setTitle(checkMarks ? "✓ on" : "✓ off");
    menu_->cfg({.list = {.image = [](Keys& keys) { keys = {"image"}; },
                         .header = [](Keys& keys) { keys = {"name"}; },
                         .body = [](Keys& keys) { keys = {"time"}; },
                         .price = [](Keys& keys) { keys = {"$price"}; },
                         .sortBy = [](Keys& keys) { keys = {"name"}; },
                         .numOfCol = [](float& columns) { columns = 2; },
                         .checkBox = [checkMarks](bool& on) { on = checkMarks; }},
                .profileBody = [](Keys& keys) {
                    keys = {"name", "phone", "email", "time", "about"};
                }});
    menu_->refresh();
}

void FarolScreen::wire(const NodePtr& sample, Back back) {
    std::weak_ptr<FarolScreen> weak = std::static_pointer_cast<FarolScreen>(shared_from_this());
    menu_->setBackgroundColor(style::kBar);
    menu_->showBackBtn(true);
    menu_->admin(true);
    menu_->watchBackCB([back](const std::string&, const NodePtr&) {
        if (back) back();
    });
    const std::shared_ptr<Translator> translator = translator_;
    menu_->watchTranslate([translator](const std::string& text, TranslateCompletion done) {
        translator->translate(text, std::move(done));
    });
    menu_->addHeaderImage(sample->get("photo").textOr(), std::nullopt);
    menu_->addHeaderTitle(sample->get("title").textOr());
    menu_->addHeaderSubtitle(sample->get("subtitle").textOr());
    if (const NodePtr sets = sample->get("sets").node())
        for (const auto& [name, items] : *sets)
            menu_->addDataWhenSelect(name, items);

    // The application's notification texts and name.
    std::map<std::string, std::string> strings;
    if (const NodePtr table = sample->get("strings").node())
        for (const auto& [key, text] : *table)
            strings[key] = text.toText();
    sys::Notifications::setStrings(strings);
    sys::Notifications::setApplicationName(sample->get("title").textOr());
    const NodePtr notification = sample->get("notification").node();
    const std::string title = notification ? notification->get("title").textOr() : "";
    const std::string body = notification ? notification->get("body").textOr() : "";
    sys::Notifications::setDeliveryObserver([weak](const sys::Notifications::Delivery& delivery) {
        const std::string what =
            "The desktop was handed \"" + delivery.content.title + "\" — \"" + delivery.content.body + "\"" +
            (delivery.serviceId ? " (shown as #" + std::to_string(delivery.serviceId) + ")"
                                : " (not shown: " + delivery.error + ")");
        postToMain(weak, [what](FarolScreen& screen) { screen.say(what); });
    });

    menu_->watchTouchSelect([weak, title, body](const std::string& action, const NodePtr& item) {
        auto self = weak.lock();
        if (!self) return;
        const std::string name = item ? item->get("name").textOr() : "";
        if (action == "book") {
            Morvane::addNotification(title, body);
            self->say("Booking " + name + ": a notification in 5 seconds");
        } else {
            self->say("Contact \"" + action + "\" for " + name);
        }
    });
    for (const char* field : {"phone", "email", "time", "about", "name"})
        menu_->watchField(field, [weak](const std::string& key, const std::string&, const std::string& name,
                                        const std::string& text) {
            if (auto self = weak.lock())
                self->say("Field \"" + name + "\" of " + key + " is now \"" + text + "\"");
        });
    menu_->watchName([weak](const std::string& text, const NodePtr& set) {
        if (auto self = weak.lock())
            self->say("Renamed " + text.substr(text.find('-') + 1) + " in a set of " +
                      std::to_string(set ? set->size() : 0) + " items");
    });
    checkMarks_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        self->menu_->profileUI()->setHidden(true);
        self->configure(!self->checkMarksOn_);
        self->say(self->checkMarksOn_ ? "Check marks on: a tap marks a tile, the card stays closed"
                                      : "Check marks off: a tap opens the card");
    });
    configure(false);
}

std::string FarolScreen::waitingFor() const {
    const auto& grid = *menu_->tblHdrUI()->ctblUI();
    if (!grid.myData() || grid.myData()->empty()) return "the tiles";
    const auto& card = *menu_->profileUI();
    if (!card.isHidden()) {
        if (card.imageZB()->imageView().image().isNull()) return "the card's picture";
        for (std::size_t i = 0; i < card.myLblData().size(); ++i)
            if (isTranslatable(card.myLblData()[i]->get("data").textOr()) &&
                card.myLbl()[i]->text() == withoutTranslateMarkers(card.myLblData()[i]->get("data").textOr()))
                return "the card's translation";
        if (!card.dataInputZB()->isHidden()) return "the data input bar to slide away";
    }
    return {};
}

void FarolScreen::layoutSubviews() {
    const gfx::Size size = bounds().size();
    const double foot = style::kStatusHeight + 12;
    menu_->setFrame({0, 0, size.width, size.height - foot});
    status_->setFrame({0, size.height - foot, size.width - 80, foot});
    checkMarks_->setFrame({size.width - 74, size.height - foot + 8, 66, foot - 16});
}

} // namespace gallery
