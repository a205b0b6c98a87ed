// The labelled text fields on the headless host: typing one character at a
// time and pasted, formatting and filtering, validation answers, focus
// reports, the toaster on the manual clock, layouts, the last entry kept in
// the settings store across a restart, bad input and re-entrancy.
#include "AppSandbox.h"
#include "Rects.h"
#include "Reentrancy.h"
#include "Snapshot.h"

#include <morvane/forms/UITxt.h>
#include <morvane/forms/ZBTxt.h>
#include <morvane/gfx/Font.h>
#include <morvane/model/List.h>
#include <morvane/sys/App.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/Settings.h>
#include <morvane/ui/core/Renderer.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace morvane;
using namespace morvane::test;

namespace {

class FieldTest : public ::testing::Test, protected AppSandbox {
  protected:
    void SetUp() override {
        enterSandbox("forms");
        sys::App::setDataFolder(root / "Data");
        host = std::make_unique<ui::HeadlessHost>();
    }
    void TearDown() override {
        host.reset();
        sys::App::setDataFolder({});
        leaveSandbox();
    }
    template <class Field> std::shared_ptr<Field> place(std::shared_ptr<Field> field, gfx::Rect frame) {
        field->setFrame(frame);
        host->root()->addSubview(field);
        host->runUntilIdle();
        return field;
    }
    void focus(detail::LabelledField& field) {
        host->tap(field.txt()->convertRectTo(field.txt()->bounds(), nullptr).center());
        ASSERT_TRUE(field.txt()->isFirstResponder());
    }
    static Value failure(const std::string& message, const gfx::Color& colour) {
        return List::make({Value(message), Value::object(colour)});
    }

    std::unique_ptr<ui::HeadlessHost> host;
};

} // namespace

// Digits pasted into a field named Phone show formatted while the store keeps
// them as typed; a flight number is formatted as it is typed; the validation
// callback sees the caption and the formatted text.
TEST_F(FieldTest, zbtxt_formats_phone_and_flight_numbers_and_keeps_what_was_typed) {
    auto phone = place(ZBTxt::initWithName("Phone", "phone", false), {20, 100, 350, 100});
    std::vector<std::pair<std::string, std::string>> seen;
    phone->watchAction(0,
                       [&](const std::string& caption, const std::string& text) {
                           seen.emplace_back(caption, text);
                           return Value();
                       },
                       {});
    EXPECT_TRUE(phone->title()->isHidden()) << "no caption before any text";
    focus(*phone);
    host->paste("5551234567");
    EXPECT_EQ(phone->text(), "555 123-4567");
    EXPECT_EQ(ZBTxt::userDefault("Phone"), "5551234567");
    EXPECT_FALSE(phone->title()->isHidden());
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].first, "Phone");
    EXPECT_EQ(seen[0].second, "555 123-4567");
    EXPECT_EQ(phone->txt()->keyboardType(), ui::KeyboardType::Default) << "until assignIcon";
    phone->assignIcon("Phone");
    EXPECT_EQ(phone->txt()->keyboardType(), ui::KeyboardType::NumberPad);

    auto flight = place(ZBTxt::initWithName("Flight Number", std::nullopt, false), {20, 220, 350, 100});
    EXPECT_EQ(flight->txt()->autocorrectionType(), ui::TextAutocorrectionType::No);
    focus(*flight);
    host->typeText("tp1947");
    EXPECT_EQ(flight->text(), "TP 1947");
    // Deleting back to nothing hides the caption again.
    for (int i = 0; i < 7; ++i)
        host->pressKey(ui::Key::Backspace);
    EXPECT_EQ(flight->text(), "");
    EXPECT_TRUE(flight->title()->isHidden());

    EXPECT_EQ(ZBTxt::iconList("guest name"), "person");
    EXPECT_EQ(ZBTxt::iconList("mobile phone"), "phone");
    EXPECT_EQ(ZBTxt::iconList("email"), "email");
    EXPECT_EQ(ZBTxt::iconList("notes"), "about");
}

