#include <morvane/lists/UITblCell.h>

#include <morvane/components/Translation.h>
#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/GColor.h>

#include <cmath>

namespace morvane {

namespace {

// The last piece of the text after splitting at `separator`; the whole text
// when it holds none.
std::string_view lastPiece(std::string_view text, char separator) {
    const auto at = text.rfind(separator);
    return at == std::string_view::npos ? text : text.substr(at + 1);
}

} // namespace

UITblCell::UITblCell(Style style, std::string reuseIdentifier)
    : ui::TableViewCell(style, std::move(reuseIdentifier)) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double size = gfx::Font::systemFontSize();
    const gfx::Color white = gfx::Color::whiteColor();
    setSelectionStyle(SelectionStyle::None);

    photo_ = std::make_shared<ui::ImageView>();
    photo_->setContentMode(gfx::ContentMode::AspectFill);
    photo_->setClipsToBounds(true);
    contentView()->addSubview(photo_);

    priceLbl_ = std::make_shared<ui::Label>();
    priceLbl_->setTextAlignment(gfx::TextAlignment::Right);
    priceLbl_->setTextColor(white);
    priceLbl_->setFont(gfx::Font::boldSystemFont(0.9 * size));
    priceLbl_->setText("1.0");
    contentView()->addSubview(priceLbl_);

    headLbl_ = std::make_shared<ui::Label>();
    headLbl_->setTextAlignment(gfx::TextAlignment::Left);
    headLbl_->setTextColor(white);
    headLbl_->setFont(gfx::Font::boldSystemFont(0.9 * size));
    contentView()->addSubview(headLbl_);

    bodyLbl_ = std::make_shared<ui::TextView>();
    bodyLbl_->setTextAlignment(gfx::TextAlignment::Left);
    bodyLbl_->setTextColor(white);
    bodyLbl_->setFont(gfx::Font::italicSystemFont(0.7 * size));
    bodyLbl_->setBackgroundColor(gfx::Color::clearColor());
    bodyLbl_->setUserInteractionEnabled(false);
    bodyLbl_->setShowsVerticalScrollIndicator(false);
    bodyLbl_->setTextContainerInset({});
    contentView()->addSubview(bodyLbl_);

    checkLabel_ = std::make_shared<ui::Label>();
    checkLabel_->setTextAlignment(gfx::TextAlignment::Center);
    checkLabel_->setTextColor(white);
    checkLabel_->setFont(gfx::Font::boldSystemFont(0.8 * size));
    checkLabel_->setText("\u2713");
    contentView()->addSubview(checkLabel_);

    indicator_ = std::make_shared<ui::ActivityIndicator>(ui::ActivityIndicator::Style::Large);
    indicator_->setColor(white);
    indicator_->setHidden(true);
    contentView()->addSubview(indicator_);
}

UITblCell::~UITblCell() = default;

void UITblCell::addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!name) {
        photo_->setHidden(true);
        return;
    }
    photo_->setHidden(false);
    showProgress(true);
    // A released cell is left alone; a reused one shows what arrives.
    std::weak_ptr<UITblCell> weakSelf = std::static_pointer_cast<UITblCell>(weak_from_this().lock());
    // The cell is the requester: a download it no longer waits for is given up.
    ZBImageModel::loadOnMain(name, imgd, std::weak_ptr<const void>(weakSelf),
                             [weakSelf](const gfx::Image& image) {
                                 if (auto self = weakSelf.lock()) self->showLoaded(image);
                             });
}

void UITblCell::showLoaded(const gfx::Image& image) {
    const ZBImageModel::Shape shape = ZBImageModel::shapeOf(image);
    if (shape == ZBImageModel::Shape::Tall) {
        photo_->setContentMode(gfx::ContentMode::AspectFit);
        // A picture whose corners disagree sits on clear; one that cannot be read keeps the old backdrop.
        if (auto corners = GColor::cornersColor(image)) photo_->setBackgroundColor(*corners);
        photo_->setClipsToBounds(true);
    } else {
        // Only tall pictures get a backdrop; a reused cell drops the last one.
        photo_->setBackgroundColor(gfx::Color::clearColor());
        photo_->setContentMode(shape == ZBImageModel::Shape::Wide ? gfx::ContentMode::AspectFill
                                                                  : gfx::ContentMode::AspectFit);
        // An exactly square picture is shown whole, unclipped.
        photo_->setClipsToBounds(shape != ZBImageModel::Shape::Square);
    }
    photo_->setImage(image);
    showProgress(false);
}

std::string UITblCell::addHeader(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    const std::string_view shortened = lastPiece(lastPiece(text, '-'), '/');
    headLbl_->setText(withoutTranslateMarkers(shortened));
    return std::string(shortened);
}

