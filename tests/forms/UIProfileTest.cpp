// The profile card on the headless host: filling it (names, values, the
// placeholder, reused labels), its layout and scrolling, translation chains
// answered from other threads, the edits it reports and in what order, the
// picture from the camera and the application's own, and the corner colour.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/forms/UIProfile.h>
#include <morvane/gfx/Font.h>
#include <morvane/gfx/ImageContext.h>
#include <morvane/sys/Camera.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/util/Dates.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

gfx::Image filled(const gfx::Color& colour, int side = 40) {
    gfx::ImageContext context({double(side), double(side)}, gfx::Opacity::Transparent, 1);
    context.canvas().fillRect({0, 0, double(side), double(side)}, colour);
    return context.takeImage();
}

class UIProfileTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        card = place(std::make_shared<UIProfile>(), {0, 0, 390, 844});
        card->setBackgroundColor(gfx::Color::brownColor());
    }
    void TearDown() override {
        card.reset();
        Dates::setTimeZone("");
        HostFixture::TearDown();
    }
    // Every report as "name: text [node's title/field]".
    void record() {
        auto say = [this](std::string what) {
            return [this, what](const std::string& text, const NodePtr& node) {
                told.push_back(what + ": " + text + " [" + node->get("title").textOr() + "/" +
                               node->get("field").textOr() + "]");
            };
        };
        card->watchName(say("name"));
        card->watchRemove(say("remove"));
        card->watchEdit(say("edit"));
        card->watchEdit2(say("edit2"));
        card->watchImage([this](const gfx::Image& picture, const NodePtr& node) {
            told.push_back("image " + std::to_string(picture.pixelWidth()) + " [" +
                           node->get("title").textOr() + "]");
        });
        card->watchClose([this](const std::string& text) { told.push_back("close: " + text); });
    }
    void touch(gfx::Point inCard) {
        host->tap(card->convertPointTo(inCard, nullptr));
        host->runUntilIdle();
    }
    // Chooses the view in edit mode and opens the data input bar on it.
    ZBDataInput& openBar(const ui::View& view) {
        host->advance(1); // the last bar slides away first
        touch(view.frame().center());
        EXPECT_EQ(card->currentView(), &view);
        tapOn(*card->editBtn());
        host->runUntilIdle();
        EXPECT_FALSE(card->dataInputZB()->isHidden());
        return *card->dataInputZB();
    }

    std::shared_ptr<UIProfile> card;
    std::vector<std::string> told;
};

} // namespace

TEST_F(UIProfileTest, filling_stores_the_name_shows_its_last_piece_and_reuses_value_labels) {
    card->addName("Hotel-Desk/Anna");
    card->addKeyCode("guests/2024-17");
    EXPECT_EQ(card->myData()->get("title").textOr(), "Hotel-Desk/Anna");
    EXPECT_EQ(card->nameLbl()->text(), "Anna");
    EXPECT_EQ(card->keyCode(), "guests/2024-17");
    EXPECT_EQ(card->myData()->get("key").textOr(), "guests/2024-17");
    EXPECT_EQ(UIProfile::processName("plain"), "plain");

    card->addVal(Value(12), "room");
    card->addVal(Value("Sea view<en>"), "note");
    card->addVal(Value(), "phone");
    card->addVal(Value(Node::make()), "web");
    ASSERT_EQ(card->myLbl().size(), 4u);
    EXPECT_EQ(card->myLbl()[0]->text(), "12");
    EXPECT_EQ(card->myLbl()[1]->text(), "Sea view");
    EXPECT_EQ(card->myLblData()[1]->get("data").textOr(), "Sea view<en>") << "kept as given";
    EXPECT_EQ(card->myLbl()[2]->text(), "123-456-7890");
    EXPECT_EQ(card->myLbl()[3]->text(), "123-456-7890");
    EXPECT_EQ(card->myLblData()[2]->get("field").textOr(), "phone");

    auto first = card->myLbl()[0];
    card->clear();
    EXPECT_TRUE(card->myLblData().empty());
    for (const auto& label : card->myLbl())
        EXPECT_EQ(label->text(), "");
    card->addVal(Value("+351 912 345 678"), "phone");
    card->addVal(Value("anna@example.com"), "email");
    EXPECT_EQ(card->myLbl().size(), 4u) << "no new label after clear";
    EXPECT_EQ(card->myLbl()[0], first);
    EXPECT_EQ(card->nameLbl()->text(), "Anna") << "the name survives clear";
}