// A new UITxt takes digits and "." only ("numeric only") until numeric mode
// is switched off; ":" is refused first ("wrong character"), also in a pasted
// time; deleting always passes; the accepted text is validated before it shows.
TEST_F(FieldTest, uitxt_filters_what_is_typed_and_says_why) {
    auto price = place(UITxt::initWithName("Price", std::nullopt, false), {20, 100, 350, 100});
    std::vector<std::string> validated;
    price->watchAction(0,
                       [&](const std::string&, const std::string& text) {
                           validated.push_back(text);
                           return Value();
                       },
                       {});
    focus(*price);
    host->typeText("12a.5");
    EXPECT_EQ(price->text(), "12.5");
    EXPECT_EQ(price->toaster()->text(), "numeric only");
    EXPECT_FALSE(price->toaster()->isHidden());
    host->paste("12:30");
    EXPECT_EQ(price->text(), "12.5");
    EXPECT_EQ(price->toaster()->text(), "wrong character");
    host->pressKey(ui::Key::Backspace);
    EXPECT_EQ(price->text(), "12.");
    EXPECT_EQ(validated, (std::vector<std::string>{"1", "12", "12.", "12.5", "12."}));

    price->setNumeric(false);
    host->typeText("x");
    EXPECT_EQ(price->text(), "12.x");
    // The low byte of U+013A is that of ":".
    host->typeText("ĺ");
    EXPECT_EQ(price->text(), "12.x");
    EXPECT_TRUE(UITxt::checkIllegalChar("ĺ"));
    EXPECT_TRUE(UITxt::accept(""));
    EXPECT_FALSE(UITxt::accept("1a"));
    EXPECT_EQ(UITxt::acceptOnly("a1b.2"), "1.2");
    EXPECT_EQ(UITxt::acceptChr("abcdef", 1, 3), "bcd");
    EXPECT_EQ(UITxt::acceptChr("abc", 5, 9), "");
    EXPECT_EQ(UITxt::phoneFormat("5551234567"), "");
}

// [message, colour] shows the message in the toaster and colours the error
// line without showing it; nothing (or an answer of the wrong shape, with one
// log line) hides the line; showErrorInput names the field in lower case.
TEST_F(FieldTest, validation_answers_reach_the_toaster_and_the_error_line) {
    auto name = place(ZBTxt::initWithName("Last Name", "person", false), {20, 100, 350, 100});
    Value answer = failure("Too short", gfx::Color::blueColor());
    name->watchAction(0, [&](const std::string&, const std::string&) { return answer; }, {});
    focus(*name);
    host->typeText("A");
    EXPECT_TRUE(name->error()->isHidden());
    EXPECT_EQ(name->error()->backgroundColor(), gfx::Color::blueColor());
    EXPECT_EQ(name->toaster()->text(), "Too short");

    name->showErrorInput();
    EXPECT_FALSE(name->error()->isHidden());
    EXPECT_EQ(name->error()->text(), "Please enter last name.");
    EXPECT_EQ(name->error()->backgroundColor(), gfx::Color::redColor());
    answer = Value();
    host->typeText("n");
    EXPECT_TRUE(name->error()->isHidden());

    sys::Log::Capture log;
    for (const Value& odd :
         {Value(List::make({Value("only one")})),
          Value(List::make({Value(3), Value::object(gfx::Color::redColor())})), Value("text")}) {
        name->showErrorInput();
        answer = odd;
        host->typeText("a");
        EXPECT_TRUE(name->error()->isHidden()) << "taken as valid";
    }
    EXPECT_EQ(log.texts().size(), 3u);

    name->addText(Value("  \n "));
    EXPECT_TRUE(name->isErrorInput());
    EXPECT_TRUE(name->isErrorInputShowErrorMsg());
    EXPECT_FALSE(name->error()->isHidden());
    name->addText(Value("Sousa"));
    EXPECT_FALSE(name->isErrorInput());
    EXPECT_TRUE(name->error()->isHidden()) << "addText hides the line";
}

