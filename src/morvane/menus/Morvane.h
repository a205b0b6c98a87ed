#pragma once
// Morvane: the kit's top-level screen. A header bar over a grid of items
// (the grid form of the composite), a profile card that shows the chosen item
// in detail with a strip of contact actions inside it, a back button and an
// edit button. UIMenu2 is the same screen under its second name.
//
//   auto menu = std::make_shared<Morvane>(gfx::Rect{0, 0, 390, 844});
//   menu->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; },
//                       .price = [](auto& keys) { keys = {"$price"}; }},
//              .profileBody = [](auto& keys) { keys = {"name", "phone", "about"}; }});
//   menu->watchTouchSelect([](const std::string& action, const NodePtr& item) { ... });
//   menu->watchField("phone", [](auto& key, auto& title, auto& field, auto& text) { ... });
//   menu->addDataWhenSelect("Dinner", Value(dinnerItems));
//   menu->refresh();
//
// A tap on an item that has a "key" fills the card from it: its name from
// the header keys, its values from the body keys (translated once the last
// is added), and the contact strip from the item's "phone", "about",
// "wsite", "text", "book", "urlFB" and "utube" members; with check marks off
// the card opens. Items without "key" open nothing.
//
// Threads: main thread only, except the notification's completion, which
// only logs. Every callback may release the screen.

#include <morvane/lists/ZBTouch.h>
#include <morvane/menus/detail/RecordScreen.h>
#include <morvane/util/Dates.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class Morvane : public detail::RecordScreen {
  public:
    // A tapped contact action: its key and the item.
    using TouchSelectCB = ZBTouch::SelectCB;
    // The listener under which the screen follows its grid.
    static constexpr std::string_view kRegistration = "menu2UI";
    // The contact actions, in the strip's order.
    static constexpr std::string_view kTouchKeys[] = {"phone", "about", "wsite", "text",
                                                      "book",  "urlFB", "utube"};

    explicit Morvane(const gfx::Rect& frame = {});
    ~Morvane() override;

    const std::shared_ptr<ZBTouch>& touchZB() const { return touchZB_; }

    void updateProfile(const NodePtr& item) override;
    void itemSelected(const NodePtr& item) override;
    // The strip rebuilt from the item's contact members.
    void updateTouch(const NodePtr& item);

    // Editing in the card; the edit button's visibility.
    void editEnable(bool enable);
    void admin(bool show);
    void watchTouchSelect(TouchSelectCB callback) { touchSelectCB_ = std::move(callback); }
    void watchHdrBack(std::optional<std::string> title, UIHeader::BackCB callback);
    // Accepted and not used.
    void watchAddItemToCart(std::function<void(const std::string&, const NodePtr&)>) {}
    // Shows the grid and clears its header.
    void clear();
    void setBackgroundColor(const gfx::Color& color) override;

    // ---- Dates -------------------------------------------------------------------
    // The day in the first eight characters ("yyyyMMdd"); nothing when they are no day.
    static std::optional<Dates::Time> textToDate(std::string_view text);
    // "dd MMM yyyy, EEE" in the current locale.
    static std::string getFDate(Dates::Time date);
    // False for an empty text; else whether the text parses strictly with the format.
    static bool isValidDateFormat(std::string_view text, std::string_view form);

    // Replaces any waiting notification with one made from the application's
    // notification texts for the two keys, shown in 5 seconds ("FiveSecond").
    // A delivery that fails logs "Something went wrong: " and the reason, once.
    static void addNotification(const std::string& title, const std::string& body);

  protected:
    void layoutSubviews() override;

  private:
    void watchTouch();

    std::shared_ptr<ZBTouch> touchZB_;
    TouchSelectCB touchSelectCB_;
};

// The same screen under its second name.
class UIMenu2 final : public Morvane {
  public:
    using Morvane::Morvane;
};

} // namespace morvane
