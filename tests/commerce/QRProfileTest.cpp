// The QR profile panel on the headless host: the lines and the total a
// record gives, what its code holds, the picture in place of the code, the
// toggle to the reader and back, the scan report, and its layout.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/commerce/QRProfile.h>
#include <morvane/commerce/QRProfileTblCell.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/util/Colors.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

// A spa card: two lines, one of chosen items with their own prices, one line
// that has nothing to show, and a price held as a number (which is not counted).
constexpr const char* kSpaCard = R"({
  "key": "spa-7", "$price": "20.5",
  "^org": [
    {"title": "Booking-Guest", "$data": "Ana Sousa"},
    {"title": "Treatments", "Data": [{"$selection": "Massage", "$price": "45"},
                                     {"$selection": "Sauna", "$price": "12.25"}]},
    {"title": "Nothing here"},
    {"$data": "no label"}
  ],
  "extras": {"tip": {"$price": "2"}, "voucher": {"$price": -10}}
})";

class QRProfileTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        panel = QRProfile::initWithColor(gfx::Color::brownColor());
        panel->setFrame({0, 0, 390, 844});
        host->root()->addSubview(panel);
        host->runUntilIdle();
    }
    void TearDown() override {
        panel.reset();
        HostFixture::TearDown();
    }
    std::vector<std::string> lines() const {
        std::vector<std::string> out;
        for (const NodePtr& line : panel->qrProfileTbl()->displayData())
            out.push_back(*line->get("key").text() + " = " + *line->get("val").text());
        return out;
    }

    std::shared_ptr<QRProfile> panel;
};

} // namespace

TEST_F(QRProfileTest, a_record_shows_its_lines_and_total_and_its_code_leaves_the_lines_out) {
    const NodePtr card = json::parseNode(kSpaCard);
    panel->addQR(card);
    host->runUntilIdle();
    EXPECT_EQ(lines(), (std::vector<std::string>{
                           "Booking-Guest = Ana Sousa",
                           "Treatments = " +
                               card->get("^org").list()->at(1).node()->get("Data").list()->gatherArrayText(
                                   "$selection", "  ", "\n"),
                           "Your Cost = 79.75"}));
    EXPECT_NE(lines()[1].find("  Massage"), std::string::npos);
    EXPECT_NE(lines()[1].find("  Sauna"), std::string::npos);
    EXPECT_TRUE(card->has("^org")) << "the record given is left as it was";
    EXPECT_FALSE(panel->myData()->has("^org"));

    // The code, read back, is the record without its lines.
    const auto codes = gfx::QRCode::read(panel->qrGenUI()->qrCode()->image());
    ASSERT_EQ(codes.size(), 1u);
    const NodePtr read = json::parseNode(codes[0]);
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->has("^org"));
    EXPECT_EQ(*read->get("key").text(), "spa-7");

    // Lines come out as label and value; the label keeps its last piece.
    auto cell = std::dynamic_pointer_cast<QRProfileTblCell>(
        panel->qrProfileTbl()->tbl()->cellForRow(ui::IndexPath::forRow(0, 0)));
    ASSERT_TRUE(cell);
    EXPECT_EQ(cell->leftLbl()->text(), "Guest:");
    EXPECT_EQ(cell->rightLbl()->text(), "Ana Sousa");

    // Without lines or prices: the cost alone, at nothing.
    panel->addQR(Node::make({{"key", "x"}, {"$price", 3}}));
    EXPECT_EQ(lines(), std::vector<std::string>{"Your Cost = 0.00"});
    panel->updateUI(nullptr);
    EXPECT_EQ(lines(), std::vector<std::string>{"Your Cost = 0.00"});
}

