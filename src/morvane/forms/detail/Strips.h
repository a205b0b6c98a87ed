#pragma once
// The strips every text entry carries: the caption, the error line and the
// toaster are disabled text fields; the error line comes and goes with its
// text, and the toaster slides up from the bottom edge and away again.

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Font.h>
#include <morvane/ui/text/TextField.h>

#include <memory>
#include <string_view>

namespace morvane::detail {

// A disabled, hidden one-line field.
std::shared_ptr<ui::TextField> makeStrip(const gfx::Font& font, const gfx::Color& text,
                                         const gfx::Color& background);

// Shows the text on the colour; "" hides the line and clears its colour.
void showError(ui::TextField& error, std::string_view text, const gfx::Color& colour);

// Red, fading in while it rises (1.5 s) until its bottom meets the owner's
// bottom edge, then half its height down while fading out (1 s), then hidden.
void slideToast(const std::shared_ptr<ui::TextField>& toaster, double ownerHeight, std::string_view text);

constexpr double kToastUp = 1.5;
constexpr double kToastDown = 1.0;

} // namespace morvane::detail
