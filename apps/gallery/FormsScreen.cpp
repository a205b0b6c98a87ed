#include "FormsScreen.h"

#include <morvane/gfx/Font.h>
#include <morvane/model/List.h>

#include <cstdlib>

namespace gallery {

using namespace morvane;

namespace {

constexpr double kFieldHeight = 70;

Value problem(const std::string& message, const gfx::Color& colour) {
    return List::make({Value(message), Value::object(colour)});
}

} // namespace

FormsScreen::FormsScreen(const gfx::Rect& frame) : TitledScreen(frame, "Table request", "Fill in the form") {
    name_ = ZBTxt::initWithName("Guest name", "person", false);
    phone_ = ZBTxt::initWithName("Phone", "phone", false);
    email_ = ZBTxt::initWithName("Email", "email", false);
    party_ = UITxt::initWithName("Party size", "about", false);
    flight_ = ZBTxt::initWithName("Flight Number", "about", false);
    note_ = std::make_shared<ui::Label>();
    note_->setFont(gfx::Font::italicSystemFont(14));
    note_->setTextColor(style::kSoftText);
    note_->setNumberOfLines(3);
    note_->setText("No note yet");
    noteButton_ = style::actionButton("Add a note", style::kBar);
    requestButton_ = style::actionButton("Request a table");
    noteBar_ = ZBDataInput::initWithData();
    noteBar_->setHidden(true);
    for (const auto& view : std::initializer_list<std::shared_ptr<ui::View>>{
             name_, phone_, email_, party_, flight_, note_, noteButton_, requestButton_, noteBar_})
        addSubview(view);
}

std::shared_ptr<FormsScreen> FormsScreen::make(const gfx::Rect& frame, Back back) {
    auto screen = std::make_shared<FormsScreen>(frame);
    screen->wire(std::move(back));
    return screen;
}

void FormsScreen::wire(Back back) {
    watchBack(std::move(back));
    // What was typed last time, kept by each field under its name.
    for (const auto& field : {name_, phone_, email_, flight_})
        field->addPlaceholder(field->title()->text());
    email_->watchAction(0,
                        [](const std::string&, const std::string& text) -> Value {
                            if (!text.empty() && text.find('@') == std::string::npos)
                                return problem("An email address has an @", gfx::Color::redColor());
                            return {};
                        },
                        {});
    party_->watchAction(0,
                        [](const std::string&, const std::string& text) -> Value {
                            if (std::strtod(text.c_str(), nullptr) > 12)
                                return problem("At most 12 guests", style::kStop);
                            return {};
                        },
                        {});
    std::weak_ptr<FormsScreen> weak = std::static_pointer_cast<FormsScreen>(shared_from_this());
    noteButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        self->noteBar_->addData(self->note_->text() == "No note yet" ? "" : self->note_->text());
        self->noteBar_->show(*self);
    });
    requestButton_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        if (auto self = weak.lock()) self->request();
    });
    noteBar_->watchAction(
        0,
        [weak](const std::string& text) {
            if (auto self = weak.lock()) {
                self->note_->setText(text.empty() ? "No note yet" : text);
                self->status()->setText("Note saved");
            }
        },
        [weak](bool) {
            if (auto self = weak.lock()) {
                self->note_->setText("No note yet");
                self->status()->setText("Note deleted");
            }
        },
        [weak](bool) {
            if (auto self = weak.lock()) self->status()->setText("Note left as it was");
        });
}

void FormsScreen::request() {
    std::string missing;
    for (const auto& field : {name_, phone_, email_})
        if (field->isErrorInputShowErrorMsg() && missing.empty()) missing = field->title()->text();
    status()->setText(missing.empty() ? "Table requested for " + name_->text() : "Missing: " + missing);
}

void FormsScreen::layoutSubviews() {
    const gfx::Rect area = placeFrame();
    const double w = area.width - 40;
    double y = area.y;
    for (const auto& field :
         std::initializer_list<std::shared_ptr<ui::View>>{name_, phone_, email_, party_, flight_}) {
        field->setFrame({20, y, w, kFieldHeight});
        y += kFieldHeight + 8;
    }
    note_->setFrame({20, y, w, 56});
    noteButton_->setFrame({20, y + 64, (w - 10) / 2, 48});
    requestButton_->setFrame({30 + (w - 10) / 2, y + 64, (w - 10) / 2, 48});
    noteBar_->setFrame(bounds());
}

} // namespace gallery
