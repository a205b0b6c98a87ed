// The administration panel on the headless host: records in the list, one
// on the card named by its first header key, stamps as readable dates,
// check-box mode, per-field edit routing, the edit toggle, back and hiding.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"

#include <morvane/commerce/UIAdmin.h>
#include <morvane/gfx/Font.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/util/Dates.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

constexpr const char* kStaff = R"({
  "s1": {"key": "staff/s1", "category": "Reception", "company": "Hotel Farol", "name": "Rita Lopes",
         "phone": "+351 210 000 010", "time": "1990.01.01T01:01:01"},
  "s2": {"key": "staff/s2", "Company": "Farol Spa", "name": "Duarte Reis", "time": "09:30"},
  "s3": {"name": "Nobody", "phone": "0"}
})";

class UIAdminTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        Dates::setTimeZone("UTC");
        Dates::setLocale("en_US");
        admin = place(UIAdmin::initWithBackButton(true), {0, 0, 390, 844});
        staff = json::parseNode(kStaff);
    }
    void TearDown() override {
        admin.reset();
        Dates::setTimeZone("");
        Dates::setLocale("");
        HostFixture::TearDown();
    }
    void load(bool checkMarks) {
        admin->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; },
                             .checkBox = [checkMarks](bool& on) { on = checkMarks; }}});
        admin->addDataWhenSelect("Staff", Value(staff));
        admin->refresh();
        host->runUntilIdle();
    }
    NodePtr record(const char* key) const { return staff->get(key).node(); }

    std::shared_ptr<UIAdmin> admin;
    NodePtr staff;
};

} // namespace

TEST_F(UIAdminTest, a_selected_record_opens_on_the_card_named_by_its_first_header_key_with_readable_dates) {
    // Before the list hands over its flag, a selection opens the card.
    admin->itemSelected(record("s2"));
    EXPECT_FALSE(admin->profileUI()->isHidden());
    EXPECT_EQ(admin->profileUI()->nameLbl()->text(), "") << "no configuration yet: no name keys";

    load(false);
    admin->showProfile(false); // the open card covers the list
    const auto& table = *admin->tblHdrUI()->tblUI()->tbl();
    const ListPtr& rows = admin->tblHdrUI()->tblUI()->myData();
    int row = 0;
    while (row < int(rows->size()) && rows->at(std::size_t(row)).node()->get("key").textOr() != "staff/s1")
        ++row;
    // A real tap on Rita's row.
    host->tap(table.convertRectTo(table.rectForRow(ui::IndexPath::forRow(row)), nullptr).center());
    host->runUntilIdle();
    auto& card = *admin->profileUI();
    EXPECT_EQ(card.keyCode(), "staff/s1");
    EXPECT_EQ(card.nameLbl()->text(), "Reception") << "category before company";
    std::vector<std::string> shown;
    for (std::size_t i = 0; i < card.myLblData().size(); ++i)
        shown.push_back(card.myLblData()[i]->get("field").textOr() + "=" + card.myLbl()[i]->text());
    EXPECT_EQ(shown, (std::vector<std::string>{"key=staff/s1", "name=Rita Lopes", "phone=+351 210 000 010",
                                               "time=1 Jan 1990 01:01:01, Mon"}));

    admin->itemSelected(record("s2"));
    EXPECT_EQ(card.nameLbl()->text(), "Farol Spa") << "keys are matched like, not exactly";
    EXPECT_EQ(card.myLbl()[2]->text(), "09:30") << "a clock time stays as it is";

    // Without a key the card opens on what it showed.
    card.setHidden(true);
    admin->itemSelected(record("s3"));
    EXPECT_FALSE(card.isHidden());
    EXPECT_EQ(card.keyCode(), "staff/s2");
    EXPECT_EQ(card.nameLbl()->text(), "Farol Spa");

    // In check-box mode the card follows the selection but stays closed.
    load(true);
    card.setHidden(true);
    admin->itemSelected(record("s1"));
    EXPECT_TRUE(card.isHidden());
    EXPECT_EQ(card.keyCode(), "staff/s1");
}