TEST_F(UIProfileTest, layout_follows_the_card_and_a_long_card_scrolls_to_its_last_value) {
    const double w = 390, h = 844, f = gfx::Font::systemFontSize(), s = 1.2 * f,
                 t = UIProfile::getTextHeight();
    card->addName("Anna");
    card->addVal(Value("+351 912 345 678"), "phone");
    card->addVal(Value("A long note that wraps over several lines of the card, as guests' notes do."),
                 "note");
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(card->imageZB()->frame(), {0, 0, w, 0.75 * w}));
    EXPECT_TRUE(sameRect(card->backBtn()->frame(), {0.01 * w, 0.01 * w, 2.5 * f, 2.5 * f}));
    EXPECT_TRUE(sameRect(card->takePhotoBtn()->frame(), {w - 1.5 * t, 0.75 * w - 1.2 * t, t, t}));
    const double nameY = 0.75 * w + 0.5 * s;
    EXPECT_TRUE(sameRect(card->nameLbl()->frame(), {0, nameY, w, s}));
    const double lineY = nameY + s + 0.2 * s;
    EXPECT_TRUE(sameRect(card->lineLbl()->frame(), {0.2 * w, lineY, 0.6 * w, 1}));
    const auto& labels = card->myLbl();
    const double first = card->heightLbl("+351 912 345 678");
    EXPECT_TRUE(sameRect(labels[0]->frame(), {0.05 * w, lineY + 1 + 0.1 * s, 0.9 * w, first}));
    const double second = labels[1]->frame().height;
    EXPECT_GT(second, 1.5 * first) << "a long value wraps and its label grows";
    EXPECT_TRUE(
        sameRect(labels[1]->frame(), {0.1 * w, labels[0]->frame().maxY() + 0.1 * s, 0.8 * w, second}));
    EXPECT_DOUBLE_EQ(card->contentSize().height, h - 2 * s) << "shorter than the card";

    // Five hundred values: the content ends at the last one and scrolls there.
    card->clear();
    for (int i = 0; i < 500; ++i)
        card->addVal(Value("Value " + std::to_string(i)), "field" + std::to_string(i));
    host->runUntilIdle();
    const auto& last = card->myLbl()[499];
    EXPECT_DOUBLE_EQ(card->contentSize().height, last->frame().maxY());
    EXPECT_GT(card->contentSize().height, 10 * h);
    card->setContentOffset({0, card->contentSize().height - h});
    host->runUntilIdle();
    EXPECT_TRUE(card->bounds().intersects(last->frame()));
    // Fewer values again: the left-overs are empty and keep their frames.
    const gfx::Rect leftOver = card->myLbl()[10]->frame();
    card->clear();
    card->addVal(Value("only"), "one");
    host->runUntilIdle();
    EXPECT_EQ(card->myLbl()[10]->text(), "");
    EXPECT_TRUE(sameRect(card->myLbl()[10]->frame(), leftOver));
}

TEST_F(UIProfileTest, translations_run_one_after_another_and_land_on_the_main_thread) {
    std::vector<std::string> asked;
    std::vector<std::thread> workers;
    std::vector<TranslateCompletion> pending;
    card->watchTranslate([&](const std::string& text, TranslateCompletion done) {
        asked.push_back(text);
        pending.push_back(std::move(done));
    });
    card->addName("Desk/Front desk<en>");
    ASSERT_EQ(asked, std::vector<std::string>{"Front desk<en>"});
    EXPECT_EQ(card->nameLbl()->text(), "Front desk");
    workers.emplace_back([done = pending.back()] { done("Recepção"); });
    workers.back().join();
    EXPECT_EQ(card->nameLbl()->text(), "Front desk") << "not until the main queue runs";
    host->runUntilIdle();
    EXPECT_EQ(card->nameLbl()->text(), "Recepção");

    card->addVal(Value("Pool"), "a");
    card->addVal(Value("Late checkout<en>"), "b");
    card->addVal(Value("Breakfast<en>"), "c");
    asked.clear();
    pending.clear();
    card->refreshTranslate();
    ASSERT_EQ(asked, std::vector<std::string>{"Late checkout<en>"}) << "the next waits for this answer";
    std::thread([done = pending[0]] {
        done("Saída tardia");
        done("Saída tardia (again)"); // a second answer must not start a second chain
    }).join();
    host->runUntilIdle();
    EXPECT_EQ(card->myLbl()[1]->text(), "Saída tardia (again)");
    ASSERT_EQ(asked, (std::vector<std::string>{"Late checkout<en>", "Breakfast<en>"}));
    EXPECT_EQ(card->myLbl()[2]->text(), "Breakfast") << "shown without the marker meanwhile";

    // The card goes away before the answer: nothing is touched.
    std::weak_ptr<UIProfile> weak = card;
    card->removeFromSuperview();
    card.reset();
    EXPECT_TRUE(weak.expired());
    pending[1]("Pequeno-almoço");
    host->runUntilIdle();
}

