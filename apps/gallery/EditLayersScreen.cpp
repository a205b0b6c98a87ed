#include "EditLayersScreen.h"

#include "Style.h"

#include <morvane/gfx/Font.h>

namespace gallery {

using namespace morvane;

namespace {

constexpr const char* kLines[] = {"Front desk notices", "Breakfast 7:00 to 10:30 in the garden room",
                                  "Pool open until 20:00", "Late checkout on request"};

} // namespace

EditLayersScreen::EditLayersScreen(const gfx::Rect& frame)
    : TitledScreen(frame, "Edit layers", "Switch on Edit, then touch a notice") {
    board_ = std::make_shared<NoticeBoard>();
    board_->setBackgroundColor(style::kBar);
    for (const char* text : kLines) {
        auto line = std::make_shared<ui::Label>();
        line->setText(text);
        line->setTextColor(gfx::Color::whiteColor());
        line->setNumberOfLines(2);
        line->setFont(lines_.empty() ? gfx::Font::boldSystemFont(20) : gfx::Font::systemFont(16));
        board_->addSubview(line);
        lines_.push_back(std::move(line));
    }
    welcome_ = std::make_shared<ui::TextView>();
    welcome_->setText("Welcome to Hotel Farol. Ask us about boat trips along the coast.");
    welcome_->setFont(gfx::Font::systemFont(15));
    welcome_->setEditable(false);
    board_->addSubview(welcome_);
    editSwitch_ = std::make_shared<ui::Button>();
    editSwitch_->setTitle("Edit");
    editSwitch_->setTitleColor(gfx::Color::whiteColor());
    editSwitch_->setBackgroundColor(style::kBar);
    editSwitch_->layer().setCornerRadius(15);
    addSubview(board_);
    addSubview(editSwitch_);
}

std::shared_ptr<EditLayersScreen> EditLayersScreen::make(const gfx::Rect& frame, Back back) {
    auto screen = std::make_shared<EditLayersScreen>(frame);
    screen->wire(std::move(back));
    return screen;
}

void EditLayersScreen::wire(Back back) {
    watchBack(std::move(back));
    std::weak_ptr<EditLayersScreen> weak = std::static_pointer_cast<EditLayersScreen>(shared_from_this());
    board_->changed = [weak](const std::string& text, ui::View&) {
        auto self = weak.lock();
        if (!self) return;
        self->reported_.push_back(text);
        self->status()->setText("The layer reported \"" + text + "\"");
    };
    editSwitch_->addAction(ui::ControlEvent::TouchUpInside, [weak](ui::Control&) {
        auto self = weak.lock();
        if (!self) return;
        const bool on = !self->board_->canEdit();
        self->board_->edit(on);
        self->editSwitch_->setTitle(on ? "Done" : "Edit");
        self->status()->setText(on ? "Touch a notice, then its ↑ button" : "Viewing");
    });
}

void EditLayersScreen::layoutSubviews() {
    const gfx::Rect area = placeFrame();
    const double w = area.width;
    editSwitch_->setFrame({w - 98, 8, 90, 30});
    board_->setFrame(area);
    double y = 24;
    for (const auto& line : lines_) {
        const double height = line == lines_.front() ? 36 : 48;
        line->setFrame({24, y, w - 48, height});
        y += height + 16;
    }
    welcome_->setFrame({24, y + 8, w - 48, 96});
}

} // namespace gallery
