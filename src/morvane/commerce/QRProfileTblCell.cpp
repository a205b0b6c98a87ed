#include <morvane/commerce/QRProfileTblCell.h>

#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Txt.h>

#include <cmath>

namespace morvane {

QRProfileTblCell::QRProfileTblCell(Style style, std::string reuseIdentifier)
    : ui::TableViewCell(style, std::move(reuseIdentifier)) {
    MORVANE_ASSERT_MAIN_THREAD();
    const double size = 0.85 * gfx::Font::systemFontSize();
    leftLbl_ = std::make_shared<ui::Label>();
    leftLbl_->setTextColor(gfx::Color::whiteColor());
    leftLbl_->setFont(gfx::Font::boldSystemFont(size));
    leftLbl_->setTextAlignment(gfx::TextAlignment::Right);
    leftLbl_->setNumberOfLines(0);
    contentView()->addSubview(leftLbl_);

    rightLbl_ = std::make_shared<ui::Label>();
    rightLbl_->setTextColor(gfx::Color::whiteColor());
    rightLbl_->setFont(gfx::Font::systemFont(size));
    rightLbl_->setTextAlignment(gfx::TextAlignment::Left);
    rightLbl_->setNumberOfLines(0);
    contentView()->addSubview(rightLbl_);

    setSelectionStyle(SelectionStyle::None);
    setBackgroundColor(gfx::Color::clearColor());
}

void QRProfileTblCell::addLeft(std::string_view text) {
    leftLbl_->setText(Txt::splitBy(text, "-") + ":");
}

void QRProfileTblCell::addRight(std::string_view text) {
    rightLbl_->setText(std::string(text));
}

double QRProfileTblCell::heightLbl(std::string_view text) const {
    return heightWithConstrainedWidth(0.64 * bounds().width,
                                      gfx::Font::systemFont(gfx::Font::systemFontSize()), text);
}

double QRProfileTblCell::heightWithConstrainedWidth(double width, const gfx::Font& font,
                                                    std::string_view text) {
    return std::ceil(gfx::TextMetrics::boundingSize(text, font, width).height);
}

double QRProfileTblCell::widthWithConstrainedHeight(double, const gfx::Font& font, std::string_view text) {
    return std::ceil(gfx::TextMetrics::size(text, font).width);
}

bool QRProfileTblCell::textFitsInLabel(const ui::Label& label) {
    return heightWithConstrainedWidth(label.bounds().width, label.font(), label.text()) <=
           label.bounds().height;
}

void QRProfileTblCell::layoutSubviews() {
    ui::TableViewCell::layoutSubviews();
    const double w = bounds().width;
    const double h = bounds().height;
    leftLbl_->setFrame({0, 0, 0.35 * w, h});
    rightLbl_->setFrame({0.36 * w, 0, 0.64 * w, h});
}

} // namespace morvane
