#include <morvane/media/ZBImage.h>
#include <morvane/media/ZBImageModel.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Touch.h>
#include <morvane/util/GColor.h>

namespace morvane {

ZBImage::ZBImage(const gfx::Rect& frame) : ZBImage(gfx::Color::brownColor()) {
    setFrame(frame);
}

ZBImage::ZBImage(const gfx::Color&) {
    MORVANE_ASSERT_MAIN_THREAD();
    imageView_ = std::make_shared<ui::ImageView>();
    imageView_->setAccessibilityHint("icon");
    imageView_->setContentMode(gfx::ContentMode::AspectFill);
    imageView_->setClipsToBounds(true);
    addSubview(imageView_);
    indicator_ = std::make_shared<ui::ActivityIndicator>(ui::ActivityIndicator::Style::Large);
    indicator_->setColor(gfx::Color::whiteColor());
    indicator_->setHidesWhenStopped(false);
    addSubview(indicator_);
    indicator_->setHidden(true);
}

void ZBImage::addImage(std::optional<std::string_view> name, std::optional<std::string_view> imgd) {
    MORVANE_ASSERT_MAIN_THREAD();
    showProgress(true);
    std::weak_ptr<ZBImage> weakSelf = std::static_pointer_cast<ZBImage>(shared_from_this());
    // The view is the requester: released before its picture arrives, it
    // leaves no transfer running for nobody.
    ZBImageModel::loadOnMain(name, imgd, std::weak_ptr<const void>(weakSelf),
                             [weakSelf](const gfx::Image& image) {
                                 if (auto self = weakSelf.lock()) self->showLoaded(image);
                             });
}

void ZBImage::showLoaded(const gfx::Image& image) {
    const ZBImageModel::Shape shape = ZBImageModel::shapeOf(image);
    if (shape == ZBImageModel::Shape::Tall) {
        imageView_->setContentMode(gfx::ContentMode::AspectFit);
        if (auto corners = GColor::cornersColor(image)) imageView_->setBackgroundColor(*corners);
    } else {
        imageView_->setContentMode(shape == ZBImageModel::Shape::Wide ? gfx::ContentMode::AspectFill
                                                                      : gfx::ContentMode::AspectFit);
        imageView_->setBackgroundColor(gfx::Color::clearColor());
    }
    imageView_->setImage(image);
    showProgress(false);
}

void ZBImage::addImage(const gfx::Image& image) {
    MORVANE_ASSERT_MAIN_THREAD();
    imageView_->setImage(image);
}

void ZBImage::showProgress(bool show) {
    MORVANE_ASSERT_MAIN_THREAD();
    indicator_->setHidden(!show);
    imageView_->setHidden(show);
    if (show)
        indicator_->startAnimating();
    else
        indicator_->stopAnimating();
}

void ZBImage::animate() {
    MORVANE_ASSERT_MAIN_THREAD();
    auto view = imageView_;
    ui::View::transition(view, 0.5, ui::Transition::CrossDissolve, [view] {
        view->setContentMode(view->contentMode() == gfx::ContentMode::AspectFit
                                 ? gfx::ContentMode::AspectFill
                                 : gfx::ContentMode::AspectFit);
    });
}

void ZBImage::touchesBegan(const ui::Touches&) {}

void ZBImage::touchesEnded(const ui::Touches& touches) {
    for (const auto& touch : touches) {
        if (pointInside(touch.locationIn(this))) {
            animate();
            return;
        }
    }
}

void ZBImage::layoutSubviews() {
    const gfx::Rect area(0, 0, bounds().width, bounds().height);
    imageView_->setFrame(area);
    indicator_->setFrame(area);
}

} // namespace morvane
