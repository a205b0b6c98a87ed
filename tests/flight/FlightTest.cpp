// The flight screens on the headless host: the rows' value styles, the
// card's and the display's layouts and side rules, the search box with
// typing, and the search screen's busy indicator, display and veil.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/flight/UIFltSearch.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/TextMetrics.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/util/Colors.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

class FlightTest : public HostFixture {
  protected:
    static const gfx::AttributedText& value(const UIFltTiny& row) {
        static const gfx::AttributedText none;
        const auto& text = row.login()->attributedTitle();
        return text ? *text : none;
    }
    // A whole flight, as a flight service would push it.
    static void fill(UIFltDisplay& display) {
        display.addFlightHeader("AS 1144", "Alaska Airlines", "Departed on time");
        display.addAirport("D", "From", "Seattle Tacoma International");
        display.addAirport("A", "To", "Bellingham International");
        display.addFlightDate("D", "Date", "24 November 2026");
        display.addFlightDate("A", "Date", "24 November 2026");
        display.addSchedule("D", "Scheduled", "10:40", "PST");
        display.addSchedule("A", "Scheduled", "11:25", "PST");
        display.addActual("D", "Actual", "10:52", "PST");
        display.addActual("A", "Actual", "Estimated at half past eleven", Value());
        display.addTerminal("D", "Terminal", "C");
        display.addTerminal("A", "Terminal", "1");
        display.addGate("D", "Gate", "C12");
        display.addGate("A", "Gate", "4");
        display.addBaggage("A", "Baggage", "2");
    }
};

} // namespace

TEST_F(FlightTest, row_values_are_styled_by_their_kind) {
    auto row = place(UIFltTiny::initWithTitle("Gate"), {0, 0, 120, 60});
    const double s = gfx::Font::systemFontSize();

    row->addData(std::nullopt, "fifteen chars!!");
    ASSERT_EQ(value(*row).runs().size(), 1u);
    EXPECT_EQ(value(*row).runs()[0].font, gfx::Font::boldSystemFont(s)) << "15 characters: a time";
    row->addData(std::nullopt, "sixteen chars!!!");
    EXPECT_EQ(value(*row).runs()[0].font, gfx::Font::italicSystemFont(0.6 * s)) << "16: a text";
    row->addData(
        std::nullopt,
        "\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9\u00e9");
    EXPECT_EQ(value(*row).runs()[0].font, gfx::Font::boldSystemFont(s)) << "characters, not bytes";

    row->addData("Scheduled", "10:40", "PST");
    EXPECT_EQ(row->title()->currentTitle(), "Scheduled");
    ASSERT_EQ(value(*row).runs().size(), 3u);
    EXPECT_EQ(value(*row).string(), "10:40 PST");
    const gfx::Font remark = value(*row).runs()[2].font;
    EXPECT_EQ(remark.width(), gfx::FontWidth::Condensed);
    EXPECT_TRUE(remark.isBold());
    EXPECT_DOUBLE_EQ(remark.pointSize(), 0.5 * s);
    // The condensed face is really there: narrower than the regular face of
    // its family, so not a silent stand-in.
    const std::string sample = "Pacific Standard Time";
    EXPECT_LT(
        gfx::TextMetrics::size(sample, remark.withSize(20)).width,
        0.95 * gfx::TextMetrics::size(sample, gfx::Font(remark.family(), 20, gfx::FontWeight::Bold)).width);

    row->addData(std::nullopt, "10:40", std::string(40, 'x'));
    EXPECT_EQ(value(*row).string(), "10:40") << "a remark of 40 characters is left out";
    row->addData("Ignored", Value());
    EXPECT_TRUE(value(*row).isEmpty());
    EXPECT_EQ(row->title()->currentTitle(), "Scheduled") << "no value: the caption is not taken";

    sys::Log::Capture log;
    row->addDataBreak(std::nullopt, "Seattle Tacoma International");
    EXPECT_EQ(value(*row).string(), "Seattle\nTacoma International");
    EXPECT_EQ(value(*row).runs()[0].font, gfx::Font::italicSystemFont(0.5 * s));
    EXPECT_EQ(log.texts(),
              (std::vector<std::string>{"First part: Seattle", "Second part: Tacoma International"}));
    EXPECT_EQ(UIFltTiny::evenText("SEATAC"), "SEATAC");
    EXPECT_EQ(UIFltTiny::evenText("ab cdefghij"), "ab\ncdefghij")
        << "no blank before the middle: the first after";
    // Texts no flight service should send are still shown, never a crash.
    for (const std::string& odd : {std::string(10000, 'x'), std::string("Gate \xff\xfe 12"), std::string()}) {
        row->addData("Odd", odd);
        row->addDataBreak("Odd", odd);
        row->addData("Odd", "10:40", odd);
        EXPECT_FALSE(ui::Renderer::imageOf(*row, 1).isNull());
    }
    EXPECT_TRUE(UIFltTiny::isDate("24 November 2026"));
    EXPECT_FALSE(UIFltTiny::isDate("2026-11-24"));
}