TEST_F(UIProfileTest, saved_and_deleted_edits_reach_the_callbacks_in_order_with_the_cards_node) {
    Dates::setTimeZone("UTC");
    record();
    card->addName("Anna");
    card->addVal(Value("+351 912 345 678"), "phone");
    card->addVal(Value("anna@example.com"), "email");
    card->editEnable(true);
    host->runUntilIdle();
    EXPECT_FALSE(card->takePhotoBtn()->isHidden());

    ZBDataInput* bar = &openBar(*card->nameLbl());
    bar->nTextview()->inputTxt()->txt()->setText("Anna Sousa");
    sys::Clock::useManual(9 * 3600 + 3 * 60 + 7); // 09:03:07 on the first day of 1970
    bar->nTextview()->saveAction();
    bar = &openBar(*card->nameLbl());
    bar->nTextview()->deleteAction();
    bar = &openBar(*card->myLbl()[1]);
    EXPECT_EQ(bar->nTextview()->inputTxt()->txt()->text(), "anna@example.com");
    bar->nTextview()->inputTxt()->txt()->setText("anna@hotel.pt");
    bar->nTextview()->saveAction();
    bar = &openBar(*card->myLbl()[0]);
    bar->nTextview()->deleteAction();
    bar = &openBar(*card->myLbl()[0]);
    bar->nTextview()->cancelAction();
    EXPECT_EQ(told, (std::vector<std::string>{
                        "name: 0903007-Anna Sousa [Anna/]",
                        "remove:  [Anna/]",
                        "edit: anna@hotel.pt [Anna/email]",
                        "edit2: anna@hotel.pt [Anna/email]",
                        "edit:  [Anna/phone]",
                        "edit2:  [Anna/phone]",
                    }));
    EXPECT_EQ(card->myLbl()[0]->text(), "+351 912 345 678") << "a deleted value keeps its text";
    EXPECT_FALSE(card->myData()->has("field")) << "the field goes into copies only";

    // A left-over label after clear can be edited on screen but is not reported.
    card->clear();
    card->addVal(Value("one"), "phone");
    host->runUntilIdle();
    told.clear();
    card->txtChanged("ignored", *card->myLbl()[1]);
    card->txtChanged("ignored", *card->imageZB());
    EXPECT_TRUE(told.empty());

    card->editEnable(false);
    host->advance(1);
    EXPECT_TRUE(card->takePhotoBtn()->isHidden());
    tapOn(*card->backBtn());
    host->runUntilIdle();
    EXPECT_TRUE(card->isHidden());
    EXPECT_EQ(told, std::vector<std::string>{"close: "});
}

