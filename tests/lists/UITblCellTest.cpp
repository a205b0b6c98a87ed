// The row cell on its own: its filling operations, its layout from the row
// height, resource pictures and the corner sampling that colours their
// background. Downloaded pictures are in the concurrency suite.
#include "ListsFixture.h"

#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/ui/core/Window.h>

#include <tuple>

using namespace morvane;
using morvane::test::ListsFixture;
using morvane::test::sameRect;

namespace {

class UITblCellTest : public ListsFixture {
  protected:
    void SetUp() override {
        ListsFixture::SetUp();
        cell = std::make_shared<UITblCell>(ui::TableViewCell::Style::Default, "TViewCell");
        cell->setFrame({0, 0, 390, 100});
        host->root()->addSubview(cell);
        host->runUntilIdle();
    }
    void TearDown() override {
        cell.reset();
        ListsFixture::TearDown();
    }
    std::shared_ptr<UITblCell> cell;
};

} // namespace

// Bodies grow line by line and start over with nothing; headers keep the last
// piece after "-" then "/" and hide their markers.
TEST_F(UITblCellTest, filling_operations_build_the_row_texts) {
    for (auto line : {"a", "b"})
        cell->addBody(line);
    EXPECT_EQ(cell->bodyLbl()->text(), "a\nb");
    cell->addBody(std::nullopt);
    EXPECT_EQ(cell->bodyLbl()->text(), "");
    cell->addBody("");
    cell->addBody("c");
    EXPECT_EQ(cell->bodyLbl()->text(), "c") << "an empty body takes the next line as it is";

    // What addHeader answers, and what the label shows without the markers.
    for (auto [text, answer, shown] : {std::tuple{"x-y-z", "z", "z"},
                                       {"World/THA/Bangkok", "Bangkok", "Bangkok"},
                                       {"A-B/C", "C", "C"},
                                       {"Spot<en>", "Spot<en>", "Spot"},
                                       {"<en>Old<en> Town", "<en>Old<en> Town", "Old Town"}}) {
        EXPECT_EQ(cell->addHeader(text), answer);
        EXPECT_EQ(cell->headLbl()->text(), shown) << text;
    }
    cell->showCheckLabel(true);
    EXPECT_EQ(cell->checkLabel()->text(), "\u2713");
}

// Everything is placed from the row height H, the width W and the text unit
// t; a short row (not the snapshot's) shows a constant where a proportion belongs.
TEST_F(UITblCellTest, layout_scales_with_the_row_height) {
    const double t = UITblCell::getTextHeight(), W = 390, H = 60, p = 0.7 * H, c = 0.8 * t;
    EXPECT_DOUBLE_EQ(t, 1.5 * gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(17)).height);
    cell->setFrame({0, 0, W, H});
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(cell->photo()->frame(), gfx::Rect(0.1 * p, (H - p) / 2, p, p)));
    EXPECT_DOUBLE_EQ(cell->photo()->layer().cornerRadius(), p / 2) << "a circle";
    EXPECT_TRUE(sameRect(cell->indicator()->frame(), cell->photo()->frame()));
    EXPECT_TRUE(sameRect(cell->headLbl()->frame(), gfx::Rect(0.9 * H, 0.2 * t, W - 1.1 * H, t)));
    EXPECT_TRUE(
        sameRect(cell->bodyLbl()->frame(), gfx::Rect(0.9 * H, 1.2 * t, W - 1.1 * H, H - (1.2 * t + 5))));
    EXPECT_TRUE(sameRect(cell->priceLbl()->frame(), gfx::Rect(0.7 * W, 0.2 * t, 0.25 * W, t)));
    EXPECT_TRUE(sameRect(cell->checkLabel()->frame(), gfx::Rect(W - 1.9 * c, (H - c) / 2, c, c)));
    EXPECT_DOUBLE_EQ(cell->checkLabel()->layer().cornerRadius(), c / 2);
    EXPECT_EQ(cell->checkLabel()->layer().borderWidth(), 2);
    EXPECT_TRUE(sameRect(cell->contentView()->frame(), gfx::Rect(5, 0, W - 10, H)));
    ASSERT_TRUE(cell->layer().mask());
    EXPECT_TRUE(sameRect(cell->layer().mask()->frame, gfx::Rect(5, 2.5, W - 10, H - 5)))
        << "a gap between rows";
}

// Resource pictures are applied on the main queue, the indicator spinning
// meanwhile; no name hides the photo.
TEST_F(UITblCellTest, resource_pictures_load_on_the_main_queue_and_sample_their_corners) {
    auto loading = [this] {
        return !cell->indicator()->isHidden() && cell->indicator()->isAnimating() &&
               cell->photo()->isHidden();
    };
    resourcePicture("tall", 70, 100, gfx::Color::redColor());
    cell->addImage("tall", std::nullopt);
    EXPECT_TRUE(loading());
    host->runUntilIdle();
    EXPECT_FALSE(loading());
    EXPECT_EQ(cell->photo()->contentMode(), gfx::ContentMode::AspectFit);
    const auto corner = UITblCell::getColorOfCornersForImage(cell->photo()->image());
    ASSERT_TRUE(corner);
    EXPECT_TRUE(corner->isClose(gfx::Color(1, 1, 0, 0), 0.01));
    EXPECT_FALSE(UITblCell::getColorOfCornersForImage(gfx::Image()));
    cell->addImage(std::nullopt, std::nullopt);
    EXPECT_TRUE(cell->photo()->isHidden());

    // The sampling reads the bitmap's bytes in the order they lie: an opaque
    // red pixel, stored A R G B, reads as (1, 1, 0, 0); outside is nothing.
    const std::vector<std::uint8_t> bytes = {255, 255, 0, 0, 10, 0, 0, 255};
    EXPECT_EQ(UITblCell::getColorAtPoint({1, 0}, bytes, 2), gfx::Color(10 / 255.0, 0, 0, 1));
    EXPECT_FALSE(UITblCell::getColorAtPoint({2, 0}, bytes, 2));
    EXPECT_FALSE(UITblCell::getColorAtPoint({0, 1}, bytes, 2));
}