TEST_F(FlightTest, the_card_lays_out_seven_rows_and_makes_room_for_a_baggage_belt) {
    auto card = place(std::make_shared<UIFltSchedule>(), {0, 0, 200, 300});
    EXPECT_TRUE(sameRect(card->airport()->frame(), {0, 3, 200, 66}));
    EXPECT_TRUE(sameRect(card->flightDate()->frame(), {0, 78, 200, 66}));
    EXPECT_TRUE(sameRect(card->schedule()->frame(), {0, 132, 96, 75}));
    EXPECT_TRUE(sameRect(card->actual()->frame(), {104, 132, 96, 75}));
    EXPECT_EQ(card->airport()->title()->currentTitle(), "airport");
    // The belt's row starts out shown: terminal, gate and belt share the line.
    EXPECT_TRUE(sameRect(card->terminal()->frame(), {10, 216, 60, 75}));
    EXPECT_TRUE(sameRect(card->gate()->frame(), {70, 216, 60, 75}));
    EXPECT_TRUE(sameRect(card->baggage()->frame(), {130, 216, 60, 75}));

    // No belt: terminal and gate take half each.
    card->addBaggage(std::nullopt, Value());
    host->runUntilIdle();
    EXPECT_TRUE(card->baggage()->isHidden());
    EXPECT_TRUE(sameRect(card->terminal()->frame(), {0, 216, 96, 75}));
    EXPECT_TRUE(sameRect(card->gate()->frame(), {104, 216, 96, 75}));

    card->addBaggage("Belt", "7");
    card->addGate("Gate", "B12");
    host->runUntilIdle();
    EXPECT_FALSE(card->baggage()->isHidden());
    EXPECT_EQ(card->baggage()->title()->currentTitle(), "Belt");
    EXPECT_TRUE(sameRect(card->gate()->frame(), {70, 216, 60, 75}));
    card->resetFld();
    host->runUntilIdle();
    EXPECT_EQ(card->gate()->title()->currentTitle(), "Gate");
    EXPECT_EQ(value(*card->gate()).string(), "");
    EXPECT_FALSE(card->baggage()->isHidden()) << "emptied, not hidden";

    // Updates that pile up before the main thread runs are merged row by
    // row: the last value wins, a caption given earlier stays, and emptying
    // after a belt was given leaves the belt's row shown.
    card->addBaggage(std::nullopt, Value());
    host->runUntilIdle();
    card->addGate("Departure gate", "A1");
    card->addGate(std::nullopt, "A2");
    card->addTerminal("Hall", "North");
    card->addTerminal(std::nullopt, Value());
    card->addBaggage("Belt", "9");
    card->resetFld();
    host->runUntilIdle();
    EXPECT_EQ(card->gate()->title()->currentTitle(), "Departure gate");
    EXPECT_EQ(value(*card->gate()).string(), "");
    EXPECT_EQ(card->terminal()->title()->currentTitle(), "Hall");
    EXPECT_FALSE(card->baggage()->isHidden());
    card->addGate(std::nullopt, "A2");
    host->runUntilIdle();
    EXPECT_EQ(value(*card->gate()).string(), "A2");

    // A wider card: the same fractions.
    card->setFrame({0, 0, 300, 500});
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(card->actual()->frame(), {156, 220, 144, 125}));
}

