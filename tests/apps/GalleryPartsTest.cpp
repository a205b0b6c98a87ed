// The gallery's parts that do not need a screen: its sample data and
// pictures, the translator's dictionary and the page writer.

#include "Pages.h"
#include "SamplePictures.h"
#include "Translator.h"
#include "VenueData.h"

#include <morvane/gfx/Image.h>
#include <morvane/model/List.h>
#include <morvane/model/Node.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <set>
#include <span>

#include <unistd.h>

namespace fs = std::filesystem;
using namespace gallery;
using morvane::NodePtr;
using morvane::Value;

namespace {

const fs::path kResources = MORVANE_GALLERY_RESOURCES;
constexpr const char* kServer = "http://127.0.0.1:5";

class TempFolder : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "morvane-gallery-parts-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        dir_ = pattern;
    }
    void TearDown() override { fs::remove_all(dir_); }
    fs::path write(const std::string& name, const std::string& text) {
        std::ofstream(dir_ / name, std::ios::binary) << text;
        return dir_ / name;
    }
    fs::path dir_;
};

} // namespace

TEST(GalleryData, sample_venues_point_at_the_server_and_come_fresh_each_time) {
    VenueData data(kResources / "venues.json", kServer);
    std::string error;
    ASSERT_TRUE(data.load(&error)) << error;
    EXPECT_FALSE(data.city().empty());

    const auto rows = data.rows(0, {}, "");
    ASSERT_GE(rows->size(), 20u);
    std::set<std::string> keys;
    int downloaded = 0, marked = 0;
    for (const Value& row : *rows) {
        const NodePtr& venue = row.node();
        ASSERT_TRUE(venue);
        EXPECT_TRUE(keys.insert(venue->get("key").textOr()).second) << "keys are unique";
        // Sorting by rating takes only rows whose rating is a text.
        EXPECT_TRUE(venue->get("rating").isText()) << venue->get("key").textOr();
        const std::string picture = venue->get("picture").textOr();
        EXPECT_EQ(picture.find("{server}"), std::string::npos);
        if (picture.starts_with(std::string(kServer) + "/pictures/")) ++downloaded;
        if (venue->get("name").textOr().find("<en>") != std::string::npos ||
            venue->get("note").textOr().find("<en>") != std::string::npos)
            ++marked;
    }
    EXPECT_GE(downloaded, 15);
    EXPECT_GE(marked, 5);

    // A list may change its rows; the next edition does not see it.
    rows->at(0).node()->set("name", "changed");
    EXPECT_NE(data.rows(0, {}, "")->at(0).node()->get("name").textOr(), "changed");
}

TEST(GalleryData, a_later_edition_adds_venues_and_dates_the_updated_pictures) {
    VenueData data(kResources / "venues.json", kServer);
    ASSERT_TRUE(data.load(nullptr));
    const auto before = data.rows(0, {"/pictures/harbour.jpg"}, "2030.01.01T00:00:00");
    const auto after = data.rows(1, {"/pictures/harbour.jpg"}, "2030.01.01T00:00:00");
    EXPECT_GT(after->size(), before->size());
    int dated = 0;
    for (std::size_t i = 0; i < after->size(); ++i) {
        const NodePtr& venue = after->at(i).node();
        const bool harbour = venue->get("picture").textOr().ends_with("/pictures/harbour.jpg");
        if (harbour) {
            EXPECT_EQ(venue->get("imaged").textOr(), "2030.01.01T00:00:00");
            ++dated;
        } else if (i < before->size()) {
            EXPECT_EQ(venue->get("imaged"), before->at(i).node()->get("imaged")) << "others keep their stamp";
        }
    }
    EXPECT_GE(dated, 2);
    for (const Value& row : *before)
        EXPECT_NE(row.node()->get("imaged").textOr(), "2030.01.01T00:00:00") << "edition 0 is as listed";
}

TEST_F(TempFolder, venue_files_that_cannot_be_used_are_refused_with_a_reason) {
    std::string error;
    EXPECT_FALSE(VenueData(dir_ / "missing.json", kServer).load(&error));
    EXPECT_NE(error.find("missing.json"), std::string::npos) << error;

    EXPECT_FALSE(
        VenueData(write("bad.json", "{\"venues\": [\n  {\"key\": \"A\",}\n]}"), kServer).load(&error));
    EXPECT_NE(error.find("line 2"), std::string::npos) << error;

    EXPECT_FALSE(VenueData(write("empty.json", "{\"venues\": []}"), kServer).load(&error));
    EXPECT_FALSE(VenueData(write("list.json", "[]"), kServer).load(&error));
    EXPECT_FALSE(VenueData(write("keyless.json", "{\"venues\": [{\"name\": \"A\"}]}"), kServer).load(&error));
    EXPECT_NE(error.find("key"), std::string::npos) << error;
}

