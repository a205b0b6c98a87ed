#include <morvane/media/detail/CameraFeed.h>

#include <morvane/gfx/Font.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>

#include <atomic>
#include <mutex>

namespace morvane::detail {

// What the streaming thread shares with the main queue. The camera's handlers
// hold this, never the feed: the last reference to the feed (and so the
// camera, whose stop waits for the streaming thread) is dropped on the main
// thread only.
struct CameraFeed::Shared {
    std::weak_ptr<ui::ImageView> preview;
    FrameTap tap;
    std::mutex mutex;
    gfx::Image waiting;
    bool posted = false;
    std::atomic<std::uint64_t> shown{0};

    static void show(const std::shared_ptr<Shared>& self) {
        gfx::Image frame;
        {
            std::lock_guard lock(self->mutex);
            frame = std::move(self->waiting);
            self->waiting = {};
            self->posted = false;
        }
        auto preview = self->preview.lock();
        if (!preview || frame.isNull()) return;
        preview->setImage(frame);
        self->shown.fetch_add(1, std::memory_order_relaxed);
    }
};

std::unique_ptr<CameraFeed> CameraFeed::start(std::string_view owner, std::weak_ptr<ui::ImageView> preview,
                                              FrameTap tap) {
    std::string why;
    auto camera = sys::Camera::openDefault(&why);
    if (!camera) {
        sys::Log::platform(std::string(owner) + ": the camera stays dark: " + why);
        return nullptr;
    }
    auto shared = std::make_shared<Shared>();
    shared->preview = std::move(preview);
    shared->tap = std::move(tap);
    std::weak_ptr<Shared> weak = shared;
    camera->setFrameHandler([weak](const gfx::Image& frame) {
        auto self = weak.lock();
        if (!self) return;
        if (self->tap) self->tap(frame);
        std::lock_guard lock(self->mutex);
        self->waiting = frame;
        if (self->posted) return;
        self->posted = true;
        sys::Queue::main().async([weak] {
            if (auto alive = weak.lock()) Shared::show(alive);
        });
    });
    if (!camera->start(&why)) {
        sys::Log::platform(std::string(owner) + ": the camera stays dark: " + why);
        return nullptr;
    }
    return std::unique_ptr<CameraFeed>(new CameraFeed(std::move(camera), std::move(shared)));
}

CameraFeed::CameraFeed(std::shared_ptr<sys::Camera> camera, std::shared_ptr<Shared> shared)
    : camera_(std::move(camera)), shared_(std::move(shared)) {}

CameraFeed::~CameraFeed() {
    camera_->stop();
}

void CameraFeed::stop() {
    camera_->stop();
}

bool CameraFeed::running() const {
    return camera_->running();
}

std::uint64_t CameraFeed::framesShown() const {
    return shared_->shown.load(std::memory_order_relaxed);
}

void CameraFeed::capturePhoto(std::function<void(std::vector<std::uint8_t>)> deliver) {
    camera_->capturePhoto([deliver = std::move(deliver)](std::vector<std::uint8_t> bytes) mutable {
        sys::Queue::main().async(
            [deliver, bytes = std::move(bytes)]() mutable { deliver(std::move(bytes)); });
    });
}

std::shared_ptr<ui::Button> makeShutter() {
    auto shutter = std::make_shared<ui::Button>();
    shutter->setBackgroundColor(gfx::Color::lightTextColor());
    shutter->setTag(0);
    shutter->layer().setBorderColor(gfx::Color::whiteColor());
    shutter->layer().setBorderWidth(2);
    return shutter;
}

void placeShutter(ui::Button& shutter, gfx::Size size) {
    const double b = 3 * gfx::Font::systemFontSize();
    shutter.setFrame({(size.width - b) / 2, size.height - 1.2 * b, b, b});
    shutter.layer().setCornerRadius(b / 2);
}

} // namespace morvane::detail
