#include "GuestScreen.h"

#include "Style.h"
#include "VirtualCamera.h"

#include <morvane/gfx/Font.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

namespace gallery {

using namespace morvane;

GuestScreen::GuestScreen(const gfx::Rect& frame, std::shared_ptr<Translator> translator)
    : TitledScreen(frame, "Guest profile", "Switch on Edit, then touch what to change"),
      translator_(std::move(translator)) {
    card_ = std::make_shared<UIProfile>();
    card_->setBackgroundColor(style::kBar);
    editSwitch_ = std::make_shared<ui::Button>();
    editSwitch_->setTitle("Edit");
    editSwitch_->setTitleColor(gfx::Color::whiteColor());
    editSwitch_->setBackgroundColor(style::kBar);
    editSwitch_->layer().setCornerRadius(15);
    received_ = std::make_shared<ui::Label>();
    received_->setFont(gfx::Font::systemFont(11));
    received_->setTextColor(style::kStatusText);
    received_->setNumberOfLines(0);
    received_->setText("What the application receives appears here.");
    camera_ = std::make_shared<NCamera>();
    camera_->setHidden(true);
    for (const auto& view :
         std::initializer_list<std::shared_ptr<ui::View>>{card_, received_, editSwitch_, camera_})
        addSubview(view);
}

std::shared_ptr<GuestScreen> GuestScreen::make(const gfx::Rect& frame, const NodePtr& sample,
                                               const gfx::Image& scene,
                                               std::shared_ptr<Translator> translator,
                                               const std::filesystem::path& folder, Back back) {
    auto screen = std::make_shared<GuestScreen>(frame, std::move(translator));
    screen->wire(std::move(back));
    screen->fill(sample);
    if (!showToCamera(scene, folder / "guest-camera.png"))
        screen->status()->setText("No picture for the camera");
    return screen;
}

void GuestScreen::fill(const NodePtr& sample) {
    card_->addKeyCode(sample->get("key").textOr());
    card_->addName(sample->get("name").textOr());
    card_->addImage(sample->get("photo").textOr(), std::nullopt);
    card_->clear();
    if (const ListPtr values = sample->get("values").list()) {
        for (const Value& entry : *values) {
            const NodePtr value = entry.node();
            if (!value) continue;
            card_->addVal(value->get("data"), value->get("field").textOr());
            if (value->get("field").textOr() == "note") noteSource_ = value->get("data").textOr();
        }
    }
    card_->refreshTranslate();
    card_->shrink();
}

void GuestScreen::show(const std::string& what, const std::string& text, const NodePtr& node) {
    receivedText_ = what + "(\"" + text + "\")";
    received_->setText(receivedText_ + "\nwith " + json::write(Value(node)));
    status()->setText("The application received " + what);
}

void GuestScreen::wire(Back back) {
    watchBack(std::move(back));
    std::weak_ptr<GuestScreen> weak = std::static_pointer_cast<GuestScreen>(shared_from_this());
    auto report = [weak](const char* what) {
        return [weak, what](const std::string& text, const NodePtr& node) {
            if (auto self = weak.lock()) self->show(what, text, node);
        };
    };
    card_->watchName(report("nameCB"));
    card_->watchRemove(report("removeCB"));
    card_->watchEdit(report("editCB"));
    card_->watchImage([weak](const gfx::Image& picture, const NodePtr& node) {
        if (auto self = weak.lock())
            self->show("logoCB",
                       std::to_string(picture.pixelWidth()) + " x " + std::to_string(picture.pixelHeight()) +
                           " picture",
                       node);
    });
    card_->watchClose([weak](const std::string&) {
        if (auto self = weak.lock()) self->status()->setText("The card was closed; Edit brings it back");
    });
    std::shared_ptr<Translator> translator = translator_;
    card_->watchTranslate([translator](const std::string& text, TranslateCompletion done) {
        translator->translate(text, std::move(done));
    });
    // The take-photo button opens the application's own camera; its photo
    // goes back through the completion, and the screen shows it on the card.
    card_->watchActivateCamera([weak](const std::string&, UIProfile::PhotoCompletion done) {
        auto self = weak.lock();
        if (!self) return;
        self->camera_->setHidden(false);
        self->bringSubviewToFront(self->camera_.get());
        self->camera_->watch(
            0,
            [weak, done](const std::vector<std::uint8_t>& bytes) {
                auto screen = weak.lock();
                if (!screen) return;
                screen->camera_->setHidden(true);
                const gfx::Image photo = gfx::Image::fromData(bytes);
                done(photo);
                screen->card_->addImage(photo);
            },
            [weak](bool) {
                if (auto screen = weak.lock()) screen->camera_->setHidden(true);
            });
    });
    editSwitch_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        const bool on = !self->card_->canEdit();
        self->card_->setHidden(false);
        self->card_->editEnable(on);
        self->editSwitch_->setTitle(on ? "Done" : "Edit");
        self->status()->setText(on ? "Touch the name, a value or the photo" : "Viewing");
    });
}

std::string GuestScreen::waitingFor() const {
    if (card_->imageZB()->imageView().image().isNull()) return "the guest's photo";
    if (!card_->dataInputZB()->isHidden()) return "the data input bar to slide away";
    const auto& labels = card_->myLbl();
    const auto& data = card_->myLblData();
    for (std::size_t i = 0; i < data.size() && i < labels.size(); ++i)
        if (isTranslatable(data[i]->get("data").textOr()) &&
            labels[i]->text() == withoutTranslateMarkers(data[i]->get("data").textOr()))
            return "the note's translation";
    return {};
}

void GuestScreen::layoutSubviews() {
    const gfx::Rect area = placeFrame();
    const double w = area.width;
    editSwitch_->setFrame({w - 98, 8, 90, 30});
    card_->setFrame({0, area.y, w, area.height - 96});
    received_->setFrame({12, card_->frame().maxY() + 4, w - 24, 88});
    camera_->setFrame({0.1 * w, area.y + 40, 0.8 * w, 0.6 * area.height});
}

} // namespace gallery