void UITblCell::addBody(std::optional<std::string_view> text) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!text) {
        bodyLbl_->setText("");
    } else if (bodyLbl_->text().empty()) {
        bodyLbl_->setText(std::string(*text));
    } else {
        bodyLbl_->setText(bodyLbl_->text() + "\n" + std::string(*text));
    }
}

void UITblCell::addPrice(std::optional<std::string_view> text) {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!text) {
        priceLbl_->setHidden(true);
        return;
    }
    priceLbl_->setText(std::string(*text));
    priceLbl_->setHidden(false);
}

void UITblCell::showCheckLabel(bool show) {
    checkLabel_->setHidden(!show);
}

void UITblCell::showProgress(bool show) {
    indicator_->setHidden(!show);
    photo_->setHidden(show);
    if (show)
        indicator_->startAnimating();
    else
        indicator_->stopAnimating();
}

double UITblCell::getTextHeight() {
    return 1.5 *
           gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(gfx::Font::systemFontSize())).height;
}

double UITblCell::bottomOf(const ui::View& view, double offset) {
    const gfx::Rect frame = view.frame();
    return frame.y + frame.height + offset;
}

double UITblCell::heightOf(const ui::View& view, double offset) const {
    return bounds().height - bottomOf(view, offset);
}

void UITblCell::addBorder(ui::View& view, double width) {
    view.layer().setBorderColor(gfx::Color::whiteColor());
    view.layer().setBorderWidth(width);
}

void UITblCell::insetIt(ui::View& view) {
    const gfx::Rect b = view.bounds();
    view.layer().setMask(ui::MaskLayer{
        gfx::Rect(kSideInset, kTopInset, b.width - 2 * kSideInset, b.height - 2 * kTopInset), 0});
}

std::optional<gfx::Color> UITblCell::getColorOfCornersForImage(const gfx::Image& image) {
    auto bitmap = GColor::createARGBBitmapContextFromImage2(image);
    if (!bitmap) return std::nullopt;
    const int w = bitmap->width(), h = bitmap->height();
    if (w < 2 || h < 2) return std::nullopt;
    bitmap->canvas().drawImage(image, gfx::Rect(0, 0, w, h));
    const auto bytes = bitmap->bytes();
    // The kit's corner samples, in their order; the first one is the answer.
    const gfx::Point corners[4] = {
        {1, 1}, {double(w - 1), 0}, {0, double(h - 1)}, {double(w - 1), double(h - 1)}};
    std::optional<gfx::Color> first;
    for (const gfx::Point& corner : corners) {
        auto color = getColorAtPoint(corner, bytes, w);
        if (!first) first = color;
    }
    return first;
}

std::optional<gfx::Color> UITblCell::getColorAtPoint(gfx::Point point, std::span<const std::uint8_t> data,
                                                     int width) {
    if (!(point.x >= 0) || !(point.y >= 0) || width <= 0 || point.x >= width) return std::nullopt;
    const double offset = (std::trunc(point.y) * width + std::trunc(point.x)) * 4;
    if (!(offset + 4 <= static_cast<double>(data.size()))) return std::nullopt;
    const auto at = static_cast<std::size_t>(offset);
    return gfx::Color(data[at] / 255.0, data[at + 1] / 255.0, data[at + 2] / 255.0, data[at + 3] / 255.0);
}

void UITblCell::setSelected(bool selected, bool animated) {
    ui::TableViewCell::setSelected(selected, animated);
}

void UITblCell::layoutSubviews() {
    ui::TableViewCell::layoutSubviews();
    const gfx::Rect content = contentView()->frame();
    const double W = content.width;
    const double H = content.height;
    const double t = getTextHeight();

    const double p = 0.7 * H;
    const gfx::Rect photoFrame(0.1 * p, (H - p) / 2, p, p);
    photo_->setFrame(photoFrame);
    photo_->layer().setCornerRadius(p / 2);
    indicator_->setFrame(photoFrame);

    headLbl_->setFrame({0.9 * H, 0.2 * t, W - 1.1 * H, t});
    bodyLbl_->setFrame({0.9 * H, bottomOf(*headLbl_), W - 1.1 * H, heightOf(*headLbl_, 5)});
    // The price shares the header's line and covers its right end.
    priceLbl_->setFrame({0.7 * W, 0.2 * t, 0.25 * W, t});

    const double c = 0.8 * t;
    checkLabel_->setFrame({W - 1.9 * c, (H - c) / 2, c, c});
    checkLabel_->layer().setCornerRadius(c / 2);
    addBorder(*checkLabel_, 2);

    contentView()->setFrame(content.inset({0, kSideInset, 0, kSideInset}));
    insetIt(*this);
}

} // namespace morvane