TEST_F(QRProfileTest, name_status_and_the_test_button_report_the_record_shown) {
    std::vector<std::string> scans;
    panel->watchQRScan([&](const std::string& what, const Value& record) {
        scans.push_back(what + " " + json::write(record));
    });
    panel->addQR(Node::make({{"key", "k1"}, {"^org", List::make()}}));
    panel->addName("Spa-Card");
    EXPECT_EQ(panel->qrProfileTbl()->title()->text(), "Card");
    panel->testAction();
    EXPECT_EQ(scans, std::vector<std::string>{R"(Scan {"key":"k1","title":"Spa-Card"})"});

    // What the reader reads is reported the same way (on the reader's queue
    // in a running app; here the decoded codes are handed in directly).
    panel->qrReadUI()->captureOutput({R"({"key":"k2"})"});
    ASSERT_EQ(scans.size(), 2u);
    EXPECT_EQ(scans[1], R"(Scan {"key":"k2"})");
    panel->watchQRScan({});
    panel->testAction();
    EXPECT_EQ(scans.size(), 2u);

    panel->addStatus("VOID");
    EXPECT_FALSE(panel->qrGenUI()->stamp()->isHidden());
    panel->addStatus("active");
    EXPECT_FALSE(panel->qrGenUI()->stamp()->isHidden()) << "only the exact word clears it";
    panel->addStatus("ACTIVE");
    EXPECT_TRUE(panel->qrGenUI()->stamp()->isHidden());
}

TEST_F(QRProfileTest, scan_swaps_code_and_reader_and_back_hides_the_panel_then_restores_the_code) {
    std::vector<std::string> backs;
    panel->watchBackBtn([&](const std::string& text, const NodePtr& node) {
        backs.push_back("[" + text + "] " + std::to_string(node ? node->size() : 99) +
                        (panel->isHidden() ? " hidden" : " shown") +
                        (panel->qrReadUI()->isHidden() ? "" : ", reader still up"));
    });
    panel->addQR(Node::make({{"key", "k1"}}));
    tapOn(*panel->scanQRBtn());
    EXPECT_TRUE(panel->qrGenUI()->isHidden());
    EXPECT_TRUE(panel->logo()->isHidden());
    EXPECT_FALSE(panel->qrReadUI()->isHidden());
    tapOn(*panel->scanQRBtn());
    EXPECT_FALSE(panel->qrGenUI()->isHidden());
    EXPECT_TRUE(panel->qrReadUI()->isHidden());

    tapOn(*panel->scanQRBtn());
    tapOn(*panel->backBtn());
    // The code comes back on the main queue, after the report.
    EXPECT_EQ(backs, std::vector<std::string>{"[] 0 hidden, reader still up"});
    host->runUntilIdle();
    EXPECT_FALSE(panel->qrGenUI()->isHidden());
    EXPECT_TRUE(panel->qrReadUI()->isHidden());
}

TEST_F(QRProfileTest, a_narrow_picture_leaves_the_lines_more_room) {
    resourcePicture("narrow", 128, 128, Colors::hex("#81B29A"));
    resourcePicture("wide", 129, 60, Colors::hex("#F2CC8F"));
    const double b = 2.5 * gfx::Font::systemFontSize();
    panel->addImage("narrow", std::nullopt);
    host->runUntilIdle();
    EXPECT_TRUE(panel->scanQRBtn()->isHidden());
    EXPECT_TRUE(panel->qrGenUI()->isHidden());
    EXPECT_FALSE(panel->logo()->isHidden());
    EXPECT_TRUE(panel->logoSmall());
    EXPECT_DOUBLE_EQ(panel->logo()->frame().height, 0.15 * 844);
    EXPECT_DOUBLE_EQ(panel->qrProfileTbl()->frame().y, 2 * b + 0.15 * 844);
    panel->addImage("wide", std::nullopt);
    host->runUntilIdle();
    EXPECT_FALSE(panel->logoSmall());
    EXPECT_DOUBLE_EQ(panel->logo()->frame().height, 0.4 * 844);
    // A later record brings the code back.
    panel->addQR(Node::make({{"key", "k"}}));
    EXPECT_TRUE(panel->logo()->isHidden());
    EXPECT_FALSE(panel->qrGenUI()->isHidden());
}

