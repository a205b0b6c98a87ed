#include <morvane/sys/Camera.h>

#include <morvane/sys/Log.h>

#include <gst/app/gstappsink.h>
#include <gst/gst.h>
#include <gst/video/video.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string_view>
#include <thread>

namespace morvane::sys {

namespace {

std::mutex sourceMutex;
std::optional<Camera::Source> chosenSource;

bool initGStreamer(std::string* why) {
    static std::once_flag once;
    static bool ok = false;
    static std::string failure;
    std::call_once(once, [] {
        GError* error = nullptr;
        ok = gst_init_check(nullptr, nullptr, &error);
        if (!ok) failure = error ? error->message : "unknown reason";
        if (error) g_error_free(error);
    });
    if (!ok && why) *why = "GStreamer could not start (" + failure + ")";
    return ok;
}

// The first video device node, by number; empty when there is none.
std::string firstVideoDevice() {
    std::error_code ec;
    std::vector<std::string> nodes;
    for (const auto& entry : std::filesystem::directory_iterator("/dev", ec)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("video", 0) == 0) nodes.push_back(entry.path().string());
    }
    std::sort(nodes.begin(), nodes.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return nodes.empty() ? std::string() : nodes.front();
}

std::optional<Camera::Source> sourceFromEnvironment() {
    const char* value = std::getenv("MORVANE_CAMERA");
    if (!value || !*value) return std::nullopt;
    const std::string_view text(value);
    if (text == "test") return Camera::Source::testPattern();
    if (text.rfind("picture:", 0) == 0) return Camera::Source::picture(std::string(text.substr(8)));
    if (text == "device") return Camera::Source::device();
    if (text.rfind("device:", 0) == 0) return Camera::Source::device(std::string(text.substr(7)));
    Log::platform("Camera: MORVANE_CAMERA=\"" + std::string(text) +
                  "\" is not test, picture:FILE or device[:NODE]; using the first device");
    return std::nullopt;
}

const char* kTail = " ! videoconvert ! video/x-raw,format=RGBA"
                    " ! appsink name=sink max-buffers=1 drop=true sync=false emit-signals=false";

} // namespace

struct Camera::Impl {
    Source source;
    GstElement* pipeline = nullptr;

    // Serialises start, stop and picture swaps; never held by the streaming thread.
    std::mutex control;
    // Guards what the streaming thread shares with the callers.
    mutable std::mutex mutex;
    enum class State { Stopped, Starting, Running };
    State state = State::Stopped;
    bool failureReported = false;
    std::string startError;
    std::shared_ptr<FrameHandler> frameHandler;
    std::shared_ptr<FailureHandler> failureHandler;
    std::vector<PhotoHandler> photoHandlers;
    std::atomic<std::uint64_t> frames{0};
    std::atomic<double> lastTime{0};

    ~Impl() { teardown(); }

    // Every start plays a pipeline of its own: a decoder's pads do not come
    // back after a stop, so a stopped pipeline cannot simply be played again.
    void teardown() {
        if (!pipeline) return;
        // The stream first (its thread writes into the slot), then the deliverer.
        gst_element_set_state(pipeline, GST_STATE_NULL);
        stopDelivering();
        if (GstBus* bus = gst_element_get_bus(pipeline)) {
            gst_bus_set_sync_handler(bus, nullptr, nullptr, nullptr);
            gst_object_unref(bus);
        }
        gst_object_unref(pipeline);
        pipeline = nullptr;
    }

    // Frames are handed over on a thread of the camera's own, never on the
    // stream's: a receiver that takes its time then holds up nothing
    // upstream. The streaming thread only copies the pixels out (it is the
    // thread that wrote them) into a slot that keeps the newest frame, so
    // the frames that come while the receiver is busy are dropped. (Handing
    // them over on the streaming thread would slow the source down instead:
    // a test pattern or a picture would then deliver every frame, late.)
    std::thread deliverer;
    std::mutex slotMutex;
    std::condition_variable slotChanged;
    bool delivering = false;
    gfx::Image waiting;
    double waitingTime = 0;

    static GstFlowReturn onSample(GstAppSink* sink, gpointer data) {
        auto* self = static_cast<Impl*>(data);
        GstSample* sample = gst_app_sink_pull_sample(sink);
        if (!sample) return GST_FLOW_OK;
        double taken = 0;
        gfx::Image frame = copyOut(sample, &taken);
        gst_sample_unref(sample);
        if (frame.isNull()) return GST_FLOW_OK;
        {
            std::lock_guard lock(self->slotMutex);
            self->waiting = std::move(frame);
            self->waitingTime = taken;
        }
        self->slotChanged.notify_one();
        return GST_FLOW_OK;
    }

