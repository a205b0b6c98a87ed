#pragma once
// The gallery's venue screen: a title bar, the city's venues in a UITbl, and a
// status line that says what the last touch did. Everything the list shows
// is chosen by its configuration callbacks (picture, header, body and price
// keys, sorting by rating), and everything it reports comes back through the
// callbacks registered here: taps, row building, swipe actions on both sides
// and pull to refresh.
//
//   auto screen = VenueScreen::make(frame, "Porto Alvo", "Places to eat", translator,
//                                   [&](int edition) { return data.rows(edition, ...); }, goHome);
//   window->addSubview(screen);

#include "Screen.h"

#include <morvane/lists/UITbl.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Button.h>
#include <morvane/ui/controls/Label.h>

#include <functional>
#include <memory>
#include <set>
#include <string>

namespace gallery {

class Translator;

// What the user did so far, as the screen's callbacks saw it.
struct VenueEvents {
    int selects = 0; // select callbacks: taps, and every swipe action after its own callback
    int calls = 0;
    int saves = 0;
    int refreshes = 0;
    std::string lastSelected; // the "key" of the last select
};

class VenueScreen : public Screen {
  public:
    // Answers the rows to show: edition 0 at start, 1, 2 ... after each pull to refresh.
    using RowSource = std::function<morvane::ListPtr(int edition)>;

    // Builds the screen, registers its callbacks on the list and shows edition 0.
    static std::shared_ptr<VenueScreen> make(const morvane::gfx::Rect& frame, std::string title,
                                             std::string subtitle, std::shared_ptr<Translator> translator,
                                             RowSource rows, Back back);
    // Use make(): the callbacks need the screen to be owned already.
    VenueScreen(const morvane::gfx::Rect& frame, std::string title, std::string subtitle,
                std::shared_ptr<Translator> translator, RowSource rows, Back back);

    std::shared_ptr<morvane::ui::View> backControl() const override { return back_; }
    // The visible rows whose pictures have not arrived, and translations outstanding.
    std::string waitingFor() const override;

    const std::shared_ptr<morvane::UITbl>& list() const { return list_; }
    const std::shared_ptr<morvane::ui::Label>& status() const { return status_; }
    const VenueEvents& events() const { return events_; }
    bool isSaved(const std::string& key) const { return saved_.count(key) > 0; }

    // Replaces the rows with the source's edition and redraws the list.
    void showEdition(int edition);

  protected:
    void layoutSubviews() override;

  private:
    void configureList();
    void watchList();
    void say(const std::string& text);
    // The list's callbacks. A swipe action leaves its message for the select
    // callback that the list calls right after it.
    void onSelect(const morvane::Value& key, const morvane::NodePtr& row);
    void onPopulate(const morvane::Value& key, const morvane::NodePtr& row);
    void onPull();
    void onCall(const morvane::NodePtr& row);
    void onSave(const morvane::NodePtr& row);

    std::shared_ptr<morvane::ui::View> titleBar_;
    std::shared_ptr<morvane::ui::Button> back_;
    std::shared_ptr<morvane::ui::Label> title_;
    std::shared_ptr<morvane::ui::Label> subtitle_;
    std::shared_ptr<morvane::UITbl> list_;
    std::shared_ptr<morvane::ui::Label> status_;
    std::shared_ptr<Translator> translator_;
    RowSource rows_;
    VenueEvents events_;
    std::set<std::string> saved_;
    std::string swipeMessage_; // what a swipe action just did, for the select that follows it
    int edition_ = 0;
};

} // namespace gallery
