// The two further edit layers and the help panel on the headless host: a
// label edited in place through the panel (following every keystroke,
// reported once), text views typed in place, text fields and ZBImage views
// that no button opens, the plain layer's bar, and the panel's own checks.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"

#include <morvane/forms/EditLayer.h>
#include <morvane/forms/EditSLayer.h>
#include <morvane/gfx/Font.h>
#include <morvane/media/ZBImage.h>
#include <morvane/model/List.h>
#include <morvane/sys/Log.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

// Layers whose hook says what it was told.
template <class Layer> class Recording : public Layer {
  public:
    using Layer::Layer;
    std::vector<std::string> told;
    void txtChanged(const std::string& text, ui::View& view) override {
        told.push_back(text + " @" + view.accessibilityHint().value_or("?"));
    }
};

template <class V> std::shared_ptr<V> child(ui::View& layer, const gfx::Rect& frame, const char* hint) {
    auto view = std::make_shared<V>(frame);
    view->setAccessibilityHint(std::string(hint));
    layer.addSubview(view);
    return view;
}

class EditLayersTest : public HostFixture {
  protected:
    void touch(ui::View& layer, gfx::Point point) {
        host->tap(layer.convertPointTo(point, nullptr));
        host->runUntilIdle();
    }
};

} // namespace

TEST_F(EditLayersTest, a_label_is_edited_in_the_panel_which_it_follows_keystroke_by_keystroke) {
    auto layer = place(std::make_shared<Recording<EditSLayer>>(), {0, 0, 390, 600});
    auto label = child<ui::Label>(*layer, {20, 300, 300, 40}, "desk");
    label->setText("Reception");
    EXPECT_FALSE(layer->isScrollEnabled());
    EXPECT_DOUBLE_EQ(layer->contentSize().height, 900);

    touch(*layer, {100, 320});
    EXPECT_EQ(layer->currentView(), nullptr) << "not in edit mode";
    layer->edit(true);
    EXPECT_TRUE(layer->isScrollEnabled());
    touch(*layer, {100, 320});
    ASSERT_EQ(layer->currentView(), label.get());
    tapOn(*layer->editBtn());
    host->advance(1);
    const auto& help = *layer->editHelp();
    ASSERT_FALSE(help.isHidden());
    EXPECT_TRUE(sameRect(help.frame(), label->frame()));
    EXPECT_EQ(help.txt()->text(), "Reception");
    EXPECT_EQ(layer->contentOffset(), gfx::Point(0, 295));

    sys::Log::Capture log;
    help.txt()->becomeFirstResponder();
    host->typeText(" 2");
    EXPECT_EQ(label->text(), "Reception 2") << "the label follows the typing";
    EXPECT_TRUE(log.contains("textViewDidChange  Reception 2"));
    host->typeText("\n");
    EXPECT_TRUE(log.contains("Enter \n"));
    EXPECT_EQ(label->text(), "Reception 2\n");
    EXPECT_TRUE(layer->told.empty()) << "nothing is reported while typing";

    tapOn(*help.editBtn());
    host->advance(1);
    EXPECT_EQ(layer->told, std::vector<std::string>{"Reception 2\n @desk"});
    EXPECT_TRUE(help.isHidden());
    EXPECT_EQ(layer->contentOffset(), gfx::Point(0, 0)) << "scrolled back on clearing";

    layer->addID("desk", Value("front"));
    layer->addID("desk", Value("back"));
    EXPECT_EQ(layer->myIden()->get("desk").textOr(), "back");
    layer->edit(false);
    EXPECT_FALSE(layer->isScrollEnabled());
}

