// The QR code view: Nodes written as codes that read back as the same Node,
// the status stamp and its eight seconds away, layout, and a snapshot.
#include "MediaFixture.h"
#include "Programs.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/gfx/Font.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/media/UIQRGen.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Log.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <filesystem>
#include <fstream>
#include <random>

#include <unistd.h>

using namespace morvane;
using namespace morvane::test;

namespace {

NodePtr ticket(int n) {
    return Node::make(
        {{"nm", "Yayoi 東京 🍣 " + std::to_string(n)},
         {"bg", "K4091" + std::to_string(n)},
         {"items", List::make({Node::make({{"dish", "Ramen"}, {"price", 12.5}}), Value("Gyoza")})},
         {"status", n % 2 ? "active" : "VOID"}});
}

// The codes the view shows, read from its picture.
std::vector<std::string> shownCodes(UIQRGen& view) {
    return gfx::QRCode::read(ui::Renderer::imageOf(view, 2));
}

} // namespace

// The code holds the Node's compact JSON, which reads back as an equal Node;
// the stamp over it voids it until touched away. A Node too large for a
// code shows no code and says why; no Node writes nothing.
TEST_F(MediaFixture, a_node_shown_as_a_code_reads_back_as_the_same_node) {
    ui::HeadlessHost host;
    auto view = std::make_shared<UIQRGen>(gfx::Rect(0, 0, 240, 240));
    host.root()->addSubview(view);
    host.runUntilIdle();
    for (int n : {1, 2}) {
        view->addQR(ticket(n));
        view->addStatus(std::nullopt);
        auto codes = shownCodes(*view);
        ASSERT_EQ(codes.size(), 1u);
        EXPECT_EQ(codes[0], json::write(Value(ticket(n))));
        EXPECT_EQ(json::parse(codes[0]), Value(ticket(n)));
        // The stamp voids the code: it cannot be scanned until the stamp is touched away.
        view->addStatus("VOID");
        EXPECT_TRUE(shownCodes(*view).empty());
        view->backAction();
        EXPECT_EQ(shownCodes(*view), codes);
    }
    sys::Log::Capture log;
    view->addQR(Node::make({{"note", std::string(2000, 'x')}}));
    EXPECT_TRUE(view->qrCode()->image().isNull());
    EXPECT_EQ(log.texts().size(), 1u);
    EXPECT_EQ(log.texts()[0].rfind("Got an error: ", 0), 0u);
    EXPECT_EQ(UIQRGen::dict2Text(nullptr), "");
    EXPECT_TRUE(log.contains("Got an error: there is no Node to write"));

    const NodePtr sample = json::parseNode(UIQRGen::dict2JSON());
    ASSERT_TRUE(sample);
    EXPECT_EQ(sample->size(), 8u);
    EXPECT_EQ(sample->get("fbase"), Value("World/THA/Bangkok/Central/Food/Thai/Yayoi"));
    EXPECT_EQ(gfx::QRCode::read(view->createQRFromString({0, 0, 200, 200})),
              std::vector<std::string>{UIQRGen::dict2JSON()});
}

// A touch lifts the stamp for 8 s; it comes back only while a status is set.
TEST_F(MediaFixture, the_stamp_steps_aside_for_eight_seconds) {
    useManualClock(1'800'000'000);
    ui::HeadlessHost host;
    auto view = std::make_shared<UIQRGen>(gfx::Rect(0, 0, 240, 240));
    host.root()->addSubview(view);
    view->addStatus("VOID");
    EXPECT_EQ(view->stamp()->tag(), 1);
    host.runUntilIdle();
    host.tap(centreOf(*view->stamp()));
    EXPECT_TRUE(view->stamp()->isHidden());
    host.advance(7.9);
    EXPECT_TRUE(view->stamp()->isHidden());
    host.advance(0.2);
    EXPECT_FALSE(view->stamp()->isHidden());

    view->backAction();
    view->addStatus(std::nullopt);
    host.advance(9);
    EXPECT_TRUE(view->stamp()->isHidden());
    EXPECT_EQ(view->stamp()->currentTitle(), "");
    EXPECT_EQ(view->stamp()->tag(), 0);
    EXPECT_FALSE(UIQRGen::initWithUsrEnable(false)->stamp()->isUserInteractionEnabled());
    EXPECT_EQ(UIQRGen::initWithUsrEnable(true)->stamp()->currentTitle(), "");
}

// A large view: the stamp a tall band; a small one (the system font more
// than a fifth of its height): a small fixed stamp.
TEST_F(MediaFixture, qr_layout_follows_the_view_size) {
    const double s = gfx::Font::systemFontSize();
    UIQRGen large({0, 0, 300, 260});
    large.layoutIfNeeded();
    EXPECT_EQ(large.qrCode()->frame(), gfx::Rect(0, 0, 300, 260));
    EXPECT_EQ(large.stamp()->center(), gfx::Rect(0.34 * 300, 0.15 * 260, 0.32 * 300, 0.7 * 260).center());
    EXPECT_EQ(large.stamp()->bounds().size(), gfx::Size(0.32 * 300, 0.7 * 260));
    EXPECT_DOUBLE_EQ(large.stamp()->layer().cornerRadius(), 0.05 * 260);
    UIQRGen small({0, 0, 120, 4 * s});
    small.layoutIfNeeded();
    EXPECT_EQ(small.stamp()->bounds().size(), gfx::Size(2.1 * s, 4.4 * s));
    EXPECT_EQ(small.stamp()->center(), gfx::Point(60, 2 * s));
    EXPECT_DOUBLE_EQ(small.stamp()->layer().cornerRadius(), 0.4 * s);
}

TEST_F(MediaFixture, a_voided_code_matches_its_snapshot) {
    auto view = std::make_shared<UIQRGen>(gfx::Rect(0, 0, 300, 300));
    view->layoutIfNeeded();
    view->addQR(ticket(1));
    view->addStatus("VOID");
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*view, 2),
                                         "tests/media/snapshots/qr-void@2x.png");
}

