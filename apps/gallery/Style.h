#pragma once
// The gallery's look, shared by its screens: the palette, and the status
// line at the foot of a screen that says what the last touch did.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Font.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/util/Colors.h>

#include <memory>
#include <string>

namespace gallery::style {

inline const morvane::gfx::Color kBar = morvane::Colors::hex("#14213D");
inline const morvane::gfx::Color kList = morvane::Colors::hex("#1D3557");
inline const morvane::gfx::Color kSoftText = morvane::Colors::hex("#A8DADC");
inline const morvane::gfx::Color kStatusText = morvane::Colors::hex("#F1FAEE");
inline const morvane::gfx::Color kGo = morvane::Colors::hex("#2A9D8F");   // call, check in
inline const morvane::gfx::Color kStop = morvane::Colors::hex("#E76F51"); // save, cancel

inline constexpr double kStatusHeight = 44;

inline std::shared_ptr<morvane::ui::Label> statusLine(std::string text) {
    auto status = std::make_shared<morvane::ui::Label>();
    status->setFont(morvane::gfx::Font::systemFont(14));
    status->setTextColor(kStatusText);
    status->setTextAlignment(morvane::gfx::TextAlignment::Center);
    status->setBackgroundColor(kBar);
    status->setText(std::move(text));
    return status;
}

// A screen's big white title.
inline std::shared_ptr<morvane::ui::Label> screenTitle(std::string text) {
    auto title = std::make_shared<morvane::ui::Label>();
    title->setFont(morvane::gfx::Font::boldSystemFont(30));
    title->setTextColor(morvane::gfx::Color::whiteColor());
    title->setText(std::move(text));
    return title;
}

// The "‹ Home" control at a screen's top left.
inline std::shared_ptr<morvane::ui::Button> homeButton() {
    auto back = std::make_shared<morvane::ui::Button>();
    back->setTitle("‹ Home");
    back->setTitleColor(kSoftText);
    return back;
}

// A rounded button that does something on the screen.
inline std::shared_ptr<morvane::ui::Button> actionButton(std::string title,
                                                         const morvane::gfx::Color& colour = kGo) {
    auto button = std::make_shared<morvane::ui::Button>();
    button->setTitle(std::move(title));
    button->setTitleColor(morvane::gfx::Color::whiteColor());
    button->setBackgroundColor(colour);
    button->layer().setCornerRadius(12);
    return button;
}

} // namespace gallery::style
