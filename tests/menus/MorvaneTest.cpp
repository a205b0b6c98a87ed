// The menu screen on the headless host: configuration reaching the grid and
// the card, a tapped item filling and opening the card and its contact
// strip, check marks keeping it closed, edits routed to field callbacks, the
// edit and back buttons, the date helpers and the five-second notification.
#include "HostFixture.h"
#include "NotificationService.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/gfx/Font.h>
#include <morvane/menus/Morvane.h>
#include <morvane/model/Json.h>
#include <morvane/model/List.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Notifications.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

constexpr const char* kDinner = R"({
  "a1": {"key": "menus/dinner/a1", "category": "Starters", "company": "Farol-Kitchen/Caldo verde",
         "name": "Caldo verde", "phone": "+351 210 000 001", "utube": "https://video.example/caldo",
         "$price": "6.50"},
  "a2": {"key": "menus/dinner/a2", "name": "Bacalhau", "about": "Salt cod, slow baked", "$price": "18"},
  "a3": {"name": "No key at all", "$price": "1"}
})";

class MorvaneTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        menu = place(std::make_shared<UIMenu2>(), {0, 0, 390, 844});
    }
    void TearDown() override {
        menu.reset();
        HostFixture::TearDown();
    }
    // Configures, loads the dinner items (in key order: a1, a2, a3) and shows them.
    void load(bool checkMarks = false) {
        menu->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; },
                            .sortBy = [](auto& keys) { keys = {"$price"}; },
                            .ascending = [](bool& up) { up = false; },
                            .checkBox = [checkMarks](bool& on) { on = checkMarks; }},
                   .profileBody = [](auto& keys) {
                       keys = {"name", "phone", "about"};
                   }});
        items = json::parseNode(kDinner);
        menu->addDataWhenSelect("Dinner", Value(items));
        menu->refresh();
        host->runUntilIdle();
    }
    // Taps the grid's tile showing the item under that name.
    void tapItem(const std::string& name) {
        const auto& grid = *menu->tblHdrUI()->ctblUI();
        const ListPtr& rows = grid.myData();
        for (std::size_t i = 0; rows && i < rows->size(); ++i) {
            if (rows->at(i).node()->get("name").textOr() != name) continue;
            const auto& view = *grid.tbl();
            host->tap(
                view.convertRectTo(view.frameForItem(ui::IndexPath::forItem(int(i))), nullptr).center());
            host->runUntilIdle();
            return;
        }
        ADD_FAILURE() << "no tile for " << name;
    }

    std::shared_ptr<Morvane> menu;
    NodePtr items;
};

} // namespace

TEST_F(MorvaneTest, construction_and_layout) {
    const double w = 390, h = 844, b = 2.5 * gfx::Font::systemFontSize();
    EXPECT_TRUE(menu->profileUI()->isHidden());
    EXPECT_TRUE(menu->backBtn()->isHidden());
    EXPECT_TRUE(menu->editBtn()->isHidden());
    EXPECT_EQ(menu->backBtn()->titleForState(ui::ControlState::Normal), " \u2190");
    EXPECT_EQ(menu->touchZB()->superview(), menu->profileUI().get());
    EXPECT_TRUE(sameRect(menu->backBtn()->frame(), {0, 0, w, 2 * b}));
    EXPECT_TRUE(sameRect(menu->tblHdrUI()->frame(), {0, 0, w, h}));
    EXPECT_TRUE(sameRect(menu->profileUI()->frame(), {0, 0, w, h}));
    EXPECT_TRUE(sameRect(menu->touchZB()->frame(), {w - 1.4 * b, 0, b, 0.4 * h}));
    EXPECT_TRUE(sameRect(menu->editBtn()->frame(), {w - 1.5 * b, h - 1.5 * b, b, b}));
    EXPECT_DOUBLE_EQ(menu->editBtn()->layer().cornerRadius(), b / 2);
    // The back button lies under the card.
    const auto& children = menu->subviews();
    const auto at = [&](const ui::View* v) {
        return std::find_if(children.begin(), children.end(), [v](auto& c) { return c.get() == v; }) -
               children.begin();
    };
    EXPECT_LT(at(menu->backBtn().get()), at(menu->profileUI().get()));
    menu->admin(true);
    menu->showBackBtn(true);
    EXPECT_FALSE(menu->editBtn()->isHidden());
    EXPECT_FALSE(menu->backBtn()->isHidden());
}

