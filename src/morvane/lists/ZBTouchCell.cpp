#include <morvane/lists/ZBTouchCell.h>

#include <morvane/gfx/Font.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Colors.h>

namespace morvane {

ZBTouchCell::ZBTouchCell(std::string reuseIdentifier) : ui::CollectionViewCell(std::move(reuseIdentifier)) {
    MORVANE_ASSERT_MAIN_THREAD();
    photo_ = std::make_shared<ui::ImageView>();
    photo_->setContentMode(gfx::ContentMode::AspectFit);
    addSubview(photo_);

    titleLbl_ = std::make_shared<ui::Label>();
    titleLbl_->setTextAlignment(gfx::TextAlignment::Center);
    titleLbl_->setTextColor(gfx::Color::whiteColor());
    titleLbl_->setFont(gfx::Font::boldSystemFont(0.3 * gfx::Font::systemFontSize()));
    addSubview(titleLbl_);
}

ZBTouchCell::~ZBTouchCell() = default;

ZBTouchCell& ZBTouchCell::addTitle(std::optional<std::string_view> text) {
    MORVANE_ASSERT_MAIN_THREAD();
    const bool show = text && !text->empty();
    titleLbl_->setText(show ? std::string(*text) : std::string());
    titleLbl_->setHidden(!show);
    setNeedsLayout();
    return *this;
}

void ZBTouchCell::addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd) {
    MORVANE_ASSERT_MAIN_THREAD();
    std::weak_ptr<ZBTouchCell> weakSelf = std::static_pointer_cast<ZBTouchCell>(weak_from_this().lock());
    ZBImageModel::loadOnMain(name, imgd, std::weak_ptr<const void>(weakSelf),
                             [weakSelf](const gfx::Image& image) {
                                 auto self = weakSelf.lock();
                                 if (!self) return;
                                 self->photo_->setImage(image);
                                 self->setNeedsLayout();
                             });
}

void ZBTouchCell::runAction() {
    sys::Log::platform("runAction");
}

void ZBTouchCell::layoutSubviews() {
    ui::CollectionViewCell::layoutSubviews();
    const double W = bounds().width;
    const double H = bounds().height;
    const double size = gfx::Font::systemFontSize();
    ui::Layer& layer = this->layer();
    if (titleLbl_->isHidden()) {
        // An icon button: the picture in the middle, a title line kept at the
        // foot for a title set later, round with a shadow of its own colour.
        titleLbl_->setFrame({0, 0.85 * H, W, 0.15 * H});
        titleLbl_->setFont(gfx::Font::boldSystemFont(0.3 * size));
        photo_->setFrame({0.2 * W, 0.2 * H, 0.6 * W, 0.6 * H});
        photo_->setClipsToBounds(true);
        layer.setBorderColor(gfx::Color::clearColor());
        layer.setBorderWidth(2);
        layer.setShadowColor(Colors::darkerBy(backgroundColor(), 0.2));
        layer.setShadowOpacity(0.6);
        layer.setShadowRadius(0.05 * H);
        layer.setShadowOffset({0.05 * H, 0.05 * H});
        layer.setCornerRadius(0.5 * W);
    } else {
        titleLbl_->setFrame({0, 0, W, H});
        titleLbl_->setFont(gfx::Font::boldSystemFont(0.8 * size));
        layer.setCornerRadius(0.2 * H);
    }
}

} // namespace morvane
