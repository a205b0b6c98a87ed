#include <morvane/sys/Log.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>
#include <morvane/ui/text/TextField.h>
#include <morvane/ui/text/TextView.h>
#include <morvane/ui/text/detail/TextBuffer.h>

#include <Snapshot.h>
#include <gtest/gtest.h>

namespace morvane::ui {
namespace {

std::string describe(TextRange r, std::string_view s) {
    return std::to_string(r.location) + "+" + std::to_string(r.length) + "'" + std::string(s) + "'";
}

struct FieldJournal : TextFieldDelegate {
    std::vector<std::string> calls;
    bool allowBegin = true;
    bool allowEnd = true;
    std::string refuse; // replacements containing this are refused
    bool textFieldShouldBeginEditing(TextField&) override {
        calls.push_back("shouldBegin");
        return allowBegin;
    }
    void textFieldDidBeginEditing(TextField&) override { calls.push_back("didBegin"); }
    bool textFieldShouldEndEditing(TextField&) override {
        calls.push_back("shouldEnd");
        return allowEnd;
    }
    void textFieldDidEndEditing(TextField&) override { calls.push_back("didEnd"); }
    bool textFieldShouldReturn(TextField& field) override {
        calls.push_back("shouldReturn");
        field.resignFirstResponder();
        return true;
    }
    bool shouldChangeCharacters(TextField&, TextRange range, std::string_view replacement) override {
        calls.push_back("change " + describe(range, replacement));
        return refuse.empty() || replacement.find(refuse) == std::string_view::npos;
    }
};

struct FieldFixture : ::testing::Test {
    HeadlessHost host;
    FieldJournal journal;
    std::shared_ptr<TextField> field = std::make_shared<TextField>(gfx::Rect{20, 100, 300, 40});
    int changedEvents = 0;
    void SetUp() override {
        field->setDelegate(&journal);
        field->setBorderStyle(TextField::BorderStyle::RoundedRect);
        field->addAction(ControlEvent::EditingChanged, [this](Control&) {
            journal.calls.push_back("editingChanged");
            ++changedEvents;
        });
        host.root()->addSubview(field);
        host.runUntilIdle();
    }
};

TEST_F(FieldFixture, delegate_answers_come_in_order_for_begin_typing_return_and_end) {
    host.tap({100, 120});
    ASSERT_TRUE(field->isFirstResponder());
    host.typeText("Hé");
    host.pressKey(Key::Return);
    EXPECT_EQ(journal.calls, (std::vector<std::string>{"shouldBegin", "didBegin", "change 0+0'H'",
                                                       "editingChanged", "change 1+0'é'", "editingChanged",
                                                       "shouldReturn", "shouldEnd", "didEnd"}));
    EXPECT_EQ(field->text(), "Hé");
    EXPECT_FALSE(field->isEditing());

    // Refusals: no focus without shouldBegin, no end without shouldEnd.
    journal.calls.clear();
    journal.allowBegin = false;
    host.tap({100, 120});
    EXPECT_FALSE(field->isFirstResponder());
    journal.allowBegin = true;
    journal.allowEnd = false;
    ASSERT_TRUE(field->becomeFirstResponder());
    EXPECT_FALSE(field->resignFirstResponder());
    EXPECT_TRUE(field->isFirstResponder());
    journal.allowEnd = true;
    // Leaving the window ends editing without asking.
    journal.calls.clear();
    field->removeFromSuperview();
    EXPECT_EQ(journal.calls, (std::vector<std::string>{"didEnd"}));
}

TEST_F(FieldFixture, refused_changes_leave_the_text_and_paste_is_one_replacement) {
    field->setText("Room");
    ASSERT_TRUE(field->becomeFirstResponder());
    journal.calls.clear();
    journal.refuse = "7";
    host.typeText(" 47");
    EXPECT_EQ(field->text(), "Room 4");
    EXPECT_EQ(changedEvents, 2);
    host.paste("17");
    EXPECT_EQ(field->text(), "Room 4");
    journal.refuse.clear();
    journal.calls.clear();
    host.paste("12 b");
    EXPECT_EQ(journal.calls, (std::vector<std::string>{"change 6+0'12 b'", "editingChanged"}));
    EXPECT_EQ(field->text(), "Room 412 b");

    // Backspace deletes before the caret; a selection goes as one.
    journal.calls.clear();
    host.pressKey(Key::Backspace);
    EXPECT_EQ(field->text(), "Room 412 ");
    EXPECT_EQ(journal.calls.front(), "change 9+1''");
    field->setSelectedRange({0, 5});
    host.typeText("Suite ");
    EXPECT_EQ(field->text(), "Suite 412 ");
    EXPECT_EQ(field->selectedRange(), (TextRange{6, 0}));
}

TEST_F(FieldFixture, ranges_count_utf16_units_and_bad_ranges_are_refused) {
    field->setText("a😀b");
    ASSERT_TRUE(field->becomeFirstResponder());
    EXPECT_EQ(field->selectedRange(), (TextRange{4, 0})) << "the emoji counts two";
    journal.calls.clear();
    host.pressKey(Key::Left);
    host.pressKey(Key::Backspace);
    EXPECT_EQ(journal.calls, (std::vector<std::string>{"change 1+2''", "editingChanged"}));
    EXPECT_EQ(field->text(), "ab");

    sys::Log::Capture log;
    EXPECT_FALSE(field->replace({1, 5}, "x"));
    EXPECT_FALSE(field->replace({99, 0}, "x"));
    field->setText("😀");
    EXPECT_FALSE(field->replace({1, 0}, "x")) << "inside a surrogate pair";
    EXPECT_EQ(field->text(), "😀");
    EXPECT_EQ(log.texts().size(), 3u);
    host.typeText("!");
    EXPECT_EQ(field->text(), "😀!") << "still usable";
    EXPECT_EQ(detail::utf16Length("😀!é"), 4u);
}

// Catches deleting half a surrogate pair, deleting past either end of the
// text, and a selection that is not removed as one.
TEST(TextEditing, deletion_takes_the_selection_or_one_whole_code_point) {
    const std::string text = "a😀b";
    EXPECT_EQ(detail::deletionRange(text, {1, 0}, Key::Delete), (TextRange{1, 2}));
    EXPECT_EQ(detail::deletionRange(text, {3, 0}, Key::Backspace), (TextRange{1, 2}));
    EXPECT_EQ(detail::deletionRange(text, {0, 0}, Key::Backspace), std::nullopt);
    EXPECT_EQ(detail::deletionRange(text, {4, 0}, Key::Delete), std::nullopt);
    EXPECT_EQ(detail::deletionRange(text, {1, 3}, Key::Delete), (TextRange{1, 3}));
    EXPECT_EQ(detail::deletionRange(text, {1, 0}, Key::Left), std::nullopt);
}

TEST_F(FieldFixture, accessory_view_shows_while_editing_and_secure_entry_hides_the_text) {
    auto bar = std::make_shared<View>(gfx::Rect{0, 0, 390, 44});
    field->setInputAccessoryView(bar);
    EXPECT_EQ(bar->superview(), nullptr);
    ASSERT_TRUE(field->becomeFirstResponder());
    EXPECT_EQ(bar->superview(), host.root().get());
    EXPECT_EQ(bar->frame().y, 844 - 44);
    field->setSecureTextEntry(true);
    host.typeText("pin1");
    EXPECT_EQ(field->text(), "pin1");
    EXPECT_EQ(detail::bullets("pin1"), "\u2022\u2022\u2022\u2022");
    field->setSecureTextEntry(false);
    testing::expectImageMatches(host.snapshot(1), "tests/ui/text/snapshots/text-field.png");
    field->resignFirstResponder();
    EXPECT_EQ(bar->superview(), nullptr);
}

struct NoteJournal : TextViewDelegate {
    std::vector<std::string> calls;
    bool shouldChangeText(TextView&, TextRange range, std::string_view replacement) override {
        calls.push_back("change " + describe(range, replacement));
        return replacement != "#";
    }
    void textViewDidChange(TextView& view) override { calls.push_back("didChange " + view.text()); }
};

TEST(TextView, typing_return_and_refusals_go_through_the_delegate) {
    HeadlessHost host;
    NoteJournal journal;
    auto note = std::make_shared<TextView>(gfx::Rect{20, 200, 300, 100});
    note->setTextContainerInset({10, 10, 10, 10});
    note->setDelegate(&journal);
    host.root()->addSubview(note);
    host.runUntilIdle();
    host.tap({100, 250});
    ASSERT_TRUE(note->isFirstResponder());
    host.typeText("a#");
    host.pressKey(Key::Return);
    host.paste("bc");
    EXPECT_EQ(note->text(), "a\nbc");
    EXPECT_EQ(journal.calls,
              (std::vector<std::string>{"change 0+0'a'", "didChange a", "change 1+0'#'", "change 1+0'\n'",
                                        "didChange a\n", "change 2+0'bc'", "didChange a\nbc"}));
    sys::Log::Capture log;
    EXPECT_FALSE(note->replace({3, 9}, ""));
    EXPECT_EQ(log.texts().size(), 1u);

    // Long text scrolls inside the view.
    note->setText(std::string(40, '\n'));
    host.runUntilIdle();
    EXPECT_GT(note->contentSize().height, 100);
    note->setMaximumNumberOfLines(2);
    host.runUntilIdle();
    EXPECT_LT(note->contentSize().height, 100);
    EXPECT_TRUE(note->resignFirstResponder());
    note->setEditable(false);
    host.tap({100, 250});
    EXPECT_FALSE(note->isFirstResponder());
}

// The caret of centred and right-aligned text stands after the last letter,
// where the line is drawn, not where a left-aligned line would end.
TEST(TextView, the_caret_follows_the_alignment_of_its_line) {
    HeadlessHost host;
    auto note = std::make_shared<TextView>(gfx::Rect{0, 0, 300, 60});
    host.root()->addSubview(note);
    note->setText("Mesa 4");
    host.runUntilIdle();
    host.tap({150, 30});
    ASSERT_TRUE(note->isFirstResponder());
    auto caretX = [&] {
        const gfx::Image image = Renderer::imageOf(*note, 1);
        for (int x = 0; x < image.pixelWidth(); ++x)
            for (int y = 0; y < image.pixelHeight(); ++y)
                if (auto c = image.pixelColor(x, y); c && c->blue > 0.9 && c->red < 0.1 && c->green > 0.4)
                    return x;
        return -1;
    };
    const int left = caretX();
    note->setTextAlignment(gfx::TextAlignment::Center);
    const int centred = caretX();
    note->setTextAlignment(gfx::TextAlignment::Right);
    const int right = caretX();
    ASSERT_GT(left, 0);
    // The line is drawn 5 points in from each side; what it leaves free:
    const double room = 300 - 5 - left;
    EXPECT_NEAR(centred - left, room / 2, 3);
    EXPECT_NEAR(right - left, room, 3);
}

} // namespace
} // namespace morvane::ui
