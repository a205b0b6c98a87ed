// The QR codes and the camera, in one run: a 1 KB Node written as a level-H
// code and drawn at 300 x 300 points at scale 3; a 1280 x 720 camera frame
// holding a code decoded; a virtual camera opened in a camera view up to its
// first preview frame drawn; and the reader's gate, which drops the frames
// that arrive while one is being decoded. Ends with one GOAL line per goal.

#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/media/NCamera.h>
#include <morvane/media/UIQRGen.h>
#include <morvane/media/UIQRRead.h>
#include <morvane/model/Json.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Camera.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

using namespace morvane;
using Clock = std::chrono::steady_clock;

namespace {

double msSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

std::string fixed(double value, int digits = 2) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", digits, value);
    return text;
}

void goal(const char* name, double measured, double target, bool lowerIsBetter = true) {
    const bool met = lowerIsBetter ? measured <= target : measured >= target;
    std::printf("GOAL %s measured=%s target=%s met=%s\n", name, fixed(measured).c_str(),
                fixed(target).c_str(), met ? "yes" : "no");
}

// A booking of about 1 KB of compact JSON.
NodePtr kilobyteNode() {
    auto node =
        Node::make({{"nm", "Inês Araújo"}, {"flight", "TP 1947"}, {"bg", "K40918"}, {"status", "active"}});
    for (int i = 0; json::write(Value(node)).size() < 1000; ++i)
        node->set("note" + std::to_string(i), "Mesa à janela, sem glúten, chegada às 21:30 ✈");
    return node;
}

// A 1280 x 720 frame as a camera would give it: the code turned a little,
// on a grey table with noise.
gfx::Image cameraFrame(const gfx::Image& code) {
    gfx::ImageContext context(gfx::Size{1280, 720}, gfx::Opacity::Opaque, 1);
    gfx::Canvas& canvas = context.canvas();
    canvas.fillRect({0, 0, 1280, 720}, gfx::Color(0.55, 0.5, 0.45));
    std::mt19937 random(3);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int i = 0; i < 20000; ++i) {
        const double grey = 0.3 + 0.5 * unit(random);
        canvas.fillRect({std::floor(unit(random) * 1280), std::floor(unit(random) * 720), 2, 2},
                        gfx::Color(grey, grey, grey));
    }
    // The code fills most of the frame's height, as a reader is held to
    // scan a dense (1 KB) code, and is turned a little.
    canvas.translate(660, 360);
    canvas.rotate(5 * std::numbers::pi / 180);
    canvas.drawImage(code, {-320, -320, 640, 640});
    return context.takeImage();
}

std::string writePNG(const gfx::Image& image, const std::filesystem::path& path) {
    const auto png = image.pngData();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
    return path.string();
}

template <class Done> bool pump(ui::HeadlessHost& host, Done done, double seconds) {
    const auto until = Clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (Clock::now() > until) return false;
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        host.runUntilIdle();
    }
    return true;
}

} // namespace

int main() {
    gfx::ImageContext::setScreenScale(3);
    const auto folder =
        std::filesystem::temp_directory_path() / ("morvane-camera-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);

    // 1. Encode and draw.
    const NodePtr node = kilobyteNode();
    const std::size_t bytes = json::write(Value(node)).size();
    UIQRGen generator;
    std::vector<double> encodes;
    gfx::Image code;
    for (int i = 0; i < 60; ++i) {
        const auto start = Clock::now();
        code = generator.createQRFromDict({0, 0, 300, 300}, node);
        encodes.push_back(msSince(start));
    }
    std::printf("encode: %zu bytes of JSON, code drawn %d x %d pixels\n", bytes, code.pixelWidth(),
                code.pixelHeight());

    // 2. Decode a camera frame.
    const gfx::Image frame = cameraFrame(code);
    std::vector<double> decodes;
    std::size_t found = 0;
    for (int i = 0; i < 30; ++i) {
        const auto start = Clock::now();
        const auto read = gfx::QRCode::read(frame);
        decodes.push_back(msSince(start));
        found += read.size() == 1 && read[0] == json::write(Value(node));
    }
    std::printf("decode: the code read back in %zu of 30 frames\n", found);

    // 3. Camera start to the first preview frame drawn, virtual picture camera.
    const std::string picture = writePNG(frame, folder / "frame.png");
    sys::Camera::setDefaultSource(sys::Camera::Source::picture(picture));
    std::vector<double> starts;
    {
        ui::HeadlessHost host;
        for (int i = 0; i < 10; ++i) {
            auto camera = std::make_shared<NCamera>(gfx::Rect{20, 100, 350, 420});
            host.root()->addSubview(camera);
            host.runUntilIdle();
            const auto start = Clock::now();
            camera->btnAction();
            const bool shown = pump(
                host, [&] { return camera->previewFramesShown() > 0; }, 5);
            ui::Renderer::imageOf(*host.root(), 3);
            starts.push_back(shown ? msSince(start) : 5000);
            camera->removeFromSuperview();
        }
    }

    // 4. The reader's gate over 2 s of a 1280 x 720 test pattern (no code).
    sys::Camera::setDefaultSource(sys::Camera::Source::testPattern(1280, 720));
    std::uint64_t decoded = 0, dropped = 0;
    {
        ui::HeadlessHost host;
        auto reader = std::make_shared<UIQRRead>(gfx::Rect{20, 100, 350, 350});
        host.root()->addSubview(reader);
        reader->watchRead([](const std::string&, const Value&) {});
        reader->btnAction();
        pump(
            host, [] { return false; }, 2);
        reader->stopReading();
        sys::Queue::waitIdle();
        decoded = reader->framesDecoded();
        dropped = reader->framesDropped();
    }
    std::printf("reader over 2 s at 30 frames a second: %llu decoded, %llu dropped while decoding\n",
                static_cast<unsigned long long>(decoded), static_cast<unsigned long long>(dropped));
    std::filesystem::remove_all(folder);

    goal("qr_encode_draw_1kb_300pt_scale3_median_ms", median(encodes), 5);
    // A decode that finds nothing is no measure of decoding.
    goal("qr_decode_1280x720_frame_median_ms", found == 30 ? median(decodes) : 1e9, 33);
    goal("camera_start_to_first_preview_frame_median_ms", median(starts), 200);
    return 0;
}
