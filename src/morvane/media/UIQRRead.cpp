#include <morvane/media/UIQRRead.h>

#include <morvane/gfx/Color.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/media/detail/CameraFeed.h>
#include <morvane/model/Json.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <atomic>
#include <mutex>

namespace morvane {

// What the camera's thread and "myQueue" share with the view: they outlive
// it safely, and reach the view only through the main queue.
struct UIQRRead::Shared {
    std::weak_ptr<ui::View> view;
    std::mutex mutex;
    ReadCB read;
    std::weak_ptr<sys::Camera> camera; // of the current opening
    std::uint64_t opening = 0;         // counts the openings, so frames of an earlier one are let go
    std::atomic<bool> decoding{false};
    std::atomic<std::uint64_t> decoded{0};
    std::atomic<std::uint64_t> dropped{0};

    ReadCB reader() {
        std::lock_guard lock(mutex);
        return read;
    }
};

namespace {
constexpr double kToastSeconds = 1.5;
} // namespace

UIQRRead::UIQRRead(const gfx::Rect& frame) : ui::View(frame), shared_(std::make_shared<Shared>()) {
    toaster_ = std::make_shared<ui::TextField>();
    toaster_->setBackgroundColor(gfx::Color::blackColor());
    toaster_->setEnabled(false);
    toaster_->setFont(gfx::Font::boldSystemFont(0.6 * gfx::Font::systemFontSize()));
    toaster_->setTextColor(gfx::Color::whiteColor());
    toaster_->setHidden(true);
    addSubview(toaster_);
    save_ = detail::makeShutter();
    save_->addAction(ui::ControlEvent::TouchUpInside, [this](ui::Control&) { btnAction(); });
    addSubview(save_);
    layer().setBorderColor(gfx::Color::whiteColor());
    layer().setBorderWidth(2);
    bringSubviewToFront(save_.get());
}

UIQRRead::~UIQRRead() {
    save_->removeActions(ui::ControlEvent::TouchUpInside);
    std::lock_guard lock(shared_->mutex);
    shared_->read = nullptr;
}

std::shared_ptr<sys::Camera> UIQRRead::captureSession() const {
    return feed_ ? feed_->camera() : nullptr;
}

bool UIQRRead::captureSessionRunning() const {
    return feed_ && feed_->running();
}

UIQRRead& UIQRRead::watchRead(ReadCB read) {
    std::lock_guard lock(shared_->mutex);
    shared_->read = std::move(read);
    shared_->view = weak_from_this();
    return *this;
}

void UIQRRead::btnAction() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (save_->tag() == 0) {
        save_->setTag(1);
        save_->setBackgroundColor(gfx::Color::redColor());
        startReading();
    } else {
        save_->setTag(0);
        save_->setBackgroundColor(gfx::Color::gray(0.5));
        stopReading();
    }
}