// Random Nodes (other scripts, emoji, nesting 30 deep, up to the capacity of
// a level-H code) drawn at several view sizes come back equal through the
// kit's reader, and byte for byte through an independent one (zbar).
TEST_F(MediaFixture, random_nodes_come_back_through_both_readers) {
    std::mt19937 random(5);
    const char* words[] = {"Mesa", "東京", "🍣", "café", "Ωμέγα", "\"q\"", "a\\b", "x"};
    auto word = [&] { return std::string(words[random() % 8]); };
    const auto folder =
        std::filesystem::temp_directory_path() / ("morvane-qr-nodes-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    ui::HeadlessHost host;
    int made = 0;
    for (std::size_t target : {60, 400, 1000, 1250}) {
        // Deep first, then wide until the text nears the target.
        NodePtr root = Node::make({{"nm", word()}});
        NodePtr inner = root;
        for (int level = 0; level < 30; ++level) {
            NodePtr next = Node::make({{"k", word()}});
            inner->set("in", next);
            inner = next;
        }
        for (int i = 0; UIQRGen::dict2Text(root).size() < target; ++i)
            root->set("v" + std::to_string(i), word());
        while (UIQRGen::dict2Text(root).size() > 1273)
            root->remove("v0");
        const std::string text = UIQRGen::dict2Text(root);
        for (const gfx::Rect& frame : {gfx::Rect{0, 0, 300, 300}, gfx::Rect{0, 0, 360, 260}}) {
            auto view = std::make_shared<UIQRGen>(frame);
            host.root()->addSubview(view);
            host.runUntilIdle();
            view->addQR(root);
            view->addStatus(std::nullopt);
            // Taken at the screen's scale, the one the code was drawn for.
            const gfx::Image shot = ui::Renderer::imageOf(*view, gfx::ImageContext::screenScale());
            const auto codes = gfx::QRCode::read(shot);
            ASSERT_EQ(codes.size(), 1u) << text.size() << " bytes";
            EXPECT_TRUE(json::parseNode(codes[0])->equals(*root));

            const auto png = folder / ("code" + std::to_string(made++) + ".png");
            const auto bytes = shot.pngData();
            std::ofstream(png, std::ios::binary)
                .write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
            const auto out = folder / "read.txt";
            const auto outcome =
                test::runCommand("zbarimg --nodbus --quiet --raw -Sbinary " + test::shellQuote(png.string()) +
                                 " >" + test::shellQuote(out.string()));
            ASSERT_EQ(outcome.status, 0) << text.size() << " bytes at " << frame.width << "x" << frame.height;
            std::string read = test::readFile(out);
            if (read.size() == text.size() + 1 && read.back() == '\n') read.pop_back();
            EXPECT_EQ(read, text);
            view->removeFromSuperview();
        }
    }
    if (!HasFailure()) std::filesystem::remove_all(folder);
}

// The view calls nobody back, but its stamp comes back on its own 8 s after a
// touch: codes, statuses and touches in any order, the view released and
// re-added on the way, while the clock runs past those 8 seconds.
TEST(UIQRGenReentrancy, any_order_of_operations_and_touches_is_safe) {
    ReentrancyHarness<UIQRGen> codes(64);
    codes.make(
        [](ReentrancyHarness<UIQRGen>&) { return std::make_shared<UIQRGen>(gfx::Rect(20, 100, 300, 300)); });
    codes.operation("code", [](UIQRGen& view, Random& r) { view.addQR(ticket(randomInt(r, 0, 9))); });
    codes.operation("void", [](UIQRGen& view, Random&) { view.addStatus("VOID"); });
    codes.operation("clear", [](UIQRGen& view, Random&) { view.addStatus(std::nullopt); });
    codes.operation("lift", [](UIQRGen& view, Random&) { view.backAction(); });
    codes.operation("too large", [](UIQRGen& view, Random&) {
        view.addQR(Node::make({{"note", std::string(1400, 'x')}}));
    });
    codes.tapAnywhere();
    codes.input("wait", [](ui::HeadlessHost& host, UIQRGen&, Random&) { host.advance(3); });
    codes.run(ReentrancyHarness<UIQRGen>::steps(300, 2000));
}
