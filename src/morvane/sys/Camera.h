#pragma once
// The camera service: a video device opened, its frames streamed to a
// handler, still photos taken from the stream, closed again. Built on
// GStreamer.
//
//   std::string why;
//   auto camera = sys::Camera::openDefault(&why);   // null when there is none
//   camera->setFrameHandler([](const gfx::Image& frame) { ... });
//   camera->start(&why);
//   camera->capturePhoto([](std::vector<std::uint8_t> jpeg) { ... });
//
// The default camera is the first /dev/video* device. A virtual camera stands
// in for it on machines without one (tests, the gallery, servers): a moving
// test pattern, or a picture file played as a steady video whose picture can
// be swapped while it runs. The application chooses with setDefaultSource, or
// the environment with MORVANE_CAMERA ("test", "picture:/path/to/file.png",
// "device" or "device:/dev/video2"); the application's choice wins.
//
// Threads: frames and photos are handed over on the camera's own streaming
// thread; receivers that touch views re-post to the main queue. A receiver
// slower than the camera misses frames: the stream keeps one frame waiting
// at most and drops the rest, so nothing queues up behind a slow decoder.
// start, stop and showPicture may be called from any thread but the
// camera's own (not from inside a handler).

#include <morvane/gfx/Image.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace morvane::sys {

class Camera {
  public:
    struct Source {
        enum class Kind { Device, TestPattern, Picture };
        Kind kind = Kind::Device;
        // The device node (empty: the first one found) or the picture file.
        std::string path;
        // The test pattern's frame size in pixels.
        int width = 1280;
        int height = 720;

        static Source device(std::string node = {}) { return {Kind::Device, std::move(node)}; }
        static Source testPattern(int width = 1280, int height = 720) {
            return {Kind::TestPattern, {}, width, height};
        }
        static Source picture(std::string file) { return {Kind::Picture, std::move(file)}; }
    };

    // The application's choice of default camera (nothing: back to the
    // environment's, then the first device).
    static void setDefaultSource(std::optional<Source> source);
    static Source defaultSource();

    // A camera for the default source, not yet started; null when there is
    // no such camera, with the reason in `why`.
    static std::shared_ptr<Camera> openDefault(std::string* why = nullptr);
    static std::shared_ptr<Camera> open(const Source& source, std::string* why = nullptr);

    ~Camera();
    Camera(const Camera&) = delete;
    Camera& operator=(const Camera&) = delete;

    using FrameHandler = std::function<void(const gfx::Image& frame)>;
    using FailureHandler = std::function<void(const std::string& why)>;
    using PhotoHandler = std::function<void(std::vector<std::uint8_t> jpeg)>;

    // Set before start; called on the streaming thread with each frame (at
    // scale 1).
    void setFrameHandler(FrameHandler handler);
    // Called once, on a thread of the camera's, when a running stream fails
    // (the device went away, the picture file is not a picture). The camera
    // is then stopped by the next call to stop or by its release.
    void setFailureHandler(FailureHandler handler);

    // Starts streaming; false with the reason when the device refuses at once.
    bool start(std::string* why = nullptr);
    // Stops streaming; when it returns no handler runs any more. Does nothing
    // when not started.
    void stop();
    bool running() const;
    // Frames delivered since the camera was opened.
    std::uint64_t framesDelivered() const;
    // When the frame last handed over was taken, in seconds of its stream
    // (from its start); inside the frame handler, the frame in hand's.
    double lastFrameTime() const;

    // The next frame after this call, encoded as JPEG, handed to the handler
    // on the streaming thread. Nothing arrives when the camera is not running
    // or stops first.
    void capturePhoto(PhotoHandler handler);

    // A picture camera shows this file from now on (restarting its stream
    // when it runs); false for other cameras.
    bool showPicture(const std::string& file, std::string* why = nullptr);

    const Source& source() const;

  private:
    struct Impl;
    explicit Camera(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> impl_;
};

} // namespace morvane::sys
