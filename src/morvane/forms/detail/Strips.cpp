#include <morvane/forms/detail/Strips.h>

namespace morvane::detail {

std::shared_ptr<ui::TextField> makeStrip(const gfx::Font& font, const gfx::Color& text,
                                         const gfx::Color& background) {
    auto field = std::make_shared<ui::TextField>();
    field->setEnabled(false);
    field->setFont(font);
    field->setTextColor(text);
    field->setBackgroundColor(background);
    field->setHidden(true);
    return field;
}

void showError(ui::TextField& error, std::string_view text, const gfx::Color& colour) {
    error.setHidden(text.empty());
    error.setBackgroundColor(text.empty() ? gfx::Color::clearColor() : colour);
    error.setText(std::string(text));
}

void slideToast(const std::shared_ptr<ui::TextField>& toaster, double ownerHeight, std::string_view text) {
    toaster->setText(std::string(text));
    toaster->setBackgroundColor(gfx::Color::redColor());
    toaster->setHidden(false);
    toaster->setAlpha(0);
    std::weak_ptr<ui::TextField> weak = toaster;
    ui::View::animate(
        kToastUp,
        [&] {
            toaster->setCenter({toaster->center().x, ownerHeight - toaster->bounds().height / 2});
            toaster->setAlpha(1);
        },
        [weak](bool) {
            auto strip = weak.lock();
            if (!strip) return;
            ui::View::animate(
                kToastDown,
                [&] {
                    const gfx::Rect frame = strip->frame();
                    strip->setCenter({strip->center().x, frame.y + frame.height});
                    strip->setAlpha(0);
                },
                [weak](bool) {
                    if (auto strip = weak.lock()) strip->setHidden(true);
                });
        });
}

} // namespace morvane::detail