TEST_F(MorvaneTest, a_tapped_item_fills_the_card_and_strip_and_opens_it_unless_check_marks_are_on) {
    std::vector<std::string> header, body, hostSelected;
    menu->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; },
                        .numOfCol = [](float& columns) { columns = 2; }},
               .profileHeader = [&](auto& keys) { header = keys; },
               .profileBody =
                   [&](auto& keys) {
                       body = keys;
                       keys = {"name", "phone", "about"};
                   }});
    EXPECT_EQ(header, (std::vector<std::string>{"category", "company"}));
    EXPECT_EQ(body, (std::vector<std::string>{"key", "name", "phone", "email", "time"}));
    EXPECT_EQ(*menu->tblHdrUI()->ctblUI()->numOfCol(), 2.0f) << "the list's own members reach the grid";
    ASSERT_TRUE(menu->checkBox());
    EXPECT_FALSE(*menu->checkBox());
    menu->watchTbl(
        "host",
        [&](const Value&, const NodePtr& item) { hostSelected.push_back(item->get("name").textOr()); }, {},
        {});
    items = json::parseNode(kDinner);
    menu->addDataWhenSelect("Dinner", Value(items));
    menu->refresh();
    host->runUntilIdle();

    menu->itemSelected(items->get("a3").node());
    EXPECT_TRUE(menu->profileUI()->isHidden()) << "an item without a key opens nothing";
    EXPECT_TRUE(menu->profileUI()->keyCode().empty());
    tapItem("Caldo verde");
    EXPECT_EQ(hostSelected, (std::vector<std::string>{"Caldo verde"}));
    const auto& card = *menu->profileUI();
    EXPECT_FALSE(card.isHidden());
    EXPECT_EQ(card.keyCode(), "menus/dinner/a1");
    // Every header key found names the card in turn: the last one stays.
    EXPECT_EQ(card.myData()->get("title").textOr(), "Farol-Kitchen/Caldo verde");
    EXPECT_EQ(card.nameLbl()->text(), "Caldo verde");
    ASSERT_EQ(card.myLblData().size(), 2u);
    EXPECT_EQ(card.myLblData()[0]->get("field").textOr(), "name");
    EXPECT_EQ(card.myLblData()[1]->get("field").textOr(), "phone");
    ASSERT_EQ(menu->touchZB()->myData().size(), 2u);
    EXPECT_EQ(menu->touchZB()->myData()[0]->get("key").textOr(), "phone") << "phone first, then utube";

    // The grid redrawing the open item refreshes the card.
    items->get("a1").node()->set("phone", Value("+351 210 999 999"));
    menu->tblHdrUI()->ctblUI()->refresh();
    host->runUntilIdle();
    EXPECT_EQ(card.myLbl()[1]->text(), "+351 210 999 999");

    // With check marks on the card is filled but stays closed.
    menu->profileUI()->setHidden(true);
    menu->cfg(
        {.list = {.header = [](auto& keys) { keys = {"name"}; }, .checkBox = [](bool& on) { on = true; }}});
    menu->addDataWhenSelect("Dinner", Value(items));
    menu->refresh();
    host->runUntilIdle();
    tapItem("Bacalhau");
    EXPECT_TRUE(card.isHidden());
    EXPECT_EQ(card.keyCode(), "menus/dinner/a2");
}

TEST_F(MorvaneTest, edits_names_contacts_and_the_buttons_reach_the_host) {
    load();
    std::vector<std::string> told;
    menu->watchField("phone", [&](const std::string& key, const std::string& title, const std::string& field,
                                  const std::string& text) {
        told.push_back("field " + key + "|" + title + "|" + field + "|" + text);
    });
    menu->watchName([&](const std::string& text, const NodePtr& record) {
        told.push_back("name " + text.substr(text.find('-') + 1) + " " +
                       (record ? record->get("a2").node()->get("name").textOr() : "none"));
    });
    menu->watchTouchSelect([&](const std::string& action, const NodePtr& item) {
        told.push_back("touch " + action + " " + item->get("name").textOr());
    });
    menu->watchBackCB([&](const std::string& text, const NodePtr& node) {
        told.push_back("back [" + text + "] " + std::to_string(node->size()));
    });
    tapItem("Caldo verde");
    auto& card = *menu->profileUI();
    card.txtChanged("+351 210 111 111", *card.myLbl()[1]); // the phone, saved
    card.txtChanged("Kale soup", *card.myLbl()[0]);        // "name": no callback
    // The name's record is the data set named by the key's last piece: here none.
    card.addKeyCode("menus/Dinner");
    card.txtChanged("Sopa", *card.nameLbl());
    menu->touchZB()->didSelectItem(*menu->touchZB()->tbl(), ui::IndexPath::forItem(0));

    menu->admin(true);
    tapOn(*menu->editBtn());
    EXPECT_EQ(menu->editBtn()->titleForState(ui::ControlState::Normal), "disable edit");
    EXPECT_TRUE(card.canEdit());
    menu->editAction();
    EXPECT_EQ(menu->editBtn()->titleForState(ui::ControlState::Normal), "edit");
    EXPECT_FALSE(card.canEdit());

    menu->backAction();
    EXPECT_EQ(told, (std::vector<std::string>{
                        "field menus/dinner/a1|Farol-Kitchen/Caldo verde|phone|+351 210 111 111",
                        "name Sopa Bacalhau",
                        "touch phone Caldo verde",
                        "back [] 0",
                    }));
    EXPECT_FALSE(menu->tblHdrUI()->selectedItemGet("Dinner")) << "back clears the header's data sets";
}