    static gfx::Image copyOut(GstSample* sample, double* taken) {
        const GstClockTime pts = GST_BUFFER_PTS(gst_sample_get_buffer(sample));
        if (GST_CLOCK_TIME_IS_VALID(pts)) *taken = double(pts) / GST_SECOND;
        gfx::Image frame;
        GstVideoInfo info;
        if (!gst_video_info_from_caps(&info, gst_sample_get_caps(sample))) return frame;
        GstVideoFrame video;
        if (!gst_video_frame_map(&video, &info, gst_sample_get_buffer(sample), GST_MAP_READ)) return frame;
        frame = gfx::Image::fromPixels(
            static_cast<const std::uint8_t*>(GST_VIDEO_FRAME_PLANE_DATA(&video, 0)),
            GST_VIDEO_FRAME_WIDTH(&video), GST_VIDEO_FRAME_HEIGHT(&video),
            std::size_t(GST_VIDEO_FRAME_PLANE_STRIDE(&video, 0)), gfx::PixelFormat::RGBA);
        gst_video_frame_unmap(&video);
        return frame;
    }

    void startDelivering() {
        {
            std::lock_guard lock(slotMutex);
            delivering = true;
        }
        deliverer = std::thread([this] {
            std::unique_lock lock(slotMutex);
            while (true) {
                slotChanged.wait(lock, [this] { return !delivering || !waiting.isNull(); });
                if (!delivering) break;
                gfx::Image frame = std::move(waiting);
                waiting = {};
                const double taken = waitingTime;
                lock.unlock();
                deliver(frame, taken);
                lock.lock();
            }
        });
    }

    void stopDelivering() {
        {
            std::lock_guard lock(slotMutex);
            delivering = false;
            waiting = {};
        }
        slotChanged.notify_all();
        if (deliverer.joinable()) deliverer.join();
    }

    void deliver(const gfx::Image& frame, double taken) {
        frames.fetch_add(1, std::memory_order_relaxed);
        lastTime.store(taken, std::memory_order_relaxed);
        std::shared_ptr<FrameHandler> handler;
        std::vector<PhotoHandler> photos;
        {
            std::lock_guard lock(mutex);
            handler = frameHandler;
            photos.swap(photoHandlers);
        }
        if (!photos.empty()) {
            const std::vector<std::uint8_t> jpeg = frame.jpegData(0.9);
            for (auto& photo : photos)
                photo(jpeg);
        }
        if (handler && *handler) (*handler)(frame);
    }

    static GstBusSyncReply onBusMessage(GstBus*, GstMessage* message, gpointer data) {
        auto* self = static_cast<Impl*>(data);
        if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
            GError* error = nullptr;
            gst_message_parse_error(message, &error, nullptr);
            self->fail(error ? error->message : "stream error");
            if (error) g_error_free(error);
        } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
            self->fail("the stream ended");
        }
        gst_message_unref(message);
        return GST_BUS_DROP;
    }

    void fail(const std::string& why) {
        std::shared_ptr<FailureHandler> handler;
        {
            std::lock_guard lock(mutex);
            if (state == State::Starting) {
                if (startError.empty()) startError = why;
                return;
            }
            if (state != State::Running || failureReported) return;
            failureReported = true;
            handler = failureHandler;
        }
        Log::platform("Camera: the stream failed: " + why);
        if (handler && *handler) (*handler)(why);
    }

    bool build(std::string* why) {
        std::string description;
        switch (source.kind) {
        case Source::Kind::Device:
            description = "v4l2src name=src ! videoconvert ! videoscale";
            break;
        case Source::Kind::TestPattern:
            description = "videotestsrc name=src is-live=true pattern=smpte ! video/x-raw,width=" +
                          std::to_string(std::clamp(source.width, 16, 7680)) +
                          ",height=" + std::to_string(std::clamp(source.height, 16, 4320)) +
                          ",framerate=30/1";
            break;
        case Source::Kind::Picture:
            description = "filesrc name=src ! decodebin ! videoconvert ! imagefreeze is-live=true"
                          " ! video/x-raw,framerate=30/1";
            break;
        }
        description += kTail;
        GError* error = nullptr;
        pipeline = gst_parse_launch(description.c_str(), &error);
        if (error) {
            if (why) *why = std::string("the camera pipeline could not be built (") + error->message + ")";
            g_error_free(error);
            if (pipeline) gst_object_unref(pipeline);
            pipeline = nullptr;
            return false;
        }
        if (source.kind != Source::Kind::TestPattern) setLocation();

        GstElement* sink = gst_bin_get_by_name(GST_BIN(pipeline), "sink");
        GstAppSinkCallbacks callbacks{};
        callbacks.new_sample = &Impl::onSample;
        gst_app_sink_set_callbacks(GST_APP_SINK(sink), &callbacks, this, nullptr);
        gst_object_unref(sink);

        GstBus* bus = gst_element_get_bus(pipeline);
        gst_bus_set_sync_handler(bus, &Impl::onBusMessage, this, nullptr);
        gst_object_unref(bus);
        return true;
    }

    void setLocation() {
        GstElement* src = gst_bin_get_by_name(GST_BIN(pipeline), "src");
        g_object_set(src, source.kind == Source::Kind::Device ? "device" : "location", source.path.c_str(),
                     nullptr);
        gst_object_unref(src);
    }

    bool play(std::string* why) {
        teardown();
        if (!build(why)) return false;
        {
            std::lock_guard lock(mutex);
            state = State::Starting;
            startError.clear();
            failureReported = false;
        }
        startDelivering();
        const GstStateChangeReturn result = gst_element_set_state(pipeline, GST_STATE_PLAYING);
        std::string early;
        {
            std::lock_guard lock(mutex);
            early = startError;
            state = result == GST_STATE_CHANGE_FAILURE ? State::Stopped : State::Running;
        }
        if (result == GST_STATE_CHANGE_FAILURE) {
            teardown();
            if (why) *why = early.empty() ? "the device refused to start" : early;
            return false;
        }
        // An error that came while the stream was still starting is a failure of the running camera.
        if (!early.empty()) fail(early);
        return true;
    }

    void halt() {
        {
            std::lock_guard lock(mutex);
            if (state == State::Stopped) return;
            state = State::Stopped;
            photoHandlers.clear();
        }
        teardown();
    }
};