TEST_F(FlightTest, the_display_fills_the_card_a_side_names_and_closes_on_its_bar) {
    auto display = place(std::make_shared<UIFltDisplay>(), {8, 200, 374, 420});
    display->addGate("A", "Gate", "4");
    display->addGate("D", "Gate", "C12");
    display->addGate("X", "Gate", "C13");
    display->gateLeft("Gate", "5");
    display->terminalRight("Terminal", "N");
    EXPECT_EQ(value(*display->arriveUI()->gate()).string(), "") << "queued for the main thread";
    host->runUntilIdle();
    EXPECT_EQ(value(*display->arriveUI()->gate()).string(), "5");
    EXPECT_EQ(value(*display->departureUI()->gate()).string(), "C13");
    EXPECT_EQ(value(*display->departureUI()->terminal()).string(), "N");

    display->addFlightHeader("AS 1144", "Alaska Airlines", "On time");
    display->addFlightHeader("AS 1145", Value(), Value(12));
    host->runUntilIdle();
    EXPECT_EQ(display->title()->text(), "AS 1145");
    EXPECT_EQ(display->airline()->text(), "Alaska Airlines");
    EXPECT_EQ(display->status()->text(), "On time");

    const double t = UIFltDisplay::getTextHeight();
    EXPECT_TRUE(sameRect(display->cimg()->frame(), {374 - 1.4 * t, 0.1 * t, t, t}));
    EXPECT_TRUE(sameRect(display->arriveUI()->frame(), {0.505 * 374, 1.5 * t, 0.482 * 374, 420 - 2.7 * t}));
    EXPECT_TRUE(sameRect(display->closeBtn()->frame(), {0, 420 - t, 374, t}));
    EXPECT_FALSE(display->cimg()->image().isNull()) << "the kit's own aeroplane";
    display->setBackgroundColor(Colors::hex("#1D3557"));
    EXPECT_EQ(display->arriveUI()->backgroundColor(), Colors::darkerBy(Colors::hex("#1D3557"), 0.05));

    const auto press = [&] { tapOn(*display->closeBtn()); };
    press(); // no callback: nothing
    int closes = 0;
    display->watchClose([&](bool flag) { closes += flag ? 1 : 100; });
    press();
    EXPECT_EQ(closes, 1);

    display->resetFld();
    fill(*display);
    host->runUntilIdle();
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*display, 2),
                                         "tests/flight/snapshots/display.png");
}

TEST_F(FlightTest, the_search_box_formats_the_number_and_hands_it_over) {
    auto box = place(std::make_shared<UISearchFlt>(), {39, 200, 312, 8 * UIFltSearch::getTextHeight()});
    tapOn(*box->txtZB()->txt());
    host->typeText("as1144");
    EXPECT_EQ(box->txtZB()->text(), "AS 1144");
    const auto press = [&] { tapOn(*box->takePhotoBtn()); };
    press();
    EXPECT_TRUE(box->txtZB()->txt()->isFirstResponder()) << "no callback: the field keeps the keyboard";
    std::vector<std::string> searches;
    box->watchSearch([&](const std::string& text, const NodePtr& node) {
        searches.push_back(text + (node && node->empty() ? " {}" : " ?"));
    });
    press();
    EXPECT_EQ(searches, std::vector<std::string>{"AS 1144 {}"});
    EXPECT_FALSE(box->txtZB()->txt()->isFirstResponder());
}

