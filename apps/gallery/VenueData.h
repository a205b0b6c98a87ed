#pragma once
// The city's venues, read from the gallery's sample data (venues.json) into a
// NodeTree. Picture addresses in the file name the server as "{server}", so
// the same file works whatever port the picture server was given.
//
//   VenueData data(resources / "venues.json", server.address(""));
//   if (!data.load(&error)) ...
//   for (const Value& row : *data.rows(0, {}, "")) list->adData(row);

#include <morvane/model/Forward.h>

#include <filesystem>
#include <string>
#include <vector>

namespace gallery {

class VenueData {
  public:
    // `serverBase` replaces every "{server}" (e.g. "http://127.0.0.1:40123").
    VenueData(std::filesystem::path file, std::string serverBase);

    // Reads and checks the file; false with the reason (the JSON reader's
    // line and column included) when it cannot be used.
    bool load(std::string* error);

    const std::string& city() const { return city_; }
    const std::string& tagline() const { return tagline_; }

    // Fresh rows (new Nodes on every call, so a list may change them freely).
    // Edition 0 is the venues as listed. Every later edition, what the venue
    // server answers after a pull to refresh, also has the "added" venues, and
    // the rows whose picture address ends with one of `updatedPictures` carry
    // the date stamp `stamp` in "imaged": their photos are newer than any copy
    // the picture cache may hold.
    morvane::ListPtr rows(int edition, const std::vector<std::string>& updatedPictures,
                          const std::string& stamp) const;

  private:
    std::filesystem::path file_;
    std::string serverBase_;
    std::string text_; // the file with the server's address filled in
    std::string city_;
    std::string tagline_;
};

// The name a row shows in messages: its "name" without translation markers
// and, like the list's header, only the part after the last "/" or "-".
std::string displayName(const morvane::NodePtr& row);

} // namespace gallery