void Camera::setDefaultSource(std::optional<Source> source) {
    std::lock_guard lock(sourceMutex);
    chosenSource = std::move(source);
}

Camera::Source Camera::defaultSource() {
    {
        std::lock_guard lock(sourceMutex);
        if (chosenSource) return *chosenSource;
    }
    if (auto fromEnvironment = sourceFromEnvironment()) return *fromEnvironment;
    return Source::device();
}

std::shared_ptr<Camera> Camera::openDefault(std::string* why) {
    return open(defaultSource(), why);
}

std::shared_ptr<Camera> Camera::open(const Source& source, std::string* why) {
    if (!initGStreamer(why)) return nullptr;
    auto impl = std::make_unique<Impl>();
    impl->source = source;
    if (source.kind == Source::Kind::Device && impl->source.path.empty()) {
        impl->source.path = firstVideoDevice();
        if (impl->source.path.empty()) {
            if (why) *why = "no camera (no /dev/video* device)";
            return nullptr;
        }
    }
    if (source.kind == Source::Kind::Picture && source.path.empty()) {
        if (why) *why = "no picture file given for the virtual camera";
        return nullptr;
    }
    // Built once now so that a missing plugin is known before the first start.
    if (!impl->build(why)) return nullptr;
    impl->teardown();
    return std::shared_ptr<Camera>(new Camera(std::move(impl)));
}

Camera::Camera(std::unique_ptr<Impl> impl) : impl_(std::move(impl)) {}

Camera::~Camera() = default;

void Camera::setFrameHandler(FrameHandler handler) {
    auto shared = std::make_shared<FrameHandler>(std::move(handler));
    std::lock_guard lock(impl_->mutex);
    impl_->frameHandler = std::move(shared);
}

void Camera::setFailureHandler(FailureHandler handler) {
    auto shared = std::make_shared<FailureHandler>(std::move(handler));
    std::lock_guard lock(impl_->mutex);
    impl_->failureHandler = std::move(shared);
}

bool Camera::start(std::string* why) {
    std::lock_guard control(impl_->control);
    if (running()) return true;
    return impl_->play(why);
}

void Camera::stop() {
    std::lock_guard control(impl_->control);
    impl_->halt();
}

bool Camera::running() const {
    std::lock_guard lock(impl_->mutex);
    return impl_->state != Impl::State::Stopped;
}

std::uint64_t Camera::framesDelivered() const {
    return impl_->frames.load(std::memory_order_relaxed);
}

double Camera::lastFrameTime() const {
    return impl_->lastTime.load(std::memory_order_relaxed);
}

void Camera::capturePhoto(PhotoHandler handler) {
    if (!handler) return;
    std::lock_guard lock(impl_->mutex);
    if (impl_->state == Impl::State::Stopped) return;
    impl_->photoHandlers.push_back(std::move(handler));
}

bool Camera::showPicture(const std::string& file, std::string* why) {
    if (impl_->source.kind != Source::Kind::Picture) {
        if (why) *why = "not a picture camera";
        return false;
    }
    std::lock_guard control(impl_->control);
    const bool wasRunning = running();
    if (wasRunning) impl_->halt();
    impl_->source.path = file;
    return wasRunning ? impl_->play(why) : true;
}

const Camera::Source& Camera::source() const {
    return impl_->source;
}

} // namespace morvane::sys
