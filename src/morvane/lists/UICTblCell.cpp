#include <morvane/lists/UICTblCell.h>

#include <morvane/components/Translation.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/lists/UITblCell.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>
#include <morvane/util/GColor.h>

namespace morvane {

namespace {

std::string_view lastPiece(std::string_view text, char separator) {
    const auto at = text.rfind(separator);
    return at == std::string_view::npos ? text : text.substr(at + 1);
}

std::shared_ptr<ui::TextView> tileText(const gfx::Font& font) {
    auto text = std::make_shared<ui::TextView>();
    text->setTextAlignment(gfx::TextAlignment::Left);
    text->setTextColor(gfx::Color::whiteColor());
    text->setFont(font);
    text->setBackgroundColor(gfx::Color::clearColor());
    text->setUserInteractionEnabled(false);
    text->setShowsVerticalScrollIndicator(false);
    text->setEditable(false);
    return text;
}

} // namespace

UICTblCell::UICTblCell(std::string reuseIdentifier) : ui::CollectionViewCell(std::move(reuseIdentifier)) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double size = gfx::Font::systemFontSize();
    const gfx::Color white = gfx::Color::whiteColor();
    setClipsToBounds(true);

    photo_ = std::make_shared<ui::ImageView>();
    photo_->setContentMode(gfx::ContentMode::AspectFill);
    photo_->setClipsToBounds(true);
    addSubview(photo_);

    headLbl_ = tileText(gfx::Font::boldSystemFont(0.9 * size));
    addSubview(headLbl_);

    priceLbl_ = std::make_shared<ui::Label>();
    priceLbl_->setTextAlignment(gfx::TextAlignment::Right);
    priceLbl_->setTextColor(white);
    priceLbl_->setFont(gfx::Font::boldSystemFont(0.65 * size));
    addSubview(priceLbl_);

    bodyLbl_ = tileText(gfx::Font::italicSystemFont(0.7 * size));
    bodyLbl_->setTextContainerInset({});
    addSubview(bodyLbl_);

    checkLabel_ = std::make_shared<ui::Label>();
    checkLabel_->setFont(gfx::Font::boldSystemFont(0.8 * size));
    checkLabel_->setTextColor(white);
    checkLabel_->setTextAlignment(gfx::TextAlignment::Center);
    checkLabel_->setText("\u2713");
    checkLabel_->setHidden(true);
    addSubview(checkLabel_);

    indicator_ = std::make_shared<ui::ActivityIndicator>(ui::ActivityIndicator::Style::Large);
    indicator_->setColor(white);
    indicator_->setHidden(true);
    addSubview(indicator_);
}

UICTblCell::~UICTblCell() = default;

// ---- Filling ------------------------------------------------------------------

void UICTblCell::addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!name) {
        photo_->setHidden(true);
        return;
    }
    photo_->setHidden(false);
    showProgress(true);
    std::weak_ptr<UICTblCell> weakSelf = std::static_pointer_cast<UICTblCell>(weak_from_this().lock());
    // The cell is the requester: a download it no longer waits for is given up.
    ZBImageModel::loadOnMain(name, imgd, std::weak_ptr<const void>(weakSelf),
                             [weakSelf](const gfx::Image& image) {
                                 if (auto self = weakSelf.lock()) self->showLoaded(image);
                             });
}

void UICTblCell::showLoaded(const gfx::Image& image) {
    const gfx::Size size = image.size();
    const double ratio = size.height > 0 ? size.width / size.height : 0;
    if (ratio < 0.72) {
        // A tall picture is shown whole, on the colour of its corners.
        photo_->setContentMode(gfx::ContentMode::AspectFit);
        if (auto corners = GColor::cornersColor(image)) photo_->setBackgroundColor(*corners);
        photo_->setClipsToBounds(true);
    } else {
        photo_->setBackgroundColor(gfx::Color::clearColor());
        const bool square = ratio == 1.0;
        photo_->setContentMode(square ? gfx::ContentMode::AspectFit : gfx::ContentMode::AspectFill);
        photo_->setClipsToBounds(!square);
    }
    photo_->setImage(image);
    showProgress(false);
}

std::string UICTblCell::addHeader(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    const std::string_view shortened = lastPiece(lastPiece(text, '-'), '/');
    headLbl_->setText(withoutTranslateMarkers(shortened));
    return std::string(shortened);
}