TEST_F(MorvaneTest, the_screen_with_its_card_open) {
    menu->setFrame({0, 0, 390, 700});
    menu->setBackgroundColor(gfx::Color(0.08, 0.13, 0.24));
    load();
    tapItem("Caldo verde");
    host->advance(2); // the white line has grown
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*menu, 1),
                                         "tests/menus/snapshots/menu-card.png");
}

TEST_F(MorvaneTest, ten_thousand_odd_items_stay_quiet) {
    load();
    NodePtr many = Node::make();
    for (int i = 0; i < 10'000; ++i) {
        const std::string id = "i" + std::to_string(i);
        if (i % 1000 == 7) {
            many->set(id, Value("not an item"));
            continue;
        }
        NodePtr item = Node::make();
        if (i % 3 == 0) item->set("key", Value(i)); // a number for a key
        if (i % 3 == 1) item->set("key", Value(List::make()));
        item->set("name", Value("Item " + std::to_string(i)));
        if (i % 2) item->set("phone", Value(i));
        many->set(id, Value(item));
    }
    menu->addDataWhenSelect("Many", Value(many));
    menu->refresh();
    host->runUntilIdle();
    menu->itemSelected(many->get("i3").node());
    EXPECT_EQ(menu->profileUI()->keyCode(), "3");
    EXPECT_FALSE(menu->profileUI()->isHidden());
    ASSERT_EQ(menu->touchZB()->myData().size(), 1u);
    menu->itemSelected(many->get("i4").node());
    EXPECT_EQ(menu->profileUI()->keyCode(), "") << "a list for a key is no key text";
    menu->itemSelected(nullptr);
    (void)host->snapshot(1);
}

TEST_F(MorvaneTest, date_helpers) {
    Dates::setTimeZone("UTC");
    Dates::setLocale("en_US");
    const auto day = Morvane::textToDate("20261124T101500");
    ASSERT_TRUE(day);
    EXPECT_EQ(Morvane::getFDate(*day), "24 Nov 2026, Tue");
    EXPECT_FALSE(Morvane::textToDate("2026-11"));
    EXPECT_FALSE(Morvane::isValidDateFormat("", "yyyyMMdd"));
    EXPECT_TRUE(Morvane::isValidDateFormat("2026.11.24T10:15:00", "yyyy.MM.dd'T'HH:mm:ss"));
    EXPECT_FALSE(Morvane::isValidDateFormat("2026.13.40T10:15:00", "yyyy.MM.dd'T'HH:mm:ss")) << "strict";
    Dates::setTimeZone("");
    Dates::setLocale("");
}

TEST_F(MorvaneTest, a_second_notification_replaces_the_first_and_a_failed_delivery_logs_once) {
    sys::Notifications::setBusAddress("unix:path=/nonexistent/morvane-test-bus");
    sys::Notifications::setStrings({{"ready", "Your table is ready"}, {"ready-body", "Table 4"}});
    sys::Log::Capture log;
    Morvane::addNotification("ready", "ready-body");
    host->advance(3);
    Morvane::addNotification("ready", "ready-body");
    EXPECT_EQ(sys::Notifications::pendingIdentifiers(), std::vector<std::string>{"FiveSecond"});
    host->advance(4);
    EXPECT_EQ(sys::Notifications::pendingIdentifiers(), std::vector<std::string>{"FiveSecond"})
        << "the second waits its own five seconds";
    host->advance(1.5);
    sys::Queue::waitIdle();
    EXPECT_TRUE(sys::Notifications::pendingIdentifiers().empty());
    std::vector<std::string> wrong;
    for (const std::string& line : log.texts())
        if (line.rfind("Something went wrong: ", 0) == 0) wrong.push_back(line);
    EXPECT_EQ(wrong.size(), 1u) << "one delivery, one line";
    sys::Notifications::setBusAddress("");
    sys::Notifications::setStrings({});
}