// Begin reports true; Return resigns and reports false (twice: once as
// editing ends, once for the key); the toolbar's Done ends editing.
TEST_F(FieldTest, focus_is_reported_as_editing_begins_and_ends) {
    auto field = place(ZBTxt::initWithName("Email", "email", false), {20, 100, 350, 100});
    std::vector<bool> focus;
    field->watchAction(0, {}, [&](bool editing) { focus.push_back(editing); });
    this->focus(*field);
    host->pressKey(ui::Key::Return);
    EXPECT_FALSE(field->txt()->isFirstResponder());
    EXPECT_EQ(focus, (std::vector<bool>{true, false, false}));
    this->focus(*field);
    ASSERT_TRUE(field->txt()->inputAccessoryView());
    field->doneButtonTapped();
    EXPECT_FALSE(field->txt()->isFirstResponder());
    EXPECT_EQ(focus.back(), false);
}

// Up over 1.5 s until its bottom meets the field's, fading in; then half its
// height down over 1 s, fading out, and hidden.
TEST_F(FieldTest, the_toaster_rises_and_falls_on_the_clock) {
    auto field = place(UITxt::initWithName("Item", "about", false), {20, 100, 350, 100});
    const auto toaster = field->toaster();
    const double r = 1.2 * gfx::Font::systemFontSize(), h = 0.8 * r;
    EXPECT_EQ(toaster->frame(), (gfx::Rect{0, 100, 350, h}));
    field->toast("numeric only");
    EXPECT_FALSE(toaster->isHidden());
    EXPECT_DOUBLE_EQ(toaster->presentation().alpha, 0);
    EXPECT_NEAR(toaster->frame().maxY(), 100, 1e-9) << "on its way up";
    EXPECT_DOUBLE_EQ(toaster->alpha(), 1);
    host->advance(0.75);
    EXPECT_GT(toaster->presentation().frame().maxY(), 100);
    host->advance(0.75);
    EXPECT_NEAR(toaster->frame().maxY(), 100 + h / 2, 1e-9) << "on its way down";
    EXPECT_DOUBLE_EQ(toaster->alpha(), 0);
    EXPECT_FALSE(toaster->isHidden());
    host->advance(1.0);
    EXPECT_TRUE(toaster->isHidden());
}

// With an icon: r = 1.2 f when the field is taller than three times that,
// else a third of its height; the error line moves the icon and the text.
// Without one: rows by fractions of the height.
TEST_F(FieldTest, layouts_follow_the_field_height_and_the_error_line) {
    const double f = gfx::Font::systemFontSize(), s = 1.2 * f;
    auto tall = place(ZBTxt::initWithName("Guest name", "person", false), {0, 0, 300, 100});
    ASSERT_TRUE(tall->photo());
    EXPECT_TRUE(sameRect(tall->title()->frame(), {0, (100 - 3 * s) / 2, 300, s}));
    EXPECT_TRUE(sameRect(tall->extra()->frame(), {210, (100 - 3 * s) / 2, 90, s}));
    EXPECT_TRUE(sameRect(tall->txt()->frame(), {0, (100 - s) / 2, 300, 2 * s}));
    EXPECT_TRUE(sameRect(tall->photo()->frame(), {0.3 * s, (100 - 0.15 * s) / 2, 1.2 * s, 1.2 * s}));
    EXPECT_EQ(tall->txt()->layer().sublayerTranslation(), (gfx::Point{2.1 * s, 0}));
    EXPECT_DOUBLE_EQ(tall->layer().cornerRadius(), 0.4 * s);
    tall->showErrorInput();
    host->runUntilIdle();
    EXPECT_TRUE(sameRect(tall->photo()->frame(), {0.5 * s, (100 - 0.6 * s) / 2, s, s}));
    EXPECT_EQ(tall->txt()->layer().sublayerTranslation(), (gfx::Point{2.1 * s, -0.3 * s}));
    EXPECT_TRUE(sameRect(tall->error()->frame(), {0, tall->txt()->frame().maxY() - 0.8 * s, 300, 0.8 * s}));

    auto low = place(ZBTxt::initWithName("Guest name", "person", false), {0, 0, 300, 50});
    const double r = 50.0 / 3;
    EXPECT_TRUE(sameRect(low->txt()->frame(), {0, (50 - r) / 2, 300, 2 * r}));

    auto plain =
        place(UITxt::initWithName("Notes", std::string_view("no-such-picture"), false), {0, 0, 300, 100});
    EXPECT_FALSE(plain->photo());
    EXPECT_TRUE(sameRect(plain->title()->frame(), {0, 0, 300, 26}));
    EXPECT_TRUE(sameRect(plain->txt()->frame(), {0, 29, 300, 71}));
    EXPECT_TRUE(sameRect(plain->error()->frame(), {0, 75, 300, 25}));
    EXPECT_EQ(plain->txt()->layer().sublayerTranslation(), (gfx::Point{25.2, 0}));
    EXPECT_DOUBLE_EQ(plain->layer().cornerRadius(), 0.4 * s);
}

