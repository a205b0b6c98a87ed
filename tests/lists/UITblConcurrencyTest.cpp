// Work that arrives from other threads: translations completed on any thread
// and pictures downloaded on the loader's queues, both landing on the main
// thread. Labelled for the ThreadSanitizer run.
#include "ListsFixture.h"

#include "LoopbackServer.h"

#include <morvane/sys/Queue.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/text/TextView.h>

#include <atomic>
#include <thread>

using namespace morvane;
using morvane::test::configure;
using morvane::test::ListsFixture;
using morvane::test::pngBytes;

namespace {

class UITblThreadsTest : public ListsFixture {};

} // namespace

// Completions called on other threads, many times and while the main thread
// keeps running its queue, change the cell only on the main thread and in
// the order they were made.
TEST_F(UITblThreadsTest, translations_from_other_threads_land_on_the_main_thread) {
    std::vector<UITbl::TranslateCompletion> completions;
    list->watchTranslate(
        [&](const std::string&, UITbl::TranslateCompletion done) { completions.push_back(std::move(done)); });
    ListConfig config;
    config.header = [](std::vector<std::string>& keys) { keys = {"name"}; };
    config.body = [](std::vector<std::string>& keys) { keys = {"note"}; };
    configure(*list, config);
    list->adData(Node::make({{"key", "1"}, {"name", "City-Zone/Spot<en>"}, {"note", "<en>Quiet"}}));
    list->refresh();
    host->runUntilIdle();
    auto cell = cellAt(0);
    ASSERT_EQ(completions.size(), 2u);

    std::thread([&] { completions[1]("Calm"); }).join();
    EXPECT_EQ(cell->bodyLbl()->text(), "") << "nothing lands before the main queue runs it";
    host->runUntilIdle();
    EXPECT_EQ(cell->bodyLbl()->text(), "Calm");

    std::atomic<bool> done{false};
    std::thread translator([&] {
        for (int i = 0; i < 200; ++i)
            completions[0]("Place " + std::to_string(i));
        done = true;
    });
    while (!done)
        host->runUntilIdle();
    translator.join();
    host->runUntilIdle();
    EXPECT_EQ(cell->headLbl()->text(), "Place 199");
}

// Pictures downloaded over loopback: the shape decides how the circle shows
// them. Wide ones fill, near-square ones fit (clipped), exactly square ones
// fit unclipped, tall ones fit on their corner colour.
TEST_F(UITblThreadsTest, downloaded_pictures_are_placed_by_their_shape) {
    test::LoopbackServer server;
    struct Case {
        int width;
        gfx::ContentMode mode;
        bool clips;
        gfx::Color background;
    };
    const gfx::Color blue = gfx::Color::blueColor();
    const Case cases[] = {{200, gfx::ContentMode::AspectFill, true, gfx::Color::clearColor()},
                          {110, gfx::ContentMode::AspectFit, true, gfx::Color::clearColor()},
                          {100, gfx::ContentMode::AspectFit, false, gfx::Color::clearColor()},
                          {70, gfx::ContentMode::AspectFit, true, blue},
                          {120, gfx::ContentMode::AspectFill, true, gfx::Color::clearColor()}};
    auto cell = std::make_shared<UITblCell>(ui::TableViewCell::Style::Default, "TViewCell");
    cell->setFrame({0, 0, 390, 100});
    host->root()->addSubview(cell);
    for (const Case& c : cases) {
        const std::string path = "/venue" + std::to_string(c.width) + ".png";
        server.serve(path, pngBytes(c.width, 100, blue), "image/png");
        cell->addImage(server.address(path), "2024.01.01T00:00:00");
        EXPECT_FALSE(cell->indicator()->isHidden()) << c.width;
        EXPECT_TRUE(cell->photo()->isHidden()) << c.width;
        sys::Queue::waitIdle();
        host->runUntilIdle();
        EXPECT_TRUE(cell->indicator()->isHidden()) << c.width;
        EXPECT_FALSE(cell->photo()->isHidden()) << c.width;
        EXPECT_EQ(cell->photo()->image().size(), gfx::Size(c.width, 100));
        EXPECT_EQ(cell->photo()->contentMode(), c.mode) << c.width;
        EXPECT_EQ(cell->photo()->clipsToBounds(), c.clips) << c.width;
        EXPECT_TRUE(cell->photo()->backgroundColor().isClose(c.background, 0.01)) << c.width;
        EXPECT_EQ(server.requestCount(path), 1) << c.width;
    }

    // A slow picture lands in the cell even after the cell moved on to a row
    // without one: the next fill is what clears it.
    server.delay("/slow.png", 0.2, {200, pngBytes(50, 50, blue), {{"Content-Type", "image/png"}}});
    cell->addImage(server.address("/slow.png"), std::nullopt);
    cell->addImage(std::nullopt, std::nullopt);
    EXPECT_TRUE(cell->photo()->isHidden());
    sys::Queue::waitIdle();
    host->runUntilIdle();
    EXPECT_FALSE(cell->photo()->isHidden());
    EXPECT_TRUE(cell->indicator()->isHidden());
    EXPECT_EQ(cell->photo()->image().size(), gfx::Size(50, 50));
    EXPECT_EQ(server.requestCount("/slow.png"), 1);

    // A cell released before its picture arrives is left alone.
    server.delay("/late.png", 0.2, {200, pngBytes(50, 50, blue), {{"Content-Type", "image/png"}}});
    cell->addImage(server.address("/late.png"), std::nullopt);
    cell->removeFromSuperview();
    cell.reset();
    sys::Queue::waitIdle();
    host->runUntilIdle();
}

// The list asks for the picture named by the first image key, dated by "imaged".
TEST_F(UITblThreadsTest, rows_load_their_pictures_through_the_list) {
    test::LoopbackServer server;
    server.serve("/hotel.png", pngBytes(300, 100, gfx::Color::greenColor()), "image/png");
    ListConfig config;
    config.image = [](std::vector<std::string>& keys) { keys = {"thumb", "photo"}; };
    configure(*list, config);
    list->adData(Node::make(
        {{"key", "h"}, {"photo", server.address("/hotel.png")}, {"imaged", "2024.02.01T00:00:00"}}));
    list->adData(Node::make({{"key", "g"}}));
    list->refresh();
    host->runUntilIdle();
    sys::Queue::waitIdle();
    host->runUntilIdle();
    auto withPicture = cellAt(0);
    EXPECT_FALSE(withPicture->photo()->isHidden());
    EXPECT_EQ(withPicture->photo()->image().size(), gfx::Size(300, 100));
    EXPECT_EQ(withPicture->photo()->contentMode(), gfx::ContentMode::AspectFill);
    EXPECT_TRUE(cellAt(1)->photo()->isHidden());
    EXPECT_EQ(server.requestCount("/hotel.png"), 1);
}
