// The row cell on its own: its five filling operations, its layout from the
// row height, and pictures from the resource folder placed by their shape.
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
    bool loading() const {
        return !cell->indicator()->isHidden() && cell->indicator()->isAnimating() &&
               cell->photo()->isHidden();
    }
    std::shared_ptr<UITblCell> cell;
};

} // namespace

// Bodies grow line by line and start over with nothing; headers keep the last
// piece after "-" then "/" and hide their markers. (Prices and check marks
// are seen through the list.)
TEST_F(UITblCellTest, filling_operations_build_the_row_texts) {
    cell->addBody("a");
    cell->addBody("b");
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

// Everything is placed from the row height H, the width W and the text unit t.
TEST_F(UITblCellTest, layout_scales_with_the_row_height) {
    const double t = UITblCell::getTextHeight();
    EXPECT_DOUBLE_EQ(t, 1.5 * gfx::TextMetrics::size("Sample Text", gfx::Font::systemFont(17)).height);
    for (double H : {100.0, 60.0}) {
        const double W = 390;
        cell->setFrame({0, 0, W, H});
        host->runUntilIdle();
        const double p = 0.7 * H;
        EXPECT_TRUE(sameRect(cell->photo()->frame(), gfx::Rect(0.1 * p, (H - p) / 2, p, p))) << H;
        EXPECT_DOUBLE_EQ(cell->photo()->layer().cornerRadius(), p / 2) << "a circle";
        EXPECT_TRUE(sameRect(cell->indicator()->frame(), cell->photo()->frame()));
        EXPECT_TRUE(sameRect(cell->headLbl()->frame(), gfx::Rect(0.9 * H, 0.2 * t, W - 1.1 * H, t)));
        EXPECT_TRUE(
            sameRect(cell->bodyLbl()->frame(), gfx::Rect(0.9 * H, 1.2 * t, W - 1.1 * H, H - (1.2 * t + 5))));
        EXPECT_TRUE(sameRect(cell->priceLbl()->frame(), gfx::Rect(0.7 * W, 0.2 * t, 0.25 * W, t)));
        const double c = 0.8 * t;
        EXPECT_TRUE(sameRect(cell->checkLabel()->frame(), gfx::Rect(W - 1.9 * c, (H - c) / 2, c, c)));
        EXPECT_DOUBLE_EQ(cell->checkLabel()->layer().cornerRadius(), c / 2);
        EXPECT_EQ(cell->checkLabel()->layer().borderWidth(), 2);
        EXPECT_TRUE(sameRect(cell->contentView()->frame(), gfx::Rect(5, 0, W - 10, H)));
        ASSERT_TRUE(cell->layer().mask());
        EXPECT_TRUE(sameRect(cell->layer().mask()->frame, gfx::Rect(5, 2.5, W - 10, H - 5)))
            << "a gap between rows";
    }
}

// Resource pictures are applied on the main queue (their placement by shape
// is checked with downloaded ones); no name hides the photo.
TEST_F(UITblCellTest, resource_pictures_are_placed_by_their_shape) {
    resourcePicture("tall", 70, 100, gfx::Color::redColor());
    cell->addImage("tall", std::nullopt);
    EXPECT_TRUE(loading()) << "the answer is applied on the main queue";
    host->runUntilIdle();
    EXPECT_FALSE(loading());
    EXPECT_EQ(cell->photo()->contentMode(), gfx::ContentMode::AspectFit);
    cell->addImage(std::nullopt, std::nullopt);
    EXPECT_TRUE(cell->photo()->isHidden());

    // The cell's own sampling reads the bitmap's bytes in the order they lie:
    // an opaque red pixel, stored A R G B, reads as (1, 1, 0, 0).
    const std::vector<std::uint8_t> bytes = {255, 255, 0, 0, 10, 0, 0, 255};
    EXPECT_EQ(UITblCell::getColorAtPoint({1, 0}, bytes, 2), gfx::Color(10 / 255.0, 0, 0, 1));
    EXPECT_FALSE(UITblCell::getColorAtPoint({2, 0}, bytes, 2));
    EXPECT_FALSE(UITblCell::getColorAtPoint({0, 1}, bytes, 2));
    const auto corner = UITblCell::getColorOfCornersForImage(cell->photo()->image());
    ASSERT_TRUE(corner);
    EXPECT_TRUE(corner->isClose(gfx::Color(1, 1, 0, 0), 0.01));
    EXPECT_FALSE(UITblCell::getColorOfCornersForImage(gfx::Image()));
}