// The last text typed into "Guest name" comes back in a new field of that
// name after the store is opened anew (as after a restart), and is validated;
// a password is never stored; a store that cannot be written leaves the field working.
TEST_F(FieldTest, the_last_entry_survives_a_restart_and_passwords_are_not_kept) {
    {
        auto guest = place(ZBTxt::initWithName("Guest name", "person", false), {20, 100, 350, 100});
        focus(*guest);
        host->typeText("Inês");
        auto secret = place(ZBTxt::initWithName("Password", std::nullopt, true), {20, 220, 350, 100});
        focus(*secret);
        host->typeText("hunter2");
        EXPECT_EQ(secret->text(), "hunter2");
        guest->removeFromSuperview();
        secret->removeFromSuperview();
    }
    // Another data folder and back, once the saves are written: the store is
    // read from its file again.
    sys::Queue::waitIdle();
    sys::App::setDataFolder(root / "Elsewhere");
    EXPECT_FALSE(ZBTxt::userDefault("Guest name"));
    sys::App::setDataFolder(root / "Data");

    auto again = place(ZBTxt::initWithName("Name", "person", false), {20, 100, 350, 100});
    std::vector<std::string> validated;
    again->watchAction(0,
                       [&](const std::string&, const std::string& text) {
                           validated.push_back(text);
                           return Value();
                       },
                       {});
    EXPECT_EQ(again->addPlaceholder("Guest name"), "Inês");
    EXPECT_EQ(again->text(), "Inês");
    EXPECT_EQ(again->title()->text(), "Guest name");
    EXPECT_EQ(validated, std::vector<std::string>{"Inês"});
    EXPECT_FALSE(ZBTxt::userDefault("Password"));
    EXPECT_FALSE(again->addPlaceholder("Nobody yet"));
    EXPECT_EQ(again->text(), "");

    // A data folder that is a file: the store lives in memory, with a warning.
    sys::Log::Capture log;
    sys::App::setDataFolder(root / "Data" / "Settings.sqlite" / "inside");
    focus(*again);
    host->typeText("ok");
    EXPECT_EQ(again->text(), "ok");
    sys::Queue::waitIdle();
    EXPECT_FALSE(log.texts().empty());
    sys::App::setDataFolder(root / "Data");
}