void UICTblCell::addBody(std::optional<std::string_view> text) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!text)
        bodyLbl_->setText("");
    else if (bodyLbl_->text().empty())
        bodyLbl_->setText(std::string(*text));
    else
        bodyLbl_->setText(bodyLbl_->text() + "\n" + std::string(*text));
}

void UICTblCell::addPrice(std::optional<std::string_view> text) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!text) {
        priceLbl_->setHidden(true);
        return;
    }
    priceLbl_->setText(std::string(*text));
    priceLbl_->setHidden(false);
}

void UICTblCell::showCheckLabel(bool show) {
    checkLabel_->setHidden(!show);
}

void UICTblCell::showProgress(bool show) {
    indicator_->setHidden(!show);
    photo_->setHidden(show);
    if (show)
        indicator_->startAnimating();
    else
        indicator_->stopAnimating();
}

void UICTblCell::runAction() {
    sys::Log::platform("runAction");
}

// ---- Layout -------------------------------------------------------------------

double UICTblCell::getTextHeight() {
    return UITblCell::getTextHeight();
}

double UICTblCell::bottomOf(const ui::View& view, double offset) {
    return UITblCell::bottomOf(view, offset);
}

double UICTblCell::heightOf(const ui::View& view, double offset) const {
    return bounds().height - bottomOf(view, offset);
}

void UICTblCell::addBorder(ui::View& view, double width) {
    UITblCell::addBorder(view, width);
}

std::optional<gfx::Color> UICTblCell::getColorOfCornersForImage(const gfx::Image& image) {
    return UITblCell::getColorOfCornersForImage(image);
}

std::optional<gfx::Color> UICTblCell::getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data,
                                                      int width) {
    return UITblCell::getColorAtPoint(point, data, width);
}

void UICTblCell::layoutSubviews() {
    ui::CollectionViewCell::layoutSubviews();
    const double W = bounds().width;
    const double H = bounds().height;
    const double t = getTextHeight();
    const double size = gfx::Font::systemFontSize();

    if (W > H) {
        // A row: the row cell's places.
        const double p = 0.7 * H;
        const gfx::Rect photoFrame(0.1 * p, (H - p) / 2, p, p);
        photo_->setFrame(photoFrame);
        photo_->layer().setCornerRadius(p / 2);
        indicator_->setFrame(photoFrame);
        headLbl_->setFont(gfx::Font::boldSystemFont(0.9 * size));
        headLbl_->setTextAlignment(gfx::TextAlignment::Left);
        bodyLbl_->setTextAlignment(gfx::TextAlignment::Left);
        headLbl_->setFrame({0.9 * H, 0.2 * t, W - 1.1 * H, t});
        bodyLbl_->setFrame({0.9 * H, bottomOf(*headLbl_), W - 1.1 * H, heightOf(*headLbl_, 5)});
        priceLbl_->setFrame({0.7 * W, 0.2 * t, 0.25 * W, t});
        const double c = 0.8 * t;
        checkLabel_->setFrame({W - 1.5 * c, (H - c) / 2, c, c});
        checkLabel_->layer().setCornerRadius(c / 2);
        addBorder(*checkLabel_, 2);
    } else {
        // A card: the picture on top, the name under it.
        const gfx::Rect photoFrame(0.1 * W, 0.05 * W, 0.8 * W, 0.8 * W);
        photo_->setFrame(photoFrame);
        photo_->layer().setCornerRadius(photoFrame.height / 2);
        indicator_->setFrame(photoFrame);
        headLbl_->setFont(gfx::Font::boldSystemFont(0.8 * size));
        headLbl_->setFrame({0.02 * W, 0.85 * W, 0.96 * W, H - 0.15 * W});
        bodyLbl_->setFrame({});
        priceLbl_->setFrame({0.6 * W, 0, 0.39 * W, t});
        checkLabel_->setFrame({0.9 * W, 0.01 * H, 0.1 * W, 0.1 * W});
        headLbl_->setTextAlignment(gfx::TextAlignment::Center);
        bodyLbl_->setTextAlignment(gfx::TextAlignment::Center);
    }
    layer().setBorderColor(gfx::Color::clearColor());
    layer().setBorderWidth(2);
    layer().setShadowColor(Colors::darkerBy(backgroundColor(), 0.2));
    layer().setShadowOpacity(0.6);
    layer().setShadowRadius(0.05 * H);
    layer().setShadowOffset({0.05 * H, 0.05 * H});
}

} // namespace morvane