TEST_F(UIProfileTest, pictures_come_from_the_camera_the_application_or_its_take_photo_button) {
    record();
    card->addName("Anna");
    // The take-photo button hands the application a completion; the card
    // reports what comes back but leaves showing it to the application.
    UIProfile::PhotoCompletion completion;
    card->watchActivateCamera([&](const std::string& text, UIProfile::PhotoCompletion done) {
        told.push_back("camera asked: " + text);
        completion = std::move(done);
    });
    card->editEnable(true);
    host->runUntilIdle();
    tapOn(*card->takePhotoBtn());
    ASSERT_TRUE(completion);
    completion(filled(gfx::Color::redColor(), 30));
    EXPECT_TRUE(card->imageZB()->imageView().image().isNull());
    card->justTakenImage(filled(gfx::Color::blueColor(), 20));
    EXPECT_EQ(card->imageZB()->imageView().image().pixelWidth(), 20);
    EXPECT_EQ(told, (std::vector<std::string>{"camera asked: ", "image 30 [Anna]", "image 20 [Anna]"}));

    // The canvas's own camera on the picture, with the virtual camera.
    told.clear();
    sys::Camera::setDefaultSource(sys::Camera::Source::testPattern(320, 240));
    touch({195, 100});
    ASSERT_EQ(card->currentView(), card->imageZB().get());
    tapOn(*card->editBtn());
    host->runUntilIdle();
    ASSERT_FALSE(card->camera()->isHidden());
    card->camera()->btnAction(); // opens
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (card->camera()->previewFramesShown() < 2 && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        host->runUntilIdle();
    }
    card->camera()->btnAction(); // takes the photo
    while (told.empty() && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        host->runUntilIdle();
    }
    sys::Camera::setDefaultSource(std::nullopt);
    ASSERT_EQ(told.size(), 1u);
    EXPECT_EQ(told[0].substr(0, 6), "image ");
    EXPECT_FALSE(card->imageZB()->imageView().image().isNull());
    EXPECT_TRUE(card->camera()->isHidden());
}

TEST_F(UIProfileTest, corner_colour_reads_the_top_left_pixel) {
    EXPECT_TRUE(UIProfile::isClear(filled(gfx::Color::clearColor())));
    EXPECT_TRUE(UIProfile::isWhite(filled(gfx::Color::whiteColor())));
    EXPECT_FALSE(UIProfile::isWhite(filled(gfx::Color::redColor())));
    EXPECT_FALSE(UIProfile::isClear(gfx::Image()));
    EXPECT_FALSE(UIProfile::isWhite(gfx::Image()));
    // The bitmap holds premultiplied words little-endian: blue's byte first.
    auto bitmap = UIProfile::createARGBBitmapContextFromImage2(filled(gfx::Color(0, 0, 1, 1), 3));
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->bytes.size(), 36u);
    EXPECT_EQ(bitmap->bytes[4 * 4], 255);
    EXPECT_EQ(bitmap->bytes[4 * 4 + 2], 0);
    const gfx::Color read = UIProfile::getColorAtPoint({1, 1}, bitmap->bytes, bitmap->width);
    EXPECT_EQ(read, gfx::Color(1, 0, 0, 1)) << "bytes in memory order";
    EXPECT_EQ(UIProfile::getColorOfCornersForImage(filled(gfx::Color(0, 0, 1, 1), 3)), read);
}

TEST_F(UIProfileTest, card_snapshots_in_view_and_in_edit_mode) {
    card->setFrame({0, 0, 390, 600});
    card->addImage(filled(gfx::Color(0.2, 0.4, 0.6, 1), 80));
    card->addName("Hotel-Desk/Anna Sousa");
    card->addVal(Value("+351 912 345 678"), "phone");
    card->addVal(Value("anna@example.com"), "email");
    card->addVal(Value("Window seat, quiet table."), "note");
    host->runUntilIdle();
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*card, 1),
                                         "tests/forms/snapshots/profile.png");
    card->editEnable(true);
    touch(card->myLbl()[1]->frame().center());
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*card, 1),
                                         "tests/forms/snapshots/profile-edit.png");
}