TEST_F(FlightTest, a_search_turns_the_indicator_until_an_airport_brings_the_display_up) {
    auto screen = place(UIFltSearch::make(), {0, 0, 390, 844});
    screen->setBackgroundColor(Colors::hex("#1D3557"));
    screen->addHeaderTitle("Seattle Tacoma");
    const auto& display = *screen->fltDisplayUI();
    const double t = UIFltSearch::getTextHeight();
    EXPECT_TRUE(sameRect(screen->searchFltUI()->frame(), {39, 211, 312, 8 * t}));
    EXPECT_TRUE(sameRect(display.frame(), {7.8, 211, 374.4, 15 * t}));

    // An answer that never comes: the indicator gives up after 15 seconds.
    screen->resetFld();
    host->runUntilIdle();
    EXPECT_TRUE(screen->indicator()->isAnimating());
    EXPECT_EQ(screen->subviews().back().get(), screen->indicator().get());
    host->advance(14.9);
    EXPECT_TRUE(screen->indicator()->isAnimating());
    host->advance(0.2);
    EXPECT_FALSE(screen->indicator()->isAnimating());
    EXPECT_TRUE(display.isHidden());

    // Fields without an airport fill the hidden display; the airport, from
    // another thread, brings it up and stops the indicator.
    screen->resetFld();
    screen->addGate("D", "Gate", "C12");
    host->runUntilIdle();
    EXPECT_TRUE(display.isHidden());
    EXPECT_EQ(value(*display.departureUI()->gate()).string(), "C12");
    std::thread([&] {
        screen->addFlightHeader("AS 1144", "Alaska Airlines", "On time");
        screen->addAirport("D", "From", "Seattle Tacoma International");
    }).join();
    host->runUntilIdle();
    EXPECT_FALSE(display.isHidden());
    EXPECT_FALSE(screen->viewUI()->isHidden());
    EXPECT_FALSE(screen->indicator()->isAnimating());
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*screen, 1),
                                         "tests/flight/snapshots/search.png");

    // A tap on the dimmed screen puts it away, as CLOSE does.
    host->tap({195, 80});
    EXPECT_TRUE(display.isHidden());
    EXPECT_TRUE(screen->viewUI()->isHidden());
    screen->addAirport("A", "To", "Bellingham");
    host->runUntilIdle();
    screen->fltDisplayUI()->closeAction();
    EXPECT_TRUE(display.isHidden());

    EXPECT_EQ(UIFltSearch::getFDate(*UIFltSearch::textToDate("20240131extra")).substr(0, 11), "31 Jan 2024");
    EXPECT_TRUE(UIFltSearch::isValidDateFormat("20240131", "yyyyMMdd"));
    EXPECT_FALSE(UIFltSearch::isValidDateFormat("", "yyyyMMdd"));
}