TEST_F(UIAdminTest, edits_go_to_the_last_field_callback_and_the_buttons_work) {
    load(false);
    std::vector<std::string> told;
    admin->watchField("phone",
                      [&](auto&, auto&, auto&, const std::string& text) { told.push_back("first " + text); });
    admin->watchField("phone", [&](const std::string& key, const std::string& title, const std::string& field,
                                   const std::string& text) {
        told.push_back(key + "|" + title + "|" + field + "|" + text);
    });
    admin->itemSelected(record("s1"));
    auto& card = *admin->profileUI();
    card.txtChanged("+351 210 555 555", *card.myLbl()[2]);
    card.txtChanged("ignored", *card.myLbl()[1]); // "name": no callback
    EXPECT_EQ(told, std::vector<std::string>{"staff/s1|Reception|phone|+351 210 555 555"});

    const double w = 390, h = 844, e = 2.5 * gfx::Font::systemFontSize();
    EXPECT_TRUE(admin->editBtn()->isHidden());
    admin->editEnable(true);
    EXPECT_FALSE(admin->editBtn()->isHidden());
    EXPECT_TRUE(card.canEdit());
    EXPECT_TRUE(sameRect(admin->editBtn()->frame(), {w - 1.5 * e, h - 1.5 * e, e, e}));
    tapOn(*admin->editBtn());
    EXPECT_EQ(admin->editBtn()->titleForState(ui::ControlState::Normal), "disable edit");
    admin->editAction();
    EXPECT_EQ(admin->editBtn()->titleForState(ui::ControlState::Normal), "edit");
    EXPECT_FALSE(card.canEdit());

    // The back button lies above the card; back cleans up with or without a callback.
    admin->showBackBtn(true);
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(admin->backBtn()->frame(), {0, 0, w, 2 * e}));
    tapOn(*admin->backBtn());
    EXPECT_FALSE(admin->tblHdrUI()->selectedItemGet("Staff"));

    admin->showProfile(true);
    admin->setHidden(false);
    EXPECT_TRUE(card.isHidden()) << "hiding or showing the panel closes the card";
    admin->showProfile(true);
    admin->clear();
    EXPECT_TRUE(card.isHidden());
}

// Random loads, selections, edits and buttons; every callback runs another
// operation of the panel, releasing it included.
TEST(UIAdminReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {161u, 162u}) {
        ReentrancyHarness<UIAdmin> harness(seed);
        harness.make([](ReentrancyHarness<UIAdmin>& h) {
            auto admin = std::make_shared<UIAdmin>(gfx::Rect{0, 0, 390, 700});
            admin->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; }}});
            admin->watchTbl("host", [&h](const Value&, const NodePtr&) { h.callback("selected"); }, {}, {});
            admin->watchField("phone", [&h](auto&, auto&, auto&, auto&) { h.callback("field"); });
            admin->watchName([&h](const std::string&, const NodePtr&) { h.callback("name"); });
            admin->watchBackCB([&h](const std::string&, const NodePtr&) { h.callback("back"); });
            admin->addDataWhenSelect("Staff", Value(json::parseNode(kStaff)));
            admin->refresh();
            admin->showBackBtn(true);
            return admin;
        });
        harness.operation("edit", [](UIAdmin& a, Random& r) { a.editEnable(chance(r, 0.5)); });
        harness.operation("back", [](UIAdmin& a, Random&) { a.backAction(); });
        harness.operation("clear", [](UIAdmin& a, Random&) { a.clear(); });
        harness.operation("reload", [](UIAdmin& a, Random&) {
            a.addDataWhenSelect("Staff", Value(json::parseNode(kStaff)));
            a.refresh();
        });
        harness.operation("field", [](UIAdmin& a, Random&) {
            auto& card = *a.profileUI();
            if (card.myLbl().size() > 2) card.txtChanged("x", *card.myLbl()[2]);
            card.txtChanged("Renamed", *card.nameLbl());
        });
        harness.tapAnywhere();
        harness.run(ReentrancyHarness<UIAdmin>::steps(500, 3000));
        EXPECT_GT(harness.callbacks(), 30) << seed;
    }
}
