// The editable canvas on the headless host: choosing a child by touch in
// edit mode (and never outside it), the focus border and the "↑" button, the
// data input bar's results reaching the hooks, the picture child's camera,
// and what its hooks may do.
#include "HostFixture.h"
#include "Rects.h"
#include "Reentrancy.h"

#include <morvane/forms/UMEdit.h>
#include <morvane/gfx/Font.h>
#include <morvane/sys/App.h>
#include <morvane/ui/controls/ImageView.h>
#include <morvane/ui/controls/Label.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/ui/text/TextView.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace morvane;
using namespace morvane::test;

namespace {

// A canvas whose hooks say what they were told.
class Recording : public UMEdit {
  public:
    using UMEdit::UMEdit;
    std::vector<std::string> told;
    void txtChanged(const std::string& text, ui::View& view) override {
        told.push_back("text [" + text + "] " + view.accessibilityHint().value_or("?"));
    }
    void imageChanged(const gfx::Image& image, ui::View& view) override {
        told.push_back(std::string("image ") + (image.isNull() ? "none" : "some") + " " +
                       view.accessibilityHint().value_or("?"));
    }
};

class UMEditTest : public HostFixture {
  protected:
    void SetUp() override {
        HostFixture::SetUp();
        canvas = std::make_shared<Recording>(gfx::Rect{0, 0, 390, 700});
        name = std::make_shared<ui::Label>(gfx::Rect{20, 40, 300, 40});
        name->setText("Inês Araújo");
        name->setAccessibilityHint("name");
        note = std::make_shared<ui::TextView>(gfx::Rect{20, 100, 300, 80});
        note->setText("Window seat");
        note->setAccessibilityHint("note");
        photo = std::make_shared<ui::ImageView>(gfx::Rect{20, 200, 120, 120});
        photo->setAccessibilityHint("photo");
        for (const auto& child : std::initializer_list<std::shared_ptr<ui::View>>{name, note, photo})
            canvas->addSubview(child);
        host->root()->addSubview(canvas);
        host->runUntilIdle();
    }
    void TearDown() override {
        canvas.reset();
        HostFixture::TearDown();
    }
    void touch(gfx::Point point) {
        host->tap(canvas->convertPointTo(point, nullptr));
        host->runUntilIdle();
    }

    std::shared_ptr<Recording> canvas;
    std::shared_ptr<ui::Label> name;
    std::shared_ptr<ui::TextView> note;
    std::shared_ptr<ui::ImageView> photo;
};

} // namespace

TEST_F(UMEditTest, a_touch_chooses_a_child_only_in_edit_mode_and_marks_it) {
    touch({100, 60});
    EXPECT_EQ(canvas->currentView(), nullptr);
    EXPECT_EQ(canvas->editBtn()->frame().size(), gfx::Size(0, 0)) << "no place until a first focus";
    EXPECT_EQ(name->layer().borderWidth(), 0);

    canvas->editEnable(true);
    EXPECT_FALSE(note->isEditable()) << "text views are made read-only in edit mode";
    EXPECT_FALSE(note->isUserInteractionEnabled());
    touch({100, 60});
    ASSERT_EQ(canvas->currentView(), name.get());
    EXPECT_EQ(name->layer().borderColor(), gfx::Color::fromBytes(213, 213, 226));
    EXPECT_EQ(name->layer().borderWidth(), 1);
    const double s = 1.5 * gfx::Font::systemFontSize();
    EXPECT_TRUE(sameRect(canvas->editBtn()->frame(), {320 - 1.2 * s, 40 + 0.2 * s, s, s}));
    EXPECT_FALSE(canvas->editBtn()->isHidden());
    EXPECT_EQ(canvas->subviews().back(), canvas->editBtn());

    // The note, then nothing at all: the border goes, the button hides.
    touch({100, 150});
    EXPECT_EQ(canvas->currentView(), note.get());
    EXPECT_EQ(name->layer().borderColor(), gfx::Color::clearColor());
    touch({380, 600});
    EXPECT_EQ(canvas->currentView(), canvas.get());
    EXPECT_TRUE(canvas->editBtn()->isHidden());
    canvas->showOrder(); // nothing to edit
    EXPECT_TRUE(canvas->dataInputZB()->isHidden());

    // Leaving edit mode: touches choose nothing, and the text view stays read-only.
    canvas->editEnable(false);
    touch({100, 60});
    EXPECT_EQ(canvas->currentView(), canvas.get());
    EXPECT_FALSE(note->isEditable());
}

TEST_F(UMEditTest, overlapping_children_go_to_the_lower_then_the_further_right_and_edges_choose_none) {
    auto a = std::make_shared<ui::View>(gfx::Rect{10, 400, 200, 100});
    auto b = std::make_shared<ui::View>(gfx::Rect{50, 380, 200, 100}); // higher, further right
    auto c = std::make_shared<ui::View>(gfx::Rect{0, 390, 100, 100});  // lower than b, further left
    for (const auto& v : {a, b, c})
        canvas->addSubview(v);
    EXPECT_EQ(&canvas->searchView({60, 420}), c.get()) << "a, then b (further right), then c (lower than b)";
    EXPECT_EQ(&canvas->searchView({150, 420}), b.get());
    EXPECT_EQ(&canvas->searchView({10, 450}), c.get()) << "on a's left edge: a is no candidate";
    EXPECT_EQ(&canvas->searchView({300, 650}), canvas.get());
    EXPECT_TRUE(UMEdit::inside({0, 10, 5, 10}, {500, 15}));
    EXPECT_FALSE(UMEdit::inside({0, 10, 5, 10}, {0, 20}));
}