TEST_F(QRProfileTest, lays_out_by_its_size_and_a_touched_line_grows_by_half_until_touched_again) {
    const double b = 2.5 * gfx::Font::systemFontSize();
    const double w = 390, h = 844;
    EXPECT_TRUE(sameRect(panel->backBtn()->frame(), gfx::Rect(0, 0, w, 2 * b)));
    EXPECT_TRUE(sameRect(panel->qrGenUI()->frame(), gfx::Rect((w - 0.4 * h) / 2, 2 * b, 0.4 * h, 0.4 * h)));
    EXPECT_TRUE(
        sameRect(panel->qrReadUI()->frame(), gfx::Rect((w - 0.4 * h) / 2, 0.05 * h, 0.4 * h, 0.4 * h)));
    EXPECT_TRUE(
        sameRect(panel->qrProfileTbl()->frame(), gfx::Rect(0.1 * w, 2 * b + 0.4 * h, 0.8 * w, 0.35 * h)));
    EXPECT_TRUE(sameRect(panel->scanQRBtn()->frame(), gfx::Rect(0.3 * w, h - 1.5 * b, 0.4 * w, 0.9 * b)));
    EXPECT_TRUE(sameRect(panel->indicator()->frame(),
                         gfx::Rect((w - 1.5 * b) / 2, (h - 1.5 * b) * 0.4, 1.5 * b, 1.5 * b)));
    EXPECT_TRUE(panel->scanQRTestBtn()->isHidden());
    EXPECT_EQ(panel->logoffBtn()->frame().size(), gfx::Size(0, 0));

    panel->show(true);
    EXPECT_FALSE(panel->indicator()->isHidden());
    EXPECT_EQ(panel->subviews().back().get(), panel->indicator().get());
    panel->show(false);
    EXPECT_TRUE(panel->indicator()->isHidden());

    const NodePtr card = json::parseNode(kSpaCard);
    panel->addQR(card);
    panel->addName("Spa-Card");
    panel->addStatus("ACTIVE");
    host->runUntilIdle();
    auto& table = *panel->qrProfileTbl()->tbl();
    const double before = table.rectForRow(ui::IndexPath::forRow(0, 1)).height;
    EXPECT_GT(before, 0);
    const auto rowCentre = [&] {
        return table.convertRectTo(table.rectForRow(ui::IndexPath::forRow(0, 1)), nullptr).center();
    };
    host->tap(rowCentre());
    host->runUntilIdle();
    EXPECT_DOUBLE_EQ(table.rectForRow(ui::IndexPath::forRow(0, 1)).height, 1.5 * before);
    host->tap(rowCentre());
    host->runUntilIdle();
    EXPECT_DOUBLE_EQ(table.rectForRow(ui::IndexPath::forRow(0, 1)).height, before);

    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*panel, 1),
                                         "tests/commerce/snapshots/qr-profile.png");
}

// Random records, names, toggles and presses; every report runs another operation.
TEST(QRProfileReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {61u, 62u}) {
        ReentrancyHarness<QRProfile> harness(seed);
        harness.make([](ReentrancyHarness<QRProfile>& h) {
            auto panel = QRProfile::initWithColor(gfx::Color::brownColor());
            panel->setFrame({0, 0, 390, 844});
            panel->watchBackBtn([&h](const std::string&, const NodePtr&) { h.callback("back"); });
            panel->watchQRScan([&h](const std::string&, const Value&) { h.callback("scan"); });
            return panel;
        });
        harness.operation("addQR", [](QRProfile& p, Random& r) {
            p.addQR(chance(r, 0.8) ? json::parseNode(kSpaCard) : nullptr);
        });
        harness.operation("name", [](QRProfile& p, Random&) { p.addName("Spa-Card"); });
        harness.operation("status",
                          [](QRProfile& p, Random& r) { p.addStatus(chance(r, 0.5) ? "VOID" : "ACTIVE"); });
        harness.operation("picture", [](QRProfile& p, Random&) { p.addImage("about", std::nullopt); });
        harness.operation("busy", [](QRProfile& p, Random& r) { p.show(chance(r, 0.5)); });
        harness.operation("show", [](QRProfile& p, Random&) { p.setHidden(false); });
        harness.operation("toggle", [](QRProfile& p, Random&) { p.updateAction(); });
        harness.operation("test", [](QRProfile& p, Random&) { p.testAction(); });
        harness.operation("back", [](QRProfile& p, Random&) { p.backAction(); });
        harness.operation("read",
                          [](QRProfile& p, Random&) { p.qrReadUI()->captureOutput({R"({"key":"k"})"}); });
        harness.tapAnywhere();
        harness.run(ReentrancyHarness<QRProfile>::steps(400, 3000));
        EXPECT_GT(harness.callbacks(), 40) << seed;
    }
}