bool UIQRRead::startReading() {
    MORVANE_ASSERT_MAIN_THREAD();
    {
        std::lock_guard lock(shared_->mutex);
        shared_->view = weak_from_this();
    }
    auto preview = std::make_shared<ui::ImageView>(gfx::Rect{0, 0, bounds().width, bounds().height});
    preview->setContentMode(gfx::ContentMode::AspectFill);
    preview->setClipsToBounds(true);
    // Frames come on the camera's thread; one at a time goes to "myQueue".
    std::weak_ptr<Shared> weakShared = shared_;
    std::uint64_t opening = 0;
    {
        std::lock_guard lock(shared_->mutex);
        opening = ++shared_->opening;
    }
    auto feed =
        detail::CameraFeed::start("UIQRRead", preview, [weakShared, opening](const gfx::Image& frame) {
            auto shared = weakShared.lock();
            if (!shared) return;
            if (shared->decoding.exchange(true)) {
                shared->dropped.fetch_add(1, std::memory_order_relaxed);
                return;
            }
            sys::Queue::serial(kQueueName).async([weakShared, frame, opening] {
                auto shared = weakShared.lock();
                if (!shared) return;
                std::vector<std::string> codes = gfx::QRCode::read(frame);
                shared->decoded.fetch_add(1, std::memory_order_relaxed);
                if (codes.empty()) {
                    shared->decoding = false;
                    return;
                }
                // The first code ends the scan: the camera stops before anything
                // else is decoded, and the gate stays shut until the next start.
                std::shared_ptr<sys::Camera> camera;
                std::shared_ptr<ui::View> view;
                {
                    std::lock_guard lock(shared->mutex);
                    if (shared->opening != opening) return; // a frame of a camera since closed
                    camera = shared->camera.lock();
                    view = shared->view.lock();
                }
                if (camera) camera->stop();
                if (auto reader = std::static_pointer_cast<UIQRRead>(view)) {
                    // The view is held here off the main thread only to call into
                    // captureOutput, which touches no view; drop it on the main queue.
                    reader->captureOutput(codes);
                    sys::Queue::main().async([view = std::move(view)] {});
                }
            });
        });
    if (!feed) return false;
    feed_.reset();
    if (preview_) preview_->removeFromSuperview();
    preview_ = std::move(preview);
    insertSubview(preview_, 0);
    feed_ = std::move(feed);
    {
        std::lock_guard lock(shared_->mutex);
        shared_->camera = feed_->camera();
    }
    shared_->decoding = false;
    bringSubviewToFront(save_.get());
    setClipsToBounds(true);
    return true;
}

void UIQRRead::stopReading() {
    MORVANE_ASSERT_MAIN_THREAD();
    if (feed_) feed_->stop();
}

void UIQRRead::captureOutput(const std::vector<std::string>& codes) {
    if (codes.empty()) return;
    ReadCB read = shared_->reader();
    if (!read) return;
    const std::string& text = codes.front();
    Value node = textToDict(text);
    if (!node.isAbsent()) {
        read(text, node);
        return;
    }
    std::weak_ptr<ui::View> weak = weak_from_this();
    sys::Queue::main().async([weak] {
        if (auto self = std::static_pointer_cast<UIQRRead>(weak.lock())) self->toast(kErrorMessage);
    });
}

Value UIQRRead::textToDict(std::string_view text) {
    json::ReadResult result = json::read(text);
    if (!result) {
        sys::Log::platform("UIQRRead: the code's text is not JSON: " + result.error->describe());
        return {};
    }
    if (!result.value.isNode() && !result.value.isList()) {
        sys::Log::platform("UIQRRead: the code's text is a bare JSON value, not an object or array");
        return {};
    }
    return result.value;
}

void UIQRRead::toast(std::string_view text) {
    MORVANE_ASSERT_MAIN_THREAD();
    toaster_->setText(std::string(text));
    toaster_->setHidden(false);
    bringSubviewToFront(toaster_.get());
    const double h = bounds().height, stripHeight = toaster_->bounds().height;
    std::weak_ptr<ui::TextField> weak = toaster_;
    animate(
        kToastSeconds,
        [&] {
            toaster_->setCenter({toaster_->center().x, h - 2 * stripHeight});
        },
        [weak, h](bool) {
            auto strip = weak.lock();
            if (!strip) return;
            animate(
                kToastSeconds,
                [&] {
                    strip->setCenter({strip->center().x, h});
                },
                [weak](bool) {
                    if (auto strip = weak.lock()) strip->setHidden(true);
                });
        });
}

std::uint64_t UIQRRead::framesDecoded() const {
    return shared_->decoded.load(std::memory_order_relaxed);
}

std::uint64_t UIQRRead::framesDropped() const {
    return shared_->dropped.load(std::memory_order_relaxed);
}

void UIQRRead::layoutSubviews() {
    const double w = bounds().width, h = bounds().height, b = 3 * gfx::Font::systemFontSize();
    if (preview_) preview_->setFrame({0, 0, w, h});
    detail::placeShutter(*save_, {w, h});
    toaster_->setFrame({0, h - 0.8 * b, w, 0.8 * b});
}

} // namespace morvane