TEST_F(UMEditTest, the_bar_saves_into_the_child_and_reports_and_delete_reports_an_empty_text) {
    canvas->editEnable(true);
    touch({100, 60});
    tapOn(*canvas->editBtn());
    host->runUntilIdle();
    const auto& bar = *canvas->dataInputZB();
    ASSERT_FALSE(bar.isHidden());
    EXPECT_EQ(name->layer().borderWidth(), 0);
    EXPECT_TRUE(canvas->editBtn()->isHidden());
    EXPECT_EQ(bar.nTextview()->inputTxt()->txt()->text(), "Inês Araújo");
    touch({100, 150}); // ignored while the bar is up
    EXPECT_EQ(canvas->currentView(), name.get());

    bar.nTextview()->inputTxt()->txt()->setText("Inês Sousa");
    bar.nTextview()->saveAction();
    EXPECT_EQ(name->text(), "Inês Sousa");
    EXPECT_EQ(canvas->told, std::vector<std::string>{"text [Inês Sousa] name"});

    bar.nTextview()->deleteAction();
    EXPECT_EQ(canvas->told.back(), "text [] name");
    EXPECT_EQ(name->text(), "Inês Sousa") << "delete reports, the child keeps its text";
    UMEdit::setVal(*photo, "ignored");
    EXPECT_FALSE(canvas->getVal(*photo).has_value() && canvas->currentView() == photo.get());
}

TEST_F(UMEditTest, a_picture_child_opens_the_camera_or_the_applications_own) {
    canvas->editEnable(true);
    touch({80, 260});
    ASSERT_EQ(canvas->currentView(), photo.get());
    canvas->showOrder();
    EXPECT_FALSE(canvas->camera()->isHidden());
    EXPECT_TRUE(sameRect(canvas->camera()->frame(), {39, 140, 312, 420}));
    canvas->camera()->quitAction();
    host->runUntilIdle();
    EXPECT_TRUE(canvas->camera()->isHidden());
    EXPECT_EQ(photo->layer().borderWidth(), 1) << "focused again";

    std::vector<std::string> hints;
    canvas->watchCamera2(
        [&](const std::optional<std::string>& hint) { hints.push_back(hint.value_or("none")); });
    canvas->showOrder();
    EXPECT_EQ(hints, std::vector<std::string>{"photo"});
    EXPECT_TRUE(canvas->camera()->isHidden());

    // A new size: the bar follows, the camera stays where it was first put.
    canvas->setFrame({0, 0, 300, 500});
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(canvas->dataInputZB()->frame(), {0, 0, 300, 500}));
    EXPECT_TRUE(sameRect(canvas->camera()->frame(), {39, 140, 312, 420}));
}

// Random touches, edit-mode switches and bar results; every hook runs another
// operation of the canvas, releasing it included.
TEST(UMEditReentrancy, any_operation_from_any_hook_is_safe) {
    class Hooked : public UMEdit {
      public:
        Hooked(const gfx::Rect& frame, ReentrancyHarness<Hooked>& harness)
            : UMEdit(frame), harness_(harness) {}
        void txtChanged(const std::string&, ui::View&) override { harness_.callback("text"); }
        void imageChanged(const gfx::Image&, ui::View&) override { harness_.callback("image"); }

      private:
        ReentrancyHarness<Hooked>& harness_;
    };
    for (unsigned seed : {91u, 92u}) {
        ReentrancyHarness<Hooked> harness(seed);
        harness.make([](ReentrancyHarness<Hooked>& h) {
            auto canvas = std::make_shared<Hooked>(gfx::Rect{0, 0, 390, 700}, h);
            for (int i = 0; i < 4; ++i) {
                auto label = std::make_shared<ui::Label>(gfx::Rect{20, 40 + 60.0 * i, 300, 40});
                label->setText("Line " + std::to_string(i));
                canvas->addSubview(label);
            }
            canvas->addSubview(std::make_shared<ui::ImageView>(gfx::Rect{20, 300, 100, 100}));
            canvas->watchCamera2([&h](const std::optional<std::string>&) { h.callback("camera"); });
            canvas->editEnable(true);
            return canvas;
        });
        harness.operation("edit", [](Hooked& c, Random& r) { c.editEnable(chance(r, 0.8)); });
        harness.operation("button", [](Hooked& c, Random&) { c.showOrder(); });
        harness.operation("save", [](Hooked& c, Random&) { c.dataInputZB()->nTextview()->saveAction(); });
        harness.operation("delete", [](Hooked& c, Random&) { c.dataInputZB()->nTextview()->deleteAction(); });
        harness.operation("cancel", [](Hooked& c, Random&) { c.dataInputZB()->nTextview()->cancelAction(); });
        harness.operation("clear", [](Hooked& c, Random&) { c.clearFocus(); });
        harness.input("touch", [](ui::HeadlessHost& host, Hooked& c, Random& r) {
            host.tap(randomPointIn(r, c.convertRectTo(c.bounds(), nullptr)));
        });
        harness.run(ReentrancyHarness<Hooked>::steps(400, 3000));
        EXPECT_GT(harness.callbacks(), 30) << seed;
    }
}
