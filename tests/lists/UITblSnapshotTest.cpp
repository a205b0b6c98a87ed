// A list screen drawn and compared with its stored reference picture.
#include "ListsFixture.h"

#include "Snapshot.h"

#include <morvane/util/Colors.h>

using namespace morvane;
using morvane::test::configure;
using morvane::test::ListsFixture;

namespace {

class UITblSnapshotTest : public ListsFixture {};

} // namespace

// Venues with pictures of three shapes, a selected row with its check mark,
// prices, and a row without picture, on the dark navy of the gallery.
TEST_F(UITblSnapshotTest, the_venue_list_screen_matches_its_snapshot) {
    resourcePicture("wide", 300, 150, Colors::hex("#E07A5F"));
    resourcePicture("tall", 60, 120, Colors::hex("#81B29A"));
    resourcePicture("square", 100, 100, Colors::hex("#F2CC8F"));
    ListConfig config;
    config.header = [](std::vector<std::string>& keys) { keys = {"name"}; };
    config.body = [](std::vector<std::string>& keys) { keys = {"category", "phone"}; };
    config.price = [](std::vector<std::string>& keys) { keys = {"price"}; };
    config.ascending = [](bool& on) { on = true; };
    config.cellHeight = [](float& lines) { lines = 4; };
    config.select = [](std::string& selection) { selection = "v2"; };
    configure(*list, config);
    list->adData(Node::make({{"key", "v1"},
                             {"name", "Old Town/Harbour Inn"},
                             {"category", "Hotel"},
                             {"phone", "+47 555 0101"},
                             {"price", "120 EUR"},
                             {"image", "wide"}}));
    list->adData(Node::make({{"key", "v2"},
                             {"name", "Fjord Café"},
                             {"category", "Café"},
                             {"phone", "+47 555 0102"},
                             {"price", "8 EUR"},
                             {"image", "tall"}}));
    list->adData(
        Node::make({{"key", "v3"}, {"name", "Museum Pass"}, {"category", "Tour"}, {"image", "square"}}));
    list->adData(Node::make({{"key", "v4"}, {"name", "Night Bus"}, {"category", "Transport"}}));
    list->setBackgroundColor(Colors::hex("#1D2A44"));
    list->refresh();
    host->runUntilIdle();
    host->runUntilIdle();
    morvane::testing::expectImageMatches(host->snapshot(1), "tests/lists/snapshots/venue_list.png");
}