// Random pushes and presses; the close and search callbacks run another
// operation of the screen, releasing it included.
TEST(UIFltSearchReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {81u, 82u}) {
        ReentrancyHarness<UIFltSearch> harness(seed);
        harness.make([](ReentrancyHarness<UIFltSearch>& h) {
            auto screen = UIFltSearch::make({0, 0, 390, 844});
            screen->watchSearch([&h](const std::string&, const NodePtr&) { h.callback("search"); });
            screen->fltDisplayUI()->watchClose([&h](bool) { h.callback("close"); });
            return screen;
        });
        harness.operation("reset", [](UIFltSearch& s, Random&) { s.resetFld(); });
        harness.operation("airport", [](UIFltSearch& s, Random& r) {
            s.addAirport(chance(r, 0.5) ? "A" : "D", "From", "Seattle Tacoma International");
        });
        harness.operation("fields", [](UIFltSearch& s, Random& r) {
            s.addFlightHeader("AS 1144", Value(), "On time");
            s.addSchedule("D", "Scheduled", "10:40", chance(r, 0.5) ? Value("PST") : Value());
            s.addBaggage("A", "Baggage", chance(r, 0.5) ? Value("2") : Value());
        });
        harness.operation("search", [](UIFltSearch& s, Random&) { s.searchFltUI()->menuAction(); });
        harness.operation("close", [](UIFltSearch& s, Random&) { s.fltDisplayUI()->closeAction(); });
        harness.operation("veil", [](UIFltSearch& s, Random&) { s.tapAction(); });
        harness.input("tap", [](ui::HeadlessHost& host, UIFltSearch& s, Random& r) {
            host.tap(randomPointIn(r, s.convertRectTo(s.bounds(), nullptr)));
        });
        harness.input("type", [](ui::HeadlessHost& host, UIFltSearch&, Random&) { host.typeText("as12"); });
        harness.run(ReentrancyHarness<UIFltSearch>::steps(400, 3000));
        EXPECT_GT(harness.callbacks(), 20) << seed;
    }
}

// The display and the search box on their own: their one callback each runs
// another operation, releasing them included.
TEST(UIFltDisplayReentrancy, any_operation_from_the_close_callback_is_safe) {
    for (unsigned seed : {83u, 84u}) {
        ReentrancyHarness<UIFltDisplay> harness(seed);
        harness.make([](ReentrancyHarness<UIFltDisplay>& h) {
            auto display = std::make_shared<UIFltDisplay>(gfx::Rect{8, 200, 374, 420});
            display->watchClose([&h](bool) { h.callback("close"); });
            return display;
        });
        harness.operation("header", [](UIFltDisplay& d, Random& r) {
            d.addFlightHeader("AS 1144", chance(r, 0.5) ? Value("Alaska") : Value(), "On time");
        });
        harness.operation("fields", [](UIFltDisplay& d, Random& r) {
            d.addGate(chance(r, 0.5) ? "A" : "D", "Gate", "C12");
            d.baggageLeft("Baggage", chance(r, 0.5) ? Value("2") : Value());
        });
        harness.operation("reset", [](UIFltDisplay& d, Random&) { d.resetFld(); });
        harness.operation("close", [](UIFltDisplay& d, Random&) { d.closeAction(); });
        harness.input("tap", [](ui::HeadlessHost& host, UIFltDisplay& d, Random& r) {
            host.tap(randomPointIn(r, d.convertRectTo(d.bounds(), nullptr)));
        });
        harness.run(ReentrancyHarness<UIFltDisplay>::steps(300, 3000));
        EXPECT_GT(harness.callbacks(), 20) << seed;
    }
}

TEST(UISearchFltReentrancy, any_operation_from_the_search_callback_is_safe) {
    for (unsigned seed : {85u, 86u}) {
        ReentrancyHarness<UISearchFlt> harness(seed);
        harness.make([](ReentrancyHarness<UISearchFlt>& h) {
            auto box = std::make_shared<UISearchFlt>(gfx::Rect{39, 200, 312, 180});
            box->watchSearch([&h](const std::string&, const NodePtr&) { h.callback("search"); });
            return box;
        });
        harness.operation("search", [](UISearchFlt& b, Random&) { b.menuAction(); });
        harness.operation("unwatch", [](UISearchFlt& b, Random& r) {
            if (chance(r, 0.1)) b.watchSearch({});
        });
        harness.input("tap", [](ui::HeadlessHost& host, UISearchFlt& b, Random& r) {
            host.tap(randomPointIn(r, b.convertRectTo(b.bounds(), nullptr)));
        });
        harness.input("type", [](ui::HeadlessHost& host, UISearchFlt&, Random&) { host.typeText("as1144"); });
        harness.run(ReentrancyHarness<UISearchFlt>::steps(600, 4000));
        EXPECT_GT(harness.callbacks(), 20) << seed;
    }
}
