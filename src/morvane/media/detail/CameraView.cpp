#include <morvane/media/detail/CameraView.h>

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Font.h>
#include <morvane/media/ImageColor.h>
#include <morvane/media/detail/CameraFeed.h>
#include <morvane/sys/Queue.h>

namespace morvane::detail {

CameraView::CameraView(const gfx::Rect& frame, std::string name) : ui::View(frame), name_(std::move(name)) {
    imgView_ = std::make_shared<ui::ImageView>();
    imgView_->setHidden(true);
    addSubview(imgView_);
    save_ = makeShutter();
    // The button may outlive the view: the destructor takes the action back.
    save_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { btnAction(); });
    addSubview(save_);
    layer().setBorderColor(gfx::Color::blackColor());
    layer().setBorderWidth(2);
}

CameraView::~CameraView() {
    save_->removeActions(ui::ControlEvent::TouchUpInside);
}

std::shared_ptr<sys::Camera> CameraView::captureSesssion() const {
    return feed_ && feed_->running() ? feed_->camera() : nullptr;
}

double CameraView::buttonSide() {
    return 3 * gfx::Font::systemFontSize();
}

void CameraView::placeShutterAndPreview() {
    detail::placeShutter(*save_, bounds().size());
    if (preview_) preview_->setFrame(previewFrame());
}

void CameraView::btnAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (save_->tag() == 0) {
        save_->setTag(1);
        save_->setBackgroundColor(gfx::Color::redColor());
        startReading();
    } else {
        shootIt();
    }
}

bool CameraView::startReading() {
    MORVANE_ASSERT_MAIN_THREAD();
    // Every opening has its own camera and preview, in place of the last ones.
    if (feed_) shownBefore_ += feed_->framesShown();
    feed_.reset();
    if (preview_) preview_->removeFromSuperview();
    preview_ = std::make_shared<ui::ImageView>(previewFrame());
    preview_->setContentMode(gfx::ContentMode::AspectFill);
    preview_->setClipsToBounds(true);
    insertSubview(preview_, 0);
    feed_ = CameraFeed::start(name_, preview_);
    bringSubviewToFront(save_.get());
    return true;
}

void CameraView::stopReading() {
    MORVANE_ASSERT_MAIN_THREAD();
    save_->setTag(0);
    save_->setBackgroundColor(gfx::Color::lightTextColor());
    if (feed_) feed_->stop();
}

void CameraView::shootIt() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (!feed_ || !feed_->running()) return;
    std::weak_ptr<ui::View> weak = weak_from_this();
    feed_->capturePhoto([weak](std::vector<std::uint8_t> photo) {
        if (auto self = std::static_pointer_cast<CameraView>(weak.lock()))
            self->captureOutput(std::move(photo));
    });
}

void CameraView::captureOutput(std::vector<std::uint8_t> photo) {
    MORVANE_ASSERT_MAIN_THREAD();
    // The owner's callback may release this view; keep it for the call.
    auto keep = weak_from_this().lock();
    imgView_->setImage(gfx::Image::fromData(photo));
    stopReading();
    if (nextCB_) {
        PhotoCB next = nextCB_;
        next(photo);
    }
}

gfx::Image CameraView::resizeImage(const gfx::Image& image) {
    if (image.isNull()) return {};
    const float w = float(image.size().width), h = float(image.size().height);
    double width = w, height = h;
    if (h > 400 || w > 350) {
        const float r = w / h;
        if (r < 0.875f) {
            height = 400;
            width = double(w) * 400 / double(h);
        } else if (r > 0.875f) {
            width = 350;
            height = double(h) * 350 / double(w);
        } else {
            width = 350;
            height = 400;
        }
    }
    return gfx::Image::fromData(ImageColor::imageWithImage(image, width, height).jpegData(0.1));
}

std::uint64_t CameraView::previewFramesShown() const {
    return shownBefore_ + (feed_ ? feed_->framesShown() : 0);
}

} // namespace morvane::detail