TEST_F(EditLayersTest, text_views_are_typed_in_place_while_fields_and_zbimages_open_nothing) {
    auto layer = place(std::make_shared<Recording<EditSLayer>>(), {0, 0, 390, 600});
    auto note = child<ui::TextView>(*layer, {20, 40, 300, 80}, "note");
    note->setText("Quiet room");
    auto field = child<ui::TextField>(*layer, {20, 140, 300, 40}, "field");
    auto zbImage = child<ZBImage>(*layer, {20, 200, 100, 100}, "zb");
    // Both take touches themselves when they may; shown for reading, they
    // leave them to the layer.
    field->setUserInteractionEnabled(false);
    zbImage->setUserInteractionEnabled(false);
    auto photo = child<ui::ImageView>(*layer, {200, 200, 100, 100}, "photo");
    layer->edit(true);

    touch(*layer, {100, 80});
    ASSERT_EQ(layer->currentView(), note.get());
    layer->editAction();
    EXPECT_EQ(note->layer().borderWidth(), 2);
    EXPECT_TRUE(note->isEditable());
    EXPECT_TRUE(layer->editBtn()->isHidden());
    host->typeText(", sea view");
    EXPECT_EQ(note->text(), "Quiet room, sea view");
    touch(*layer, {300, 550}); // the next touch ends it
    EXPECT_FALSE(note->isEditable());

    touch(*layer, {100, 160});
    ASSERT_EQ(layer->currentView(), field.get());
    layer->editAction();
    EXPECT_EQ(field->layer().borderWidth(), 0);
    EXPECT_TRUE(layer->editBtn()->isHidden());
    EXPECT_TRUE(layer->editHelp()->isHidden());

    touch(*layer, {60, 250});
    ASSERT_EQ(layer->currentView(), zbImage.get());
    layer->editAction();
    EXPECT_TRUE(layer->camera()->isHidden()) << "a ZBImage is no picture here";
    touch(*layer, {250, 250});
    ASSERT_EQ(layer->currentView(), photo.get());
    layer->editAction();
    EXPECT_FALSE(layer->camera()->isHidden());
    EXPECT_TRUE(sameRect(layer->camera()->frame(), {39, 120, 312, 360}));
    EXPECT_TRUE(layer->told.empty());
}

TEST_F(EditLayersTest, the_plain_layer_edits_through_its_bar_and_ignores_touches_while_it_is_up) {
    auto layer = place(std::make_shared<Recording<EditLayer>>(), {0, 0, 390, 600});
    auto label = child<ui::Label>(*layer, {20, 40, 300, 40}, "name");
    label->setText("Anna");
    auto other = child<ui::Label>(*layer, {20, 100, 300, 40}, "other");
    auto zbImage = child<ZBImage>(*layer, {20, 200, 100, 100}, "zb");
    zbImage->setUserInteractionEnabled(false);
    layer->startEditor();

    touch(*layer, {100, 60});
    tapOn(*layer->editBtn());
    host->advance(1);
    const auto& bar = *layer->nTextview();
    ASSERT_FALSE(bar.isHidden());
    EXPECT_TRUE(sameRect(bar.frame(), {0, 0, 390, 600}));
    EXPECT_EQ(bar.nTextview()->usr()->txt()->text(), "Anna");
    touch(*layer, {100, 120});
    EXPECT_EQ(layer->currentView(), label.get()) << "ignored while the bar is up";
    bar.nTextview()->usr()->txt()->setText("Anna Sousa");
    bar.nTextview()->saveAction();
    EXPECT_EQ(label->text(), "Anna Sousa");
    host->advance(1);
    touch(*layer, {100, 60});
    tapOn(*layer->editBtn());
    host->advance(1);
    bar.nTextview()->cancelAction();
    host->advance(1);
    touch(*layer, {100, 60});
    tapOn(*layer->editBtn());
    host->advance(1);
    bar.nTextview()->deleteAction();
    EXPECT_EQ(layer->told, (std::vector<std::string>{"Anna Sousa @name", " @name"}));

    host->advance(1);
    touch(*layer, {60, 250});
    ASSERT_EQ(layer->currentView(), zbImage.get());
    layer->showOrder();
    EXPECT_TRUE(layer->camera()->isHidden());
}

TEST_F(EditLayersTest, the_help_panel_checks_every_change_and_reports_the_text_when_done) {
    auto help = place(EditHelp::initWithName("Desk", "ignored", false), {0, 0, 300, 120});
    const double s = 1.2 * gfx::Font::systemFontSize(), e = 1.2 * s;
    EXPECT_TRUE(sameRect(help->txt()->frame(), {0, 0, 300, 120}));
    EXPECT_TRUE(sameRect(help->editBtn()->frame(), {300 - 1.2 * e, 120 - 1.2 * e, e, e}));
    ASSERT_TRUE(help->photo());
    EXPECT_TRUE(sameRect(help->photo()->frame(), {0.1 * s, 0.2 * s, s, s}));
    EXPECT_EQ(help->photo()->contentMode(), gfx::ContentMode::AspectFill);

    Value answer;
    std::vector<std::string> checked, completed;
    help->watchAction(
        1,
        [&](const std::string& caption, const std::string& text) {
            checked.push_back(caption + ":" + text);
            return answer;
        },
        [&](const std::string& caption, const std::string& text) {
            completed.push_back(caption + ":" + text);
        });
    help->txt()->becomeFirstResponder();
    sys::Log::Capture log;
    answer = Value(List::make({Value("Too short"), Value::object(gfx::Color::yellowColor())}));
    host->typeText("A");
    EXPECT_EQ(help->error()->backgroundColor(), gfx::Color::yellowColor());
    EXPECT_FALSE(help->toaster()->isHidden()) << "the message comes as a toast";
    EXPECT_TRUE(log.contains("error : Too short"));
    EXPECT_FALSE(help->title()->isHidden());
    answer = Value();
    help->addError("Shown", gfx::Color::redColor());
    EXPECT_FALSE(help->error()->isHidden());
    host->typeText("b");
    EXPECT_TRUE(help->error()->isHidden()) << "an accepted text hides the line";
    EXPECT_EQ(checked, (std::vector<std::string>{"Desk:A", "Desk:Ab"}));
    help->editAction();
    EXPECT_EQ(completed, std::vector<std::string>{"Desk:Ab"});
}

