#pragma once
// The gallery's bookings screen: a hotel's front desk in the kit's
// header-and-list composite. The header's switch picks arrivals or
// departures, its selection button the day; each day's guests are the rows.
// A guest row swiped to the left checks the guest in (or out), to the right
// cancels the booking. Asking for a day the desk has no list for shows the
// header's error toast.
//
//   auto screen = BookingsScreen::make(frame, parseSample(bookingsText), goHome);

#include "CompositeScreen.h"

#include <morvane/model/Forward.h>

#include <map>
#include <memory>
#include <string>

namespace gallery {

class BookingsScreen : public CompositeScreen {
  public:
    static std::shared_ptr<BookingsScreen> make(const morvane::gfx::Rect& frame, morvane::NodePtr bookings,
                                                Back back);
    // Use make(): the callbacks need the screen to be owned already.
    BookingsScreen(const morvane::gfx::Rect& frame, morvane::NodePtr bookings);

    // "Arrivals" or "Departures".
    const std::string& segment() const { return segment_; }
    // What the desk did with a booking ("" when nothing yet).
    std::string statusOf(const std::string& key) const;

    // Shows the day's list, as a link from elsewhere in an app would; an
    // unknown day leaves the list as it is and the header says so.
    bool showDay(const std::string& day);

  private:
    void wire(Back back);
    void showSegment(const std::string& title);
    void mark(const morvane::NodePtr& row, const std::string& what);

    morvane::NodePtr bookings_;
    std::string segment_;
    std::map<std::string, std::string> done_; // booking key -> what was done
    std::string swipeMessage_;                // what a swipe action just did, for the select after it
};

} // namespace gallery
