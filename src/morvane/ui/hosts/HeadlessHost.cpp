#include <morvane/ui/hosts/HeadlessHost.h>

#include <morvane/gfx/Canvas.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/RunLoop.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>

namespace morvane::ui {

HeadlessHost::HeadlessHost(gfx::Size size) : frameRenderer_(std::make_unique<Renderer>()) {
    if (!sys::Clock::isManual()) sys::Clock::useManual();
    window_ = Window::create(size);
    window_->layoutIfNeeded();
}

HeadlessHost::~HeadlessHost() {
    // Completions and delayed blocks of this host's views must not run in the next test's host.
    sys::RunLoop::main().discardPending();
}

void HeadlessHost::tap(gfx::Point location) {
    touchDown(location);
    touchUp(location);
}

void HeadlessHost::touchDown(gfx::Point location) {
    window_->sendTouchDown(location);
    runUntilIdle();
}

void HeadlessHost::touchMove(gfx::Point location) {
    window_->sendTouchMove(location);
    runUntilIdle();
}

void HeadlessHost::touchUp(gfx::Point location) {
    window_->sendTouchUp(location);
    runUntilIdle();
}

void HeadlessHost::drag(gfx::Point from, gfx::Point to, double duration, int steps) {
    steps = std::max(1, steps);
    touchDown(from);
    for (int i = 1; i <= steps; ++i) {
        advance(duration / steps);
        double t = double(i) / steps;
        touchMove({from.x + (to.x - from.x) * t, from.y + (to.y - from.y) * t});
    }
    touchUp(to);
}

void HeadlessHost::typeText(std::string_view text) {
    // One UTF-8 sequence at a time: a lead byte and its continuation bytes.
    std::size_t i = 0;
    while (i < text.size()) {
        std::size_t n = 1;
        while (i + n < text.size() && (static_cast<unsigned char>(text[i + n]) & 0xC0) == 0x80)
            ++n;
        window_->sendText(text.substr(i, n));
        runUntilIdle();
        i += n;
    }
}

void HeadlessHost::paste(std::string_view text) {
    window_->sendText(text);
    runUntilIdle();
}

bool HeadlessHost::pressKey(Key key) {
    bool handled = window_->sendKey(key);
    runUntilIdle();
    return handled;
}

void HeadlessHost::runUntilIdle() {
    window_->layoutIfNeeded();
    sys::RunLoop::main().runUntilIdle();
    window_->layoutIfNeeded();
}

void HeadlessHost::advance(double seconds) {
    window_->layoutIfNeeded();
    sys::RunLoop::main().advance(seconds);
    window_->layoutIfNeeded();
}

gfx::Image HeadlessHost::snapshot(double scale) const {
    gfx::ImageContext context(window_->bounds().size(), gfx::Opacity::Opaque, scale);
    if (!context.isValid()) return {};
    context.canvas().clear(gfx::Color::whiteColor());
    Renderer renderer;
    renderer.render(*window_, context.canvas());
    return context.takeImage();
}

Renderer::Frame HeadlessHost::drawFrame(double scale) {
    if (!(scale > 0) || !std::isfinite(scale)) scale = 2;
    gfx::Size size = window_->bounds().size();
    int width = static_cast<int>(std::ceil(std::max(0.0, size.width) * scale - 1e-9));
    int height = static_cast<int>(std::ceil(std::max(0.0, size.height) * scale - 1e-9));
    if (width <= 0 || height <= 0) return {};
    auto redraw = Renderer::Redraw::Changes;
    if (width != frameWidth_ || height != frameHeight_ || scale != frameScale_) {
        framePixels_.assign(std::size_t(width) * std::size_t(height) * 4, 0);
        frameWidth_ = width;
        frameHeight_ = height;
        frameScale_ = scale;
        redraw = Renderer::Redraw::Everything;
    }
    auto canvas = gfx::Canvas::overPixels(framePixels_.data(), width, height, width * 4, scale);
    return frameRenderer_->renderFrame(*window_, *canvas, redraw);
}

gfx::Image HeadlessHost::frameImage() const {
    if (framePixels_.empty()) return {};
    // The kept pixels are 32-bit words in native order; the image takes bytes in A, R, G, B order.
    std::vector<std::uint8_t> bytes(framePixels_.size());
    for (std::size_t i = 0; i < framePixels_.size(); i += 4) {
        std::uint32_t p;
        std::memcpy(&p, framePixels_.data() + i, 4);
        bytes[i] = std::uint8_t(p >> 24);
        bytes[i + 1] = std::uint8_t(p >> 16);
        bytes[i + 2] = std::uint8_t(p >> 8);
        bytes[i + 3] = std::uint8_t(p);
    }
    return gfx::Image::fromPixels(bytes.data(), frameWidth_, frameHeight_, std::size_t(frameWidth_) * 4,
                                  gfx::PixelFormat::ARGBPremultiplied, frameScale_);
}

bool HeadlessHost::writeSnapshot(const std::string& path, double scale) const {
    auto png = snapshot(scale).pngData();
    if (png.empty()) return false;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(png.data()), static_cast<std::streamsize>(png.size()));
    return static_cast<bool>(out);
}

} // namespace morvane::ui