// Random touches, edit switches, panel and bar results and typing; every
// hook runs another operation of its layer, releasing it included.
TEST(EditLayersReentrancy, any_operation_from_any_hook_is_safe) {
    class SHooked : public EditSLayer {
      public:
        SHooked(ReentrancyHarness<SHooked>& h) : EditSLayer({0, 0, 390, 600}), h_(h) {}
        void txtChanged(const std::string&, ui::View&) override { h_.callback("text"); }
        void imageChanged(const gfx::Image&, ui::View&) override { h_.callback("image"); }
        ReentrancyHarness<SHooked>& h_;
    };
    class Hooked : public EditLayer {
      public:
        Hooked(ReentrancyHarness<Hooked>& h) : EditLayer({0, 0, 390, 600}), h_(h) {}
        void txtChanged(const std::string&, ui::View&) override { h_.callback("text"); }
        void imageChanged(const gfx::Image&, ui::View&) override { h_.callback("image"); }
        ReentrancyHarness<Hooked>& h_;
    };
    // Touches land on a child more often than not, so edits get going.
    auto touchSomething = [](ui::HeadlessHost& host, ui::View& l, Random& r) {
        const auto& children = l.subviews();
        const ui::View& target = chance(r, 0.7) && !children.empty()
                                     ? *children[std::size_t(randomInt(r, 0, int(children.size()) - 1))]
                                     : l;
        host.tap(randomPointIn(r, target.convertRectTo(target.bounds(), nullptr)));
    };
    auto fill = [](ui::View& layer) {
        for (int i = 0; i < 3; ++i) {
            auto label = std::make_shared<ui::Label>(gfx::Rect{20, 40 + 60.0 * i, 300, 40});
            label->setText("Line " + std::to_string(i));
            layer.addSubview(label);
        }
        layer.addSubview(std::make_shared<ui::TextView>(gfx::Rect{20, 240, 300, 60}));
        layer.addSubview(std::make_shared<ui::ImageView>(gfx::Rect{20, 320, 100, 100}));
    };
    for (unsigned seed : {141u, 142u}) {
        ReentrancyHarness<SHooked> layers(seed);
        layers.make([&](ReentrancyHarness<SHooked>& h) {
            auto layer = std::make_shared<SHooked>(h);
            fill(*layer);
            layer->watchCamera2([&h](const std::optional<std::string>&) { h.callback("camera"); });
            layer->edit(true);
            return layer;
        });
        layers.operation("edit", [](SHooked& l, Random& r) { l.edit(chance(r, 0.8)); });
        layers.operation("button", [](SHooked& l, Random&) { l.editAction(); });
        layers.operation("done", [](SHooked& l, Random&) { l.editHelp()->editAction(); });
        layers.operation("clear", [](SHooked& l, Random&) { l.clearFocus(); });
        layers.input("touch", touchSomething);
        layers.input("type", [](ui::HeadlessHost& host, SHooked&, Random&) { host.typeText("x"); });
        layers.run(ReentrancyHarness<SHooked>::steps(800, 3000));
        EXPECT_GT(layers.callbacks(), 10) << seed;

        ReentrancyHarness<Hooked> plain(seed);
        plain.make([&](ReentrancyHarness<Hooked>& h) {
            auto layer = std::make_shared<Hooked>(h);
            fill(*layer);
            layer->watchCamera2([&h](const std::optional<std::string>&) { h.callback("camera"); });
            layer->edit(true);
            return layer;
        });
        plain.operation("edit", [](Hooked& l, Random& r) { l.edit(chance(r, 0.8)); });
        plain.operation("button", [](Hooked& l, Random&) { l.showOrder(); });
        plain.operation("save", [](Hooked& l, Random&) { l.nTextview()->nTextview()->saveAction(); });
        plain.operation("delete", [](Hooked& l, Random&) { l.nTextview()->nTextview()->deleteAction(); });
        plain.input("touch", touchSomething);
        plain.run(ReentrancyHarness<Hooked>::steps(800, 3000));
        EXPECT_GT(plain.callbacks(), 10) << seed;
    }
}