// Values that are no text are ignored (UITxt says "zed: error"); invalid
// UTF-8 and a 100 KB paste are taken without harm.
TEST_F(FieldTest, bad_input_is_ignored_or_taken_whole) {
    auto item = place(UITxt::initWithName("Item", std::nullopt, false), {20, 100, 350, 100});
    auto guest = place(ZBTxt::initWithName("Guest", std::nullopt, false), {20, 220, 350, 100});
    sys::Log::Capture log;
    item->addText(Value(42));
    guest->addText(Value());
    EXPECT_EQ(log.texts(), std::vector<std::string>{"zed: error"});
    guest->addText(Value(std::string("caf\xC3", 4)));
    EXPECT_EQ(guest->text().substr(0, 3), "caf");
    item->setNumeric(false);
    focus(*item);
    host->paste(std::string(100'000, '7'));
    EXPECT_EQ(item->text().size(), 100'000u);
    focus(*guest);
    host->paste(std::string("\x01\x02 tab\t", 7));
    EXPECT_FALSE(guest->text().empty());
}

TEST_F(FieldTest, form_with_an_error_line_snapshot) {
    auto form = std::make_shared<ui::View>(gfx::Rect{0, 0, 390, 330});
    form->setBackgroundColor(gfx::Color::fromBytes(29, 53, 87));
    host->root()->addSubview(form);
    auto name = ZBTxt::initWithName("Guest name", "person", false);
    name->setFrame({20, 20, 350, 90});
    auto phone = ZBTxt::initWithName("Phone", "phone", false);
    phone->setFrame({20, 120, 350, 90});
    auto price = UITxt::initWithName("Price", std::nullopt, false);
    price->setFrame({20, 220, 350, 90});
    for (const auto& field : std::initializer_list<std::shared_ptr<ui::View>>{name, phone, price})
        form->addSubview(field);
    name->addText(Value("Inês Araújo"));
    phone->showErrorInput();
    price->addText(Value("12.50"));
    host->runUntilIdle();
    morvane::testing::expectImageMatches(ui::Renderer::imageOf(*form, 2),
                                         "tests/forms/snapshots/form@2x.png");
}

// Every callback (validation, focus) may run any operation of its field,
// release included, while typing, pasting, taps and the clock go on.
template <class Field> void runFieldHarness(unsigned seed, std::function<std::shared_ptr<Field>()> make) {
    ReentrancyHarness<Field> fields(seed);
    fields.make([make](ReentrancyHarness<Field>& h) {
        auto field = make();
        field->setFrame({20, 100, 350, 90});
        field->watchAction(
            0,
            [&h](const std::string&, const std::string& text) -> Value {
                h.callback("text");
                if (text.size() % 2) return List::make({Value("Odd"), Value::object(gfx::Color::redColor())});
                return {};
            },
            [&h](bool) { h.callback("focus"); });
        return field;
    });
    fields.operation("text", [](Field& f, Random& r) {
        f.addText(Value(std::string(std::size_t(randomInt(r, 0, 5)), 'a')));
    });
    fields.operation("rename", [](Field& f, Random&) { f.addPlaceholder("Guest name"); });
    fields.operation("error", [](Field& f, Random&) { f.showErrorInput(); });
    fields.operation("clear error", [](Field& f, Random&) { f.addError("", gfx::Color::clearColor()); });
    fields.operation("toast", [](Field& f, Random&) { f.toast("Hello"); });
    fields.operation("quit", [](Field& f, Random&) { f.quit(); });
    fields.input("tap", [](ui::HeadlessHost& host, Field& f, Random&) {
        host.tap(f.txt()->convertRectTo(f.txt()->bounds(), nullptr).center());
    });
    fields.input("type", [](ui::HeadlessHost& host, Field&, Random&) { host.typeText("1a:"); });
    fields.input("paste", [](ui::HeadlessHost& host, Field&, Random&) { host.paste("5551234567"); });
    fields.input("return", [](ui::HeadlessHost& host, Field&, Random&) { host.pressKey(ui::Key::Return); });
    fields.input("backspace",
                 [](ui::HeadlessHost& host, Field&, Random&) { host.pressKey(ui::Key::Backspace); });
    fields.run(ReentrancyHarness<Field>::steps(800, 6000));
    EXPECT_GT(fields.callbacks(), 50);
}

TEST_F(FieldTest, any_operation_from_a_zbtxt_callback_is_safe) {
    host.reset(); // the harness runs its own
    runFieldHarness<ZBTxt>(71, [] { return ZBTxt::initWithName("Phone", "phone", false); });
}

TEST_F(FieldTest, any_operation_from_a_uitxt_callback_is_safe) {
    host.reset();
    runFieldHarness<UITxt>(72, [] { return UITxt::initWithName("Price", "about", false); });
}
