// The camera views and the QR reader on the headless host, with virtual
// cameras: the shutter's two presses, photos and their limits, the caption's
// edit timer on the manual clock, the reader's states and its answers on
// "myQueue", no camera at all, and re-entrancy.
#include "MediaFixture.h"
#include "Reentrancy.h"

#include <morvane/gfx/QRCode.h>
#include <morvane/media/AVCamera.h>
#include <morvane/media/NCamera.h>
#include <morvane/media/UIQRGen.h>
#include <morvane/media/UIQRRead.h>
#include <morvane/model/Json.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Camera.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Touch.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

using namespace morvane;
using namespace morvane::test;

namespace {

// Real frames arrive in real time; the main queue runs them when the host does.
template <class Done> bool waitFor(ui::HeadlessHost& host, Done done, double seconds = 10) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!done()) {
        if (std::chrono::steady_clock::now() > until) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        host.runUntilIdle();
    }
    return true;
}

std::string writePNG(const gfx::Image& image, const std::string& name) {
    const std::string path = (std::filesystem::temp_directory_path() / name).string();
    const auto png = image.pngData();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(png.data()), std::streamsize(png.size()));
    return path;
}

// A QR code of the text on a white card, as the virtual camera's picture.
std::string codePicture(std::string_view text, const std::string& name) {
    auto code =
        gfx::QRCode::encode(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    return writePNG(gfx::QRCode::draw(*code, {320, 320}, 1), name);
}

// Lets the virtual camera deliver a frame or two.
void waitForFrame(ui::HeadlessHost& host) {
    std::this_thread::sleep_for(std::chrono::milliseconds(40));
    host.runUntilIdle();
}

class CameraViewTest : public MediaFixture {
  protected:
    void SetUp() override {
        MediaFixture::SetUp();
        sys::Camera::setDefaultSource(sys::Camera::Source::testPattern(320, 240));
        host = std::make_unique<ui::HeadlessHost>();
    }
    void TearDown() override {
        host.reset();
        sys::Queue::waitIdle();
        sys::Camera::setDefaultSource(std::nullopt);
        MediaFixture::TearDown();
    }
    std::unique_ptr<ui::HeadlessHost> host;
};

} // namespace

// Closed, open (red, a preview that fills with frames), then a photo: shown
// in the hidden thumbnail and the camera closed before the owner hears of it.
TEST_F(CameraViewTest, the_shutter_opens_the_camera_then_takes_one_photo) {
    auto camera = std::make_shared<NCamera>(gfx::Rect{20, 100, 350, 420});
    host->root()->addSubview(camera);
    std::vector<std::uint8_t> photo;
    bool closedFirst = false, shownFirst = false;
    camera->watch(0,
                  [&](const std::vector<std::uint8_t>& bytes) {
                      photo = bytes;
                      closedFirst = camera->save()->tag() == 0 && !camera->captureSesssion();
                      shownFirst = !camera->imgView()->image().isNull();
                  },
                  {});
    host->runUntilIdle();
    EXPECT_FALSE(camera->videoPreviewLayer()) << "no preview before the first press";
    camera->btnAction();
    EXPECT_EQ(camera->save()->tag(), 1);
    EXPECT_EQ(camera->save()->backgroundColor(), gfx::Color::redColor());
    ASSERT_TRUE(camera->captureSesssion());
    ASSERT_TRUE(waitFor(*host, [&] { return camera->previewFramesShown() > 2; }));
    EXPECT_EQ(camera->videoPreviewLayer()->image().pixelWidth(), 320);
    EXPECT_EQ(camera->subviews().back().get(), camera->save().get()) << "the shutter stays in front";

    camera->btnAction();
    ASSERT_TRUE(waitFor(*host, [&] { return !photo.empty(); }));
    EXPECT_EQ(gfx::Image::codecOf(photo), gfx::ImageCodec::JPEG);
    EXPECT_TRUE(closedFirst);
    EXPECT_TRUE(shownFirst);
    EXPECT_TRUE(camera->imgView()->isHidden());
    EXPECT_EQ(camera->save()->backgroundColor(), gfx::Color::lightTextColor());

    // Each opening has a preview of its own in place of the last.
    auto first = camera->videoPreviewLayer();
    camera->btnAction();
    EXPECT_NE(camera->videoPreviewLayer(), first);
    EXPECT_FALSE(first->superview());
}

