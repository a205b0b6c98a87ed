#pragma once
// UIAdmin: the administrator's screen. Records (people or businesses) in the
// list form of the composite; a chosen record on a profile card laid over
// the list, named by the first of the header keys it has (like-matched),
// with the body keys as labelled values (stored date stamps shown as
// readable dates) and its "image" as the picture; value edits routed to
// per-field callbacks; an edit toggle and an optional back button.
//
//   auto admin = std::make_shared<UIAdmin>(gfx::Rect{0, 0, 390, 844});
//   admin->cfg({.list = {.header = [](auto& keys) { keys = {"name"}; }},
//               .profileBody = [](auto& keys) { keys = {"phone", "email", "time"}; }});
//   admin->watchField("phone", [](auto& key, auto& title, auto& field, auto& text) { ... });
//   admin->addDataWhenSelect("Staff", Value(staff));
//   admin->refresh();
//   admin->editEnable(true);
//
// A selection of a record without "key" opens the card on what it showed
// before. Threads: main thread only. Every callback may release the panel.

#include <morvane/menus/detail/RecordScreen.h>

#include <memory>
#include <string>
#include <string_view>

namespace morvane {

class UIAdmin : public detail::RecordScreen {
  public:
    // The listener under which the panel follows its list.
    static constexpr std::string_view kRegistration = "adminUI";

    explicit UIAdmin(const gfx::Rect& frame = {});
    // The flag does not change what is built.
    explicit UIAdmin(bool backButton);
    static std::shared_ptr<UIAdmin> initWithBackButton(bool backButton);

    void updateProfile(const NodePtr& record) override;
    void itemSelected(const NodePtr& record) override;
    // A stamp ("yyyy.MM.dd'T'HH:mm:ss") as "d MMM yyyy HH:mm:ss, EEE" in the
    // current locale; any other value's text unchanged.
    static std::string reformatDate(const Value& value);

    // Editing in the card, and the edit button shown while it is on.
    void editEnable(bool enable);
    void showProfile(bool show);
    // Hides or shows the panel; the card is hidden either way.
    void setHidden(bool hidden);
    // Hides the card, shows the list and clears its header.
    void clear();
    void watchSwipe(std::string title, const gfx::Color& color, UITblHdrAll::SwipeCB swipe);
    void watchSwipeLeft(std::string title, const gfx::Color& color, UITblHdrAll::SwipeCB swipe);
};

} // namespace morvane
