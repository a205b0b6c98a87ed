// The purse and the payment strip on the headless host: wallets in the
// header, a wallet's entries in the grid, an entry opened on the QR panel
// and followed while it is open, and the two payment buttons.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/commerce/UIPurse.h>
#include <morvane/commerce/ZBPay.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/QRCode.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
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

constexpr const char* kWallets = R"({
  "Folio": {
    "r12": {"key": "r12", "company": "Room-12", "ustatus": "ACTIVE", "$price": "180",
            "^org": [{"title": "Nights", "$data": "2"}]},
    "bar": {"key": "bar", "company": "Bar-Terrace", "$price": "14.5"}
  },
  "Spa card": {
    "m1": {"key": "m1", "company": "Spa-Massage", "ustatus": "USED", "$price": "45"}
  }
})";

class UIPurseTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        purse = UIPurse::initWithTitle("Hotel Farol", "person");
        purse->setFrame({0, 0, 390, 844});
        purse->setBackgroundColor(Colors::hex("#1D2A44"));
        purse->cfg({.header = [](std::vector<std::string>& k) { k = {"company"}; },
                    .price = [](std::vector<std::string>& k) { k = {"$price"}; },
                    .sort = [](bool& sort) { sort = false; },
                    .numOfCol = [](float& c) { c = 2; }});
        host->root()->addSubview(purse);
        wallets = json::parseNode(kWallets);
        purse->addWallet(wallets);
        host->runUntilIdle();
    }
    void TearDown() override {
        purse.reset();
        HostFixture::TearDown();
    }
    std::vector<std::string> gridKeys() const {
        std::vector<std::string> keys;
        for (const Value& entry : *purse->tbl()->myData())
            keys.push_back(*entry.node()->get("key").text());
        return keys;
    }
    void tapEntry(int item) {
        const auto& grid = *purse->tbl()->tbl();
        host->tap(grid.convertRectTo(grid.frameForItem(ui::IndexPath::forItem(item)), nullptr).center());
        host->runUntilIdle();
    }
    NodePtr codeOnPanel() const {
        const auto codes = gfx::QRCode::read(purse->qrProfile()->qrGenUI()->qrCode()->image());
        return codes.size() == 1 ? json::parseNode(codes[0]) : nullptr;
    }

    std::shared_ptr<UIPurse> purse;
    NodePtr wallets;
};

} // namespace

TEST_F(UIPurseTest, a_wallet_fills_the_grid_and_a_chosen_entry_opens_on_the_panel) {
    EXPECT_EQ(gridKeys(), (std::vector<std::string>{"r12", "bar"})) << "the wallet's own order";
    EXPECT_TRUE(purse->qrProfile()->isHidden());

    tapEntry(0);
    const auto& panel = *purse->qrProfile();
    EXPECT_FALSE(panel.isHidden());
    EXPECT_EQ(panel.keyCode(), "r12");
    EXPECT_EQ(panel.qrProfileTbl()->title()->text(), "12");
    EXPECT_TRUE(panel.qrGenUI()->stamp()->isHidden()) << "ACTIVE: no stamp";
    const NodePtr code = codeOnPanel();
    ASSERT_TRUE(code);
    EXPECT_EQ(*code->get("key").text(), "r12");
    EXPECT_FALSE(code->has("^org"));
    ASSERT_EQ(panel.qrProfileTbl()->displayData().size(), 2u);
    EXPECT_EQ(*panel.qrProfileTbl()->displayData()[1]->get("val").text(), "180.00");

    // Back closes the panel; another entry without a status keeps the stamp
    // state, and one without a name keeps the name.
    tapOn(*panel.backBtn());
    host->runUntilIdle();
    EXPECT_TRUE(panel.isHidden());
    purse->updateProfile(Node::make({{"key", "x"}, {"ustatus", "USED"}}));
    EXPECT_FALSE(panel.qrGenUI()->stamp()->isHidden());
    EXPECT_EQ(panel.qrProfileTbl()->title()->text(), "12");
    tapEntry(1);
    EXPECT_EQ(panel.qrProfileTbl()->title()->text(), "Terrace");
    EXPECT_FALSE(panel.qrGenUI()->stamp()->isHidden()) << "the entry has no status: the stamp stays";
}

TEST_F(UIPurseTest, an_open_panel_follows_its_entry_when_the_grid_is_refilled) {
    tapEntry(0);
    // The same wallet again, with the room's price changed: the open panel follows.
    wallets->get("Folio").node()->get("r12").node()->set("$price", "200");
    purse->addWallet(wallets);
    host->runUntilIdle();
    const auto& panel = *purse->qrProfile();
    EXPECT_EQ(*panel.qrProfileTbl()->displayData().back()->get("val").text(), "200.00");

    // Another wallet's entries are other keys: nothing changes.
    purse->headerUI()->selectionBtn()->sendActions(ui::ControlEvent::TouchUpInside);
    host->runUntilIdle();
    EXPECT_EQ(gridKeys(), std::vector<std::string>{"m1"});
    EXPECT_EQ(*panel.qrProfileTbl()->displayData().back()->get("val").text(), "200.00");

    // A hidden panel does not follow.
    purse->qrProfile()->backAction();
    wallets->get("Folio").node()->get("r12").node()->set("$price", "1");
    purse->addWallet(wallets);
    host->runUntilIdle();
    EXPECT_EQ(*panel.qrProfileTbl()->displayData().back()->get("val").text(), "200.00");

    // No wallets: the grid empties.
    purse->addWallet(Node::make());
    host->runUntilIdle();
    EXPECT_TRUE(gridKeys().empty());
}