TEST(GalleryData, display_names_drop_markers_and_places) {
    EXPECT_EQ(displayName(morvane::Node::make({{"name", "Old Town/Clock Tower"}})), "Clock Tower");
    EXPECT_EQ(displayName(morvane::Node::make({{"name", "<en>Covered Market"}})), "Covered Market");
    EXPECT_EQ(displayName(morvane::Node::make({{"key", "A"}})), "");
    EXPECT_EQ(displayName(nullptr), "");
}

TEST(GalleryPictures, come_in_every_shape_and_change_colour_at_dusk) {
    std::string error;
    const auto pictures = SamplePictures::render(kResources / "pictures", &error);
    ASSERT_FALSE(pictures.empty()) << error;
    int tall = 0, square = 0, between = 0, wide = 0;
    std::set<std::string> types;
    for (const SamplePicture& picture : pictures) {
        const auto decode = [](const std::string& bytes) {
            return morvane::gfx::Image::fromData(
                std::span(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()));
        };
        const auto day = decode(picture.day), dusk = decode(picture.evening);
        ASSERT_FALSE(day.isNull()) << picture.path;
        ASSERT_FALSE(dusk.isNull()) << picture.path;
        EXPECT_EQ(day.pixelWidth(), picture.width);
        EXPECT_NE(picture.day, picture.evening) << picture.path;
        types.insert(picture.contentType);
        EXPECT_EQ(picture.path.ends_with(".png"), picture.contentType == "image/png") << picture.path;
        const double ratio = double(picture.width) / picture.height;
        (ratio < 0.8 ? tall : ratio == 1.0 ? square : ratio < 1.2 ? between : wide)++;
    }
    // Each of the cell's placement rules gets pictures to show.
    EXPECT_GE(tall, 2);
    EXPECT_GE(square, 1);
    EXPECT_GE(between, 1);
    EXPECT_GE(wide, 2);
    EXPECT_EQ(types, (std::set<std::string>{"image/jpeg", "image/png"}));

    EXPECT_EQ(SamplePictures::evening("<rect fill=\"#8ecae6\"/><rect fill=\"#8ecae6\"/>"),
              "<rect fill=\"#f4845f\"/><rect fill=\"#f4845f\"/>");
    EXPECT_TRUE(SamplePictures::render(kResources / "nowhere", &error).empty());
    EXPECT_NE(error.find("nowhere"), std::string::npos) << error;
}

TEST(GalleryTranslator, knows_phrases_then_words_and_keeps_the_rest) {
    EXPECT_EQ(Translator::toFrench("<en>Open late"), "Ouvert tard");
    EXPECT_EQ(Translator::toFrench("Botanical Garden<en>"), "Jardin botanique");
    // Word by word when the phrase is unknown; unknown words stay.
    EXPECT_EQ(Translator::toFrench("<en>Open Sunday"), "Ouvert Sunday");
    EXPECT_EQ(Translator::toFrench("<en>"), "");
}

TEST_F(TempFolder, pages_escape_what_they_show_and_report_failures) {
    std::string error;
    ASSERT_TRUE(writeIndex(
        dir_, "A & B", "intro <b>",
        {{"Screen <i>", "Text & more", {{"01 \"x\".png", "Title <script>", "Caption's text"}}}}, &error))
        << error;
    std::ifstream in(dir_ / "index.html");
    const std::string page((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_NE(page.find("<title>A &amp; B</title>"), std::string::npos);
    EXPECT_NE(page.find("src=\"01 &quot;x&quot;.png\""), std::string::npos);
    EXPECT_NE(page.find("Title &lt;script&gt;"), std::string::npos);
    EXPECT_NE(page.find("Caption&#39;s text"), std::string::npos);
    EXPECT_NE(page.find("<h2>Screen &lt;i&gt;</h2>\n<p>Text &amp; more</p>"), std::string::npos) << page;
    EXPECT_EQ(page.find("<script>"), std::string::npos);

    EXPECT_FALSE(writeIndex(dir_ / "missing", "x", "", {}, &error));
    EXPECT_NE(error.find("index.html"), std::string::npos) << error;
}
