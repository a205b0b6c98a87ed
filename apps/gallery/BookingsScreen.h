#pragma once
// The gallery's bookings screen: a hotel's front desk in the kit's
// header-and-list composite. The header's switch picks arrivals or
// departures, its selection button the day; each day's guests are the rows.
// A guest row swiped to the left checks the guest in (or out), to the right
// cancels the booking. Asking for a day the desk has no list for shows the
// header's error toast.
//
//   auto screen = BookingsScreen::make(frame, parseSample(bookingsText), goHome);

#include "Screen.h"

#include <morvane/lists/UITblHdrAll.h>
#include <morvane/model/Forward.h>
#include <morvane/ui/controls/Label.h>

#include <map>
#include <memory>
#include <string>

namespace gallery {

class BookingsScreen : public Screen {
  public:
    static std::shared_ptr<BookingsScreen> make(const morvane::gfx::Rect& frame, morvane::NodePtr bookings,
                                                Back back);
    // Use make(): the callbacks need the screen to be owned already.
    BookingsScreen(const morvane::gfx::Rect& frame, morvane::NodePtr bookings);

    const std::shared_ptr<morvane::UITblHdrAll>& composite() const { return composite_; }
    const std::shared_ptr<morvane::ui::Label>& status() const { return status_; }
    // "Arrivals" or "Departures".
    const std::string& segment() const { return segment_; }
    // What the desk did with a booking ("" when nothing yet).
    std::string statusOf(const std::string& key) const;

    // Shows the day's list, as a link from elsewhere in an app would; an
    // unknown day leaves the list as it is and the header says so.
    bool showDay(const std::string& day);

    std::shared_ptr<morvane::ui::View> backControl() const override;

  protected:
    void layoutSubviews() override;

  private:
    void wire(Back back);
    void showSegment(const std::string& title);
    void mark(const morvane::NodePtr& row, const std::string& what);
    void say(const std::string& text);

    morvane::NodePtr bookings_;
    std::shared_ptr<morvane::UITblHdrAll> composite_;
    std::shared_ptr<morvane::ui::Label> status_;
    std::string segment_;
    std::map<std::string, std::string> done_; // booking key -> what was done
    std::string swipeMessage_;                // what a swipe action just did, for the select after it
};

} // namespace gallery