TEST_F(CameraViewTest, without_a_camera_the_preview_stays_dark_and_nothing_is_delivered) {
    sys::Camera::setDefaultSource(sys::Camera::Source::device("/dev/morvane-no-such-video"));
    sys::Log::Capture log;
    auto camera = std::make_shared<NCamera>(gfx::Rect{0, 0, 300, 400});
    host->root()->addSubview(camera);
    int photos = 0, quits = 0;
    camera->btnAction();
    EXPECT_TRUE(camera->startReading());
    EXPECT_EQ(camera->save()->tag(), 1);
    EXPECT_FALSE(camera->captureSesssion());
    camera->watch(0, [&](const std::vector<std::uint8_t>&) { ++photos; }, {});
    camera->btnAction();
    camera->quitAction(); // no close callback: nothing
    host->advance(1);
    EXPECT_EQ(photos, 0);
    ASSERT_EQ(log.texts().size(), 2u);
    EXPECT_EQ(log.texts()[0].rfind("NCamera: the camera stays dark: ", 0), 0u) << log.texts()[0];

    camera->watch(0, {}, [&](bool value) { quits += value ? 100 : 1; });
    host->tap(centreOf(*camera->quit()));
    EXPECT_EQ(quits, 1);
}

TEST_F(CameraViewTest, layouts_follow_the_view_size) {
    const double b = 3 * gfx::Font::systemFontSize();
    auto camera = std::make_shared<NCamera>(gfx::Rect{0, 0, 350, 420});
    auto captioned = std::make_shared<AVCamera>(gfx::Rect{0, 0, 390, 500});
    host->root()->addSubview(camera);
    host->root()->addSubview(captioned);
    camera->startReading();
    captioned->startReading();
    host->runUntilIdle();
    EXPECT_EQ(camera->quit()->frame(), (gfx::Rect{350 - b, 0, b, b}));
    EXPECT_EQ(camera->imgView()->frame(), (gfx::Rect{0, 0, b, b}));
    EXPECT_EQ(camera->videoPreviewLayer()->frame(), (gfx::Rect{17.5, 0, 315, 420}));
    EXPECT_EQ(camera->save()->frame(), (gfx::Rect{(350 - b) / 2, 420 - 1.2 * b, b, b}));
    EXPECT_DOUBLE_EQ(camera->save()->layer().cornerRadius(), b / 2);
    EXPECT_DOUBLE_EQ(camera->layer().cornerRadius(), 21);
    EXPECT_EQ(camera->backgroundColor(), gfx::Color::fromBytes(213, 213, 226));

    EXPECT_EQ(captioned->name()->frame(), (gfx::Rect{39, 100, 312, 0.7 * b}));
    EXPECT_DOUBLE_EQ(captioned->name()->layer().cornerRadius(), 0.15 * b);
    EXPECT_EQ(captioned->videoPreviewLayer()->frame(), (gfx::Rect{0, 0, 390, 500}));
    EXPECT_EQ(captioned->save()->frame(), (gfx::Rect{(390 - b) / 2, 500 - 1.2 * b, b, b}));
}