TEST_F(UIPurseTest, lays_out_the_header_over_the_grid_and_the_panel_over_both) {
    const double s = gfx::Font::systemFontSize();
    EXPECT_EQ(purse->headerUI()->frame(), gfx::Rect(0, 0, 390, std::floor(8 * s)));
    EXPECT_EQ(purse->tbl()->frame(), gfx::Rect(0, std::floor(8 * s), 390, 844 - std::floor(8 * s)));
    EXPECT_EQ(purse->qrProfile()->frame(), gfx::Rect(0, 0, 390, 844));
    EXPECT_EQ(purse->tbl()->backgroundColor(), Colors::hex("#1D2A44"));
    EXPECT_EQ(purse->qrProfile()->backgroundColor(), Colors::hex("#1D2A44"));
    tapEntry(0);
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*purse, 1),
                                         "tests/commerce/snapshots/purse.png");
}

TEST(ZBPayTest, apple_pay_reports_and_stays_credit_card_hides_then_reports) {
    ui::HeadlessHost host;
    auto pay = ZBPay::initWithColor(gfx::Color::brownColor());
    pay->setFrame({0, 700, 390, 100});
    host.root()->addSubview(pay);
    host.runUntilIdle();
    const double f = ZBPay::getFontHeight();
    EXPECT_DOUBLE_EQ(f, 2 * ZBPay::getFontHeight(gfx::Font::systemFont(gfx::Font::systemFontSize())));
    EXPECT_TRUE(sameRect(pay->applePay()->frame(), gfx::Rect(0.07 * 390, (100 - f) / 2, 0.4 * 390, f)));
    EXPECT_TRUE(sameRect(pay->creditPay()->frame(), gfx::Rect(0.53 * 390, (100 - f) / 2, 0.4 * 390, f)));

    auto press = [&](const ui::View& b) { host.tap(centreOf(b)); };
    press(*pay->creditPay());
    EXPECT_FALSE(pay->isHidden()) << "no callback: nothing happens";

    std::vector<std::string> seen;
    pay->watchPayment(
        0, [&](bool flag) { seen.push_back(std::string("apple ") + (flag ? "true" : "false")); },
        [&](bool flag) {
            seen.push_back(std::string("credit ") + (flag ? "true" : "false") +
                           (pay->isHidden() ? " hidden" : ""));
        });
    press(*pay->applePay());
    EXPECT_FALSE(pay->isHidden());
    press(*pay->creditPay());
    EXPECT_EQ(seen, (std::vector<std::string>{"apple true", "credit true hidden"}));

    pay->showPayment(false);
    EXPECT_TRUE(pay->applePay()->isHidden());
    EXPECT_TRUE(pay->creditPay()->isHidden());
    pay->showPayment(true);
    EXPECT_FALSE(pay->creditPay()->isHidden());

    // A callback may let go of the strip.
    pay->setHidden(false);
    pay->watchPayment(0, [&](bool) { pay->removeFromSuperview(), pay.reset(); }, {});
    auto button = pay->applePay();
    press(*button);
    host.runUntilIdle();
    EXPECT_FALSE(pay);
}

// Random wallets, configurations and taps; every callback of the grid's and
// the panel's runs another operation of the purse.
TEST(UIPurseReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {71u, 72u}) {
        ReentrancyHarness<UIPurse> harness(seed);
        harness.make([](ReentrancyHarness<UIPurse>& h) {
            auto purse = UIPurse::initWithTitle("Hotel", "person");
            purse->setFrame({0, 0, 390, 844});
            purse->tbl()->watchTbl(
                "owner", [&h](const Value&, const NodePtr&) { h.callback("select"); },
                [&h](const Value&, const NodePtr&) { h.callback("populate"); }, {});
            purse->watchQRScan([&h](const std::string&, const Value&) { h.callback("scan"); });
            purse->addWallet(json::parseNode(kWallets));
            return purse;
        });
        harness.operation("wallets", [](UIPurse& p, Random& r) {
            p.addWallet(chance(r, 0.8) ? json::parseNode(kWallets) : Node::make());
        });
        harness.operation("cfg", [&harness](UIPurse& p, Random&) {
            p.cfg({.numOfCol = [&harness](float& c) { harness.callback("cfg"), c = 2; }});
        });
        harness.operation("next wallet", [](UIPurse& p, Random&) {
            p.headerUI()->selectionBtn()->sendActions(ui::ControlEvent::TouchUpInside);
        });
        harness.operation("profile", [](UIPurse& p, Random&) {
            p.updateProfile(Node::make({{"key", "r12"}, {"company", "Room-12"}}));
        });
        harness.operation("scan test", [](UIPurse& p, Random&) { p.qrProfile()->testAction(); });
        harness.operation("back", [](UIPurse& p, Random&) { p.qrProfile()->backAction(); });
        harness.operation("colour",
                          [](UIPurse& p, Random&) { p.setBackgroundColor(gfx::Color::grayColor()); });
        harness.tapAnywhere();
        harness.run(ReentrancyHarness<UIPurse>::steps(400, 3000));
        EXPECT_GT(harness.callbacks(), 40) << seed;
    }
}