TEST_F(MorvaneTest, the_notification_reaches_the_desktops_service_five_seconds_later) {
    test::PrivateBus bus;
    ASSERT_FALSE(bus.address().empty()) << bus.why();
    test::NotificationService service(bus.address());
    ASSERT_TRUE(service.ok());
    sys::Notifications::setBusAddress(bus.address());
    sys::Notifications::setStrings(
        {{"ready", "Your table is ready"}, {"ready-body", "Table 4, by the window"}});
    sys::Log::Capture log;
    Morvane::addNotification("ready", "ready-body");
    Morvane::addNotification("ready", "missing-body"); // replaces the first; its body key is not in the table
    host->advance(4.9);
    sys::Queue::waitIdle();
    EXPECT_TRUE(service.received().empty());
    host->advance(0.2);
    ASSERT_TRUE(service.waitFor(1));
    const auto got = service.received().at(0);
    EXPECT_EQ(got.summary, "Your table is ready");
    EXPECT_EQ(got.body, "missing-body") << "a missing text shows its key";
    EXPECT_EQ(got.hints.at("sound-name"), "message-new-instant");
    sys::Queue::waitIdle();
    for (const std::string& line : log.texts())
        EXPECT_EQ(line.find("Something went wrong"), std::string::npos) << line;
    sys::Notifications::setBusAddress("");
    sys::Notifications::setStrings({});
}

// Random configurations, loads, taps, edits and buttons; every callback
// runs another operation of the screen, releasing it included.
TEST(MorvaneReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {151u, 152u}) {
        ReentrancyHarness<Morvane> harness(seed);
        harness.make([](ReentrancyHarness<Morvane>& h) {
            auto menu = std::make_shared<Morvane>(gfx::Rect{0, 0, 390, 700});
            menu->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; },
                                .select = [&h](std::string&) { h.callback("select-cfg"); }}});
            menu->watchTbl(
                "host", [&h](const Value&, const NodePtr&) { h.callback("selected"); },
                [&h](const Value&, const NodePtr&) { h.callback("populate"); }, {});
            menu->watchField("phone", [&h](auto&, auto&, auto&, auto&) { h.callback("field"); });
            menu->watchName([&h](const std::string&, const NodePtr&) { h.callback("name"); });
            menu->watchTouchSelect([&h](const std::string&, const NodePtr&) { h.callback("touch"); });
            menu->watchBackCB([&h](const std::string&, const NodePtr&) { h.callback("back"); });
            menu->addDataWhenSelect("Dinner", Value(json::parseNode(kDinner)));
            menu->refresh();
            menu->admin(true);
            return menu;
        });
        harness.operation("refresh", [](Morvane& m, Random&) { m.refresh(); });
        harness.operation("edit", [](Morvane& m, Random&) { m.editAction(); });
        harness.operation("back", [](Morvane& m, Random&) { m.backAction(); });
        harness.operation("clear", [](Morvane& m, Random&) { m.clear(); });
        harness.operation("reload", [](Morvane& m, Random&) {
            m.addDataWhenSelect("Dinner", Value(json::parseNode(kDinner)));
            m.refresh();
        });
        harness.operation("field", [](Morvane& m, Random&) {
            auto& card = *m.profileUI();
            if (card.myLbl().size() > 1) card.txtChanged("x", *card.myLbl()[1]);
            card.txtChanged("Renamed", *card.nameLbl());
        });
        harness.operation("strip", [](Morvane& m, Random&) {
            if (!m.touchZB()->myData().empty())
                m.touchZB()->didSelectItem(*m.touchZB()->tbl(), ui::IndexPath::forItem(0));
        });
        harness.input("touch", [](ui::HeadlessHost& host, Morvane& m, Random& r) {
            host.tap(randomPointIn(r, m.convertRectTo(m.bounds(), nullptr)));
        });
        harness.run(ReentrancyHarness<Morvane>::steps(500, 3000));
        EXPECT_GT(harness.callbacks(), 30) << seed;
    }
}