// 700 x 800 to 350 x 400, 3000 x 4000 to 300 x 400, 4000 x 3000 to
// 350 x 262.5 (a whole pixel row more or less), 300 x 300 kept but re-encoded.
TEST_F(CameraViewTest, photos_are_brought_within_the_limits) {
    auto plain = [](int w, int h) {
        std::vector<std::uint8_t> pixels(std::size_t(w) * std::size_t(h) * 4);
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = (i % 4 == 3) ? 255 : std::uint8_t(((i / 4) % 2) * 255);
        return gfx::Image::fromPixels(pixels.data(), w, h, std::size_t(w) * 4, gfx::PixelFormat::RGBA);
    };
    auto sized = [](const gfx::Image& image) { return std::pair(image.pixelWidth(), image.pixelHeight()); };
    EXPECT_EQ(sized(NCamera::resizeImage(plain(700, 800))), std::pair(350, 400));
    EXPECT_EQ(sized(NCamera::resizeImage(plain(3000, 4000))), std::pair(300, 400));
    const auto wide = sized(NCamera::resizeImage(plain(4000, 3000)));
    EXPECT_EQ(wide.first, 350);
    EXPECT_NEAR(wide.second, 262.5, 0.5);
    EXPECT_EQ(sized(AVCamera::resizeImage(plain(350, 400))), std::pair(350, 400));
    // Fine stripes do not survive JPEG at quality 0.1: the small photo was re-encoded.
    const gfx::Image small = plain(300, 300), kept = NCamera::resizeImage(small);
    EXPECT_EQ(sized(kept), std::pair(300, 300));
    EXPECT_NE(kept.pixels(gfx::PixelFormat::RGBA), small.pixels(gfx::PixelFormat::RGBA));
    EXPECT_TRUE(NCamera::resizeImage({}).isNull());

    const auto png = NCamera::resizeData(small.jpegData(0.9));
    EXPECT_EQ(gfx::Image::codecOf(png), gfx::ImageCodec::PNG);
    EXPECT_EQ(gfx::Image::fromData(png).pixelWidth(), 300);
    EXPECT_TRUE(NCamera::resizeData({1, 2, 3}).empty());
    EXPECT_EQ(gfx::Image::fromData(NCamera::rotateData(small.jpegData(0.9))).pixelHeight(), 300);
}

TEST_F(CameraViewTest, pictures_too_large_to_store_are_halved_until_they_fit) {
    const auto big = noiseImage(1100, 1100, 7); // hardly compresses: about 4.8 MB of PNG
    ASSERT_GT(big.pngData().size(), NCamera::kMaxPNGBytes);
    const gfx::Image fitted = NCamera::resizeImageNew(big);
    EXPECT_EQ(fitted.pixelWidth(), 550);
    EXPECT_LE(fitted.pngData().size(), NCamera::kMaxPNGBytes);
    // Within the limit: the very same picture.
    EXPECT_TRUE(NCamera::resizeImageNew(fitted).isSameAs(fitted));
}

// Opened by a touch at its height, kept open 5 s after the last thing done,
// a refused line break counting as something done.
TEST_F(CameraViewTest, the_caption_opens_where_touched_and_closes_after_five_quiet_seconds) {
    auto camera = std::make_shared<AVCamera>(gfx::Rect{0, 100, 390, 500});
    host->root()->addSubview(camera);
    host->runUntilIdle();
    const auto name = camera->name();
    EXPECT_FALSE(name->isUserInteractionEnabled());
    EXPECT_EQ(name->backgroundColor(), gfx::Color::clearColor());

    host->tap({200, 100 + 260});
    EXPECT_EQ(name->frame().y, 260);
    EXPECT_EQ(name->frame().x, 39);
    EXPECT_EQ(name->backgroundColor(), gfx::Color::whiteColor());
    EXPECT_TRUE(name->isUserInteractionEnabled());
    ASSERT_TRUE(camera->timer());

    host->tap(centreOf(*name));
    ASSERT_TRUE(name->isFirstResponder());
    host->advance(3);
    host->typeText("Mesa 4");
    EXPECT_EQ(name->text(), "Mesa 4");
    host->advance(3);
    EXPECT_FALSE(name->replace(name->selectedRange(), "\n"));
    EXPECT_EQ(name->text(), "Mesa 4");
    host->advance(4.9);
    EXPECT_TRUE(name->isUserInteractionEnabled()) << "the refused line break restarted the timer";
    host->advance(0.2);
    EXPECT_FALSE(name->isUserInteractionEnabled());
    EXPECT_FALSE(name->isFirstResponder());
    EXPECT_EQ(name->backgroundColor(), gfx::Color::clearColor());
    EXPECT_FALSE(camera->timer());

    // A layout later keeps the caption where it was placed.
    camera->setFrame({0, 100, 390, 520});
    host->runUntilIdle();
    EXPECT_EQ(name->frame().y, 260);
    camera->editAction();
    EXPECT_EQ(camera->subviews().back().get(), name.get());
    EXPECT_EQ(name->backgroundColor(), gfx::Color::whiteColor());
}

