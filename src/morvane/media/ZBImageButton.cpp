#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/media/ImageColor.h>
#include <morvane/media/ResourcePictures.h>
#include <morvane/media/ZBImageButton.h>
#include <morvane/sys/Queue.h>

namespace morvane {

ZBImageButton::ZBImageButton(const gfx::Rect& frame)
    : ZBImageButton(gfx::Color::brownColor(), "credit", "credit") {
    setFrame(frame);
}

ZBImageButton::ZBImageButton(const gfx::Color& color, std::string_view title, std::string_view photo) {
    MORVANE_ASSERT_MAIN_THREAD();
    image_ = std::make_shared<ui::ImageView>(
        ImageColor::color(ResourcePictures::named(photo), gfx::Color::whiteColor()));
    image_->setContentMode(gfx::ContentMode::AspectFit);
    addSubview(image_);
    titleLbl_ = std::make_shared<ui::Label>();
    titleLbl_->setTextColor(gfx::Color::whiteColor());
    titleLbl_->setFont(gfx::Font::boldSystemFont(gfx::Font::systemFontSize() * 0.95));
    titleLbl_->setText(std::string(title));
    addSubview(titleLbl_);
    setBackgroundColor(color);
}

void ZBImageButton::watch(const void*, Callback click, Callback data, Callback last, Callback next,
                          Callback prev, Callback okNext, Callback okPrev) {
    smenuCB = std::move(click);
    dataCB = std::move(data);
    lastCB = std::move(last);
    nextCB = std::move(next);
    prevCB = std::move(prev);
    nextOK = std::move(okNext);
    prevOK = std::move(okPrev);
}

double ZBImageButton::widthAction(std::string_view text) {
    return gfx::TextMetrics::size(text, gfx::Font::systemFont(12)).width;
}

void ZBImageButton::addBorder(ui::View& view, int width) {
    view.layer().setBorderColor(gfx::Color::whiteColor());
    view.layer().setBorderWidth(width);
}

void ZBImageButton::layoutSubviews() {
    ui::Button::layoutSubviews();
    const double w = bounds().width, h = bounds().height;
    image_->setFrame({0.1 * w, 0.2 * h, 0.2 * w, 0.6 * h});
    titleLbl_->setFrame({0.35 * w, 0, 0.6 * w, h});
    titleLbl_->layer().setBorderColor(gfx::Color::whiteColor());
    layer().setCornerRadius(0.5 * h);
    setClipsToBounds(true);
}

} // namespace morvane