TEST_F(UIProfileTest, odd_fills_absent_callbacks_no_camera_and_a_release_mid_edit_stay_quiet) {
    // A huge value wraps to at most ten lines but its label is measured whole.
    const std::string huge(10'000, 'x');
    card->addName("");
    card->addVal(Value(true), "flag");
    card->addVal(Value(huge), "note");
    host->runUntilIdle();
    EXPECT_EQ(card->myLbl()[1]->text().size(), huge.size());
    EXPECT_EQ(card->myLbl()[0]->text(), "1");
    EXPECT_GT(card->contentSize().height, 844);
    EXPECT_EQ(card->nameLbl()->text(), "");

    // No callbacks at all: edits, photos and the back button do nothing else.
    card->editEnable(true);
    host->runUntilIdle();
    ZBDataInput& bar = openBar(*card->myLbl()[0]);
    bar.nTextview()->saveAction();
    card->takePhotoAction();
    card->justTakenImage(filled(gfx::Color::redColor()));
    card->refreshTranslate();

    // No camera to open: the preview stays dark and "x" brings the focus back.
    host->advance(1);
    sys::Camera::setDefaultSource(sys::Camera::Source::device("/dev/morvane-no-such-video"));
    sys::Log::Capture log;
    touch({195, 100});
    tapOn(*card->editBtn());
    host->runUntilIdle();
    ASSERT_FALSE(card->camera()->isHidden());
    card->camera()->btnAction();
    host->runUntilIdle();
    EXPECT_EQ(card->camera()->previewFramesShown(), 0u);
    EXPECT_FALSE(log.texts().empty()) << "the dark camera says why";
    card->camera()->quitAction();
    host->runUntilIdle();
    EXPECT_TRUE(card->camera()->isHidden());
    sys::Camera::setDefaultSource(std::nullopt);

    // Released while its bar is open: the bar's answer reaches nothing.
    record();
    ZBDataInput& open = openBar(*card->myLbl()[0]);
    auto keepBar = card->dataInputZB();
    std::weak_ptr<UIProfile> weak = card;
    card->removeFromSuperview();
    card.reset();
    EXPECT_TRUE(weak.expired());
    open.nTextview()->saveAction();
    host->advance(2);
    EXPECT_TRUE(told.empty());
}

// Random fills, edits, translations and touches; every callback runs another
// operation of the card, releasing it included.
TEST(UIProfileReentrancy, any_operation_from_any_callback_is_safe) {
    for (unsigned seed : {131u, 132u}) {
        ReentrancyHarness<UIProfile> harness(seed);
        harness.make([](ReentrancyHarness<UIProfile>& h) {
            auto card = std::make_shared<UIProfile>(gfx::Rect{0, 0, 390, 700});
            auto text = [&h](const char* name) {
                return [&h, name](const std::string&, const NodePtr&) { h.callback(name); };
            };
            card->watchName(text("name"));
            card->watchRemove(text("remove"));
            card->watchEdit(text("edit"));
            card->watchEdit2(text("edit2"));
            card->watchImage([&h](const gfx::Image&, const NodePtr&) { h.callback("image"); });
            card->watchClose([&h](const std::string&) { h.callback("close"); });
            card->watchActivateCamera([&h](const std::string&, UIProfile::PhotoCompletion done) {
                h.callback("camera");
                done(gfx::Image());
            });
            card->watchTranslate([&h](const std::string& text, TranslateCompletion done) {
                h.callback("translate");
                sys::Queue::main().async([done, text] { done("T:" + text); });
            });
            card->addName("Desk/Anna<en>");
            for (int i = 0; i < 4; ++i)
                card->addVal(Value(i % 2 ? "Note<en>" : "Value"), "f" + std::to_string(i));
            card->editEnable(true);
            return card;
        });
        harness.operation("edit", [](UIProfile& c, Random& r) { c.editEnable(chance(r, 0.8)); });
        harness.operation("button", [](UIProfile& c, Random&) { c.showOrder(); });
        harness.operation("save", [](UIProfile& c, Random&) { c.dataInputZB()->nTextview()->saveAction(); });
        harness.operation("delete",
                          [](UIProfile& c, Random&) { c.dataInputZB()->nTextview()->deleteAction(); });
        harness.operation("translate", [](UIProfile& c, Random&) { c.refreshTranslate(); });
        harness.operation("fill", [](UIProfile& c, Random& r) {
            if (chance(r, 0.3)) c.clear();
            c.addVal(Value(chance(r, 0.5) ? "Late<en>" : "Plain"), "g");
        });
        harness.operation("photo", [](UIProfile& c, Random&) { c.takePhotoAction(); });
        harness.operation("taken", [](UIProfile& c, Random&) { c.justTakenImage(gfx::Image()); });
        harness.operation("back", [](UIProfile& c, Random&) { c.backAction(); });
        harness.input("touch", [](ui::HeadlessHost& host, UIProfile& c, Random& r) {
            host.tap(randomPointIn(r, c.convertRectTo(c.bounds(), nullptr)));
        });
        harness.run(ReentrancyHarness<UIProfile>::steps(400, 3000));
        EXPECT_GT(harness.callbacks(), 30) << seed;
    }
}