// Idle, scanning, stopped by the first code with the answer on "myQueue",
// idle again, scanning again.
TEST_F(CameraViewTest, the_reader_reads_a_code_once_and_answers_on_its_queue) {
    const auto booking =
        json::parseNode(R"({"nm":"Yayoi","bg":"K40918","seats":2,"note":"Mesa à janela ✈"})");
    const std::string text = UIQRGen::dict2Text(booking);
    sys::Camera::setDefaultSource(sys::Camera::Source::picture(codePicture(text, "morvane-reader-node.png")));
    auto reader = std::make_shared<UIQRRead>(gfx::Rect{20, 100, 350, 350});
    host->root()->addSubview(reader);
    std::mutex mutex;
    std::vector<std::pair<std::string, Value>> reads;
    bool onQueue = true;
    reader->watchRead([&](const std::string& read, const Value& node) {
        std::lock_guard lock(mutex);
        onQueue = onQueue && sys::Queue::serial(UIQRRead::kQueueName).isCurrent();
        reads.emplace_back(read, node);
    });
    auto count = [&] {
        std::lock_guard lock(mutex);
        return reads.size();
    };
    reader->btnAction();
    EXPECT_EQ(reader->save()->tag(), 1);
    EXPECT_EQ(reader->save()->backgroundColor(), gfx::Color::redColor());
    ASSERT_TRUE(waitFor(*host, [&] { return count() == 1; }));
    ASSERT_TRUE(waitFor(*host, [&] { return !reader->captureSessionRunning(); }));
    EXPECT_EQ(reader->save()->tag(), 1) << "stays red after a code";
    EXPECT_TRUE(onQueue);
    EXPECT_EQ(reads[0].first, text);
    EXPECT_TRUE(reads[0].second.node()->equals(*booking));
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    host->runUntilIdle();
    EXPECT_EQ(count(), 1u) << "one code, one answer";

    reader->btnAction();
    EXPECT_EQ(reader->save()->tag(), 0);
    EXPECT_EQ(reader->save()->backgroundColor(), gfx::Color::gray(0.5));
    // A JSON array is an answer too.
    sys::Camera::setDefaultSource(
        sys::Camera::Source::picture(codePicture("[1,\"two\"]", "morvane-reader-list.png")));
    reader->btnAction();
    ASSERT_TRUE(waitFor(*host, [&] { return count() == 2; }));
    EXPECT_TRUE(reads[1].second.isList());
}

// Plain text, a bare number, invalid UTF-8 and nesting far past what the
// reader accepts: the error strip and no answer.
TEST_F(CameraViewTest, codes_that_are_not_json_objects_show_the_error_strip) {
    sys::Camera::setDefaultSource(
        sys::Camera::Source::picture(codePicture("Table 12", "morvane-reader-text.png")));
    auto reader = std::make_shared<UIQRRead>(gfx::Rect{0, 0, 350, 350});
    host->root()->addSubview(reader);
    host->runUntilIdle();
    int answers = 0;
    reader->watchRead([&](const std::string&, const Value&) { ++answers; });
    sys::Log::Capture log;
    reader->btnAction();
    ASSERT_TRUE(waitFor(*host, [&] { return !reader->toaster()->isHidden(); }));
    EXPECT_EQ(reader->toaster()->text(), UIQRRead::kErrorMessage);
    EXPECT_EQ(reader->subviews().back().get(), reader->toaster().get());
    // Up to two strip heights above the bottom edge over 1.5 s, then down to it over 1.5 s.
    const double h = 350, strip = reader->toaster()->bounds().height;
    EXPECT_DOUBLE_EQ(reader->toaster()->center().y, h - 2 * strip);
    host->advance(1.5);
    EXPECT_DOUBLE_EQ(reader->toaster()->center().y, h);
    EXPECT_FALSE(reader->toaster()->isHidden());
    host->advance(1.5);
    EXPECT_TRUE(reader->toaster()->isHidden());
    EXPECT_EQ(log.texts().size(), 1u);

    std::string deep(100000, '[');
    deep += std::string(100000, ']');
    std::string noise(1273, '\0');
    std::mt19937 random(9);
    for (char& byte : noise)
        byte = char(random());
    for (const std::string& bad :
         {std::string("42"), std::string("\"text\""), std::string("{\"a\":\"\xff\xfe\"}"), deep,
          std::string("{\"a\":1,}"), noise}) {
        reader->captureOutput({bad});
        host->runUntilIdle();
        EXPECT_FALSE(reader->toaster()->isHidden()) << bad.substr(0, 20);
        host->advance(3.1);
    }
    EXPECT_EQ(answers, 0);
}

// A code shown to a camera that is already scanning is read; a camera that
// fails while it runs (its picture replaced by a file that is none) is
// logged and leaves the reader quiet.
TEST_F(CameraViewTest, the_reader_follows_what_its_camera_is_shown) {
    const std::string blank = writePNG(gfx::Image::blank(320, 240), "morvane-reader-blank.png");
    sys::Camera::setDefaultSource(sys::Camera::Source::picture(blank));
    auto reader = std::make_shared<UIQRRead>(gfx::Rect{0, 0, 300, 300});
    host->root()->addSubview(reader);
    std::atomic<int> reads{0};
    reader->watchRead([&](const std::string&, const Value&) { ++reads; });
    reader->btnAction();
    ASSERT_TRUE(waitFor(*host, [&] { return reader->framesDecoded() >= 3; }));
    EXPECT_EQ(reads.load(), 0);
    ASSERT_TRUE(
        reader->captureSession()->showPicture(codePicture(R"({"room":12})", "morvane-reader-swap.png")));
    ASSERT_TRUE(waitFor(*host, [&] { return reads.load() == 1; }));

    const std::string broken =
        (std::filesystem::temp_directory_path() / "morvane-reader-broken.png").string();
    std::ofstream(broken) << "not a picture";
    reader->btnAction();
    reader->btnAction();
    ASSERT_TRUE(reader->captureSessionRunning());
    sys::Log::Capture log;
    reader->captureSession()->showPicture(broken);
    ASSERT_TRUE(waitFor(*host, [&] { return !log.texts().empty(); }));
    EXPECT_EQ(log.texts()[0].rfind("Camera: the stream failed: ", 0), 0u) << log.texts()[0];
    host->advance(1);
    EXPECT_EQ(reads.load(), 1);
    reader->btnAction();
    EXPECT_EQ(reader->save()->tag(), 0);
}

TEST_F(CameraViewTest, a_reader_without_a_camera_says_so_and_changes_nothing) {
    sys::Camera::setDefaultSource(sys::Camera::Source::device("/dev/morvane-no-such-video"));
    sys::Log::Capture log;
    auto reader = std::make_shared<UIQRRead>(gfx::Rect{0, 0, 300, 300});
    host->root()->addSubview(reader);
    EXPECT_FALSE(reader->startReading());
    EXPECT_FALSE(reader->videoPreviewLayer());
    reader->btnAction();
    EXPECT_EQ(reader->save()->tag(), 1);
    EXPECT_FALSE(reader->captureSessionRunning());
    EXPECT_EQ(log.texts().size(), 2u);
}

// Every callback may run any operation of its view, release included, while
// the virtual camera streams.
TEST(CameraViewReentrancy, any_operation_from_a_photo_or_close_callback_is_safe) {
    sys::Camera::setDefaultSource(sys::Camera::Source::testPattern(160, 120));
    ReentrancyHarness<NCamera> cameras(61);
    cameras.make([](ReentrancyHarness<NCamera>& h) {
        auto camera = std::make_shared<NCamera>(gfx::Rect(0, 80, 300, 400));
        camera->watch(
            0, [&h](const std::vector<std::uint8_t>&) { h.callback("photo"); },
            [&h](bool) { h.callback("quit"); });
        return camera;
    });
    cameras.operation("shutter", [](NCamera& c, Random&) { c.btnAction(); });
    cameras.operation("start", [](NCamera& c, Random&) { c.startReading(); });
    cameras.operation("stop", [](NCamera& c, Random&) { c.stopReading(); });
    cameras.operation("shoot", [](NCamera& c, Random&) { c.shootIt(); });
    cameras.operation("quit", [](NCamera& c, Random&) { c.quitAction(); });
    cameras.operation("unwatch", [](NCamera& c, Random&) { c.watch(0, {}, {}); });
    cameras.tapAnywhere();
    cameras.input("wait for a frame", [](ui::HeadlessHost& host, NCamera&, Random&) { waitForFrame(host); });
    cameras.run(ReentrancyHarness<NCamera>::steps(400, 1200));
    EXPECT_GT(cameras.callbacks(), 5);
    sys::Camera::setDefaultSource(std::nullopt);
}

TEST(CameraViewReentrancy, any_operation_from_a_captioned_photo_callback_is_safe) {
    sys::Camera::setDefaultSource(sys::Camera::Source::testPattern(160, 120));
    ReentrancyHarness<AVCamera> cameras(62);
    cameras.make([](ReentrancyHarness<AVCamera>& h) {
        auto camera = std::make_shared<AVCamera>(gfx::Rect(0, 80, 300, 400));
        camera->watch(0, [&h](const std::vector<std::uint8_t>&) { h.callback("photo"); });
        return camera;
    });
    cameras.operation("shutter", [](AVCamera& c, Random&) { c.btnAction(); });
    cameras.operation("edit", [](AVCamera& c, Random&) { c.editAction(); });
    cameras.operation("start", [](AVCamera& c, Random&) { c.start(); });
    cameras.operation("stop", [](AVCamera& c, Random&) { c.stop(); });
    cameras.operation("type", [](AVCamera& c, Random&) { c.name()->insertText("a\n"); });
    cameras.tapAnywhere();
    cameras.input("wait for a frame", [](ui::HeadlessHost& host, AVCamera&, Random&) { waitForFrame(host); });
    cameras.run(ReentrancyHarness<AVCamera>::steps(300, 1200));
    EXPECT_GT(cameras.callbacks(), 5);
    sys::Camera::setDefaultSource(std::nullopt);
}

// The reader answers on "myQueue"; an owner hops to the main queue before it
// touches the reader, and from there may do anything to it.
TEST(CameraViewReentrancy, any_operation_after_a_read_is_safe) {
    const auto path = codePicture(R"({"room":"12"})", "morvane-reader-harness.png");
    sys::Camera::setDefaultSource(sys::Camera::Source::picture(path));
    ReentrancyHarness<UIQRRead> readers(63);
    // Reads still in flight when the run ends must not report into it.
    auto live = std::make_shared<std::atomic<ReentrancyHarness<UIQRRead>*>>(&readers);
    readers.make([live](ReentrancyHarness<UIQRRead>&) {
        auto reader = std::make_shared<UIQRRead>(gfx::Rect(0, 80, 300, 300));
        reader->watchRead([live](const std::string&, const Value&) {
            sys::Queue::main().async([live] {
                if (auto* h = live->load()) h->callback("read");
            });
        });
        return reader;
    });
    readers.operation("button", [](UIQRRead& r, Random&) { r.btnAction(); });
    readers.operation("start", [](UIQRRead& r, Random&) { r.startReading(); });
    readers.operation("stop", [](UIQRRead& r, Random&) { r.stopReading(); });
    readers.operation("toast", [](UIQRRead& r, Random&) { r.toast("Hello"); });
    readers.operation("bad code", [](UIQRRead& r, Random&) { r.captureOutput({"not json"}); });
    readers.input("wait for a frame", [](ui::HeadlessHost& host, UIQRRead&, Random&) { waitForFrame(host); });
    readers.run(ReentrancyHarness<UIQRRead>::steps(300, 1200));
    live->store(nullptr);
    sys::Queue::waitIdle();
    EXPECT_GT(readers.callbacks(), 5);
    sys::Camera::setDefaultSource(std::nullopt);
}
