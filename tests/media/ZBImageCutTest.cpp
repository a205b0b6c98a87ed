// The picture file cache: names from addresses, stamps and the four-week
// rule, dating and reading files, the eight-week sweep, atomic replacement,
// and hostile addresses and links that must never lead outside it.
#include "MediaFixture.h"

#include <morvane/media/ZBImageCut.h>
#include <morvane/media/detail/CacheSweep.h>
#include <morvane/sys/Clock.h>
#include <morvane/sys/Files.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/util/Dates.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <fstream>
#include <unistd.h>

using namespace morvane;
using morvane::test::kJan2024;
using morvane::test::kWeek;
using morvane::test::MediaFixture;
using morvane::test::pngBytes;
namespace fs = std::filesystem;

namespace {

class ZBImageCutTest : public MediaFixture {
  protected:
    // Saves a small PNG under the names derived from the address; true when saved.
    bool save(ZBImageCut& cut, std::string_view address, std::string_view stamp, bool* called = nullptr) {
        cut.setFileName(address);
        return cut.saveImage(pngBytes(4, 4, gfx::Color::redColor()), cut.fileName(), cut.dirName(), stamp,
                             [called](const gfx::Image& image, bool flag) {
                                 if (called) *called = !image.isNull() && flag;
                             });
    }
    std::string pathOf(const ZBImageCut& cut) const {
        return ZBImageCut::currentPath2(cut.dirName(), cut.fileName());
    }
    std::string modificationStamp(const std::string& path) const {
        return Dates::stamp(*sys::Files::modificationDate(path));
    }
};

} // namespace

// The names the cache derives from addresses, on the cases that decide them:
// scheme and host dropped, percent texts cleaned, queries cut, "img" alone
// for an address without "/", nothing for an empty last component.
TEST_F(ZBImageCutTest, names_come_from_the_cleaned_address) {
    const struct {
        std::optional<std::string> address;
        std::string dir, file;
    } cases[] = {{"https://cdn.example.com/images/food/soup.png?x=1", "img/images/food", "soup.png"},
                 {"menu%2Fhot%20soup,large.png", "img/menu", "hot-souplarge.png"},
                 {"logo.png", "img", "logo.png"},
                 {"http://h.com/a/b.v2/c/", "img/a/c", ""}, // components with a dot are dropped
                 {std::nullopt, "img", ""}};
    for (const auto& c : cases) {
        ZBImageCut cut;
        cut.setFileName(c.address);
        EXPECT_EQ(cut.dirName(), c.dir) << c.address.value_or("none");
        EXPECT_EQ(cut.fileName(), c.file) << c.address.value_or("none");
        EXPECT_EQ(cut.isCacheable(), !c.file.empty()) << "an empty file name names the folder itself";
    }
    EXPECT_EQ(ZBImageCut::filterPath("%2F%20,%2f"), "/-%2f") << "exact, case-sensitive replacements";
    EXPECT_EQ(ZBImageCut::currentPath2(std::nullopt, "x.png"), documents.string());
    EXPECT_EQ(ZBImageCut::currentPath2("img", "x.png"), (documents / "img" / "x.png").string());
}

// Stamps are compared on 19 characters, as texts. The four-week rule holds to
// the second: a stamp exactly four weeks old is not older, one second more
// is; the day-only test ignores the time of day. Weeks are calendar weeks,
// keeping the clock time across a daylight-saving change.
TEST_F(ZBImageCutTest, stamps_are_cut_to_the_second_and_four_weeks_are_calendar_weeks) {
    EXPECT_EQ(ZBImageCut::cut("2024.01.01T10:00:00.750+0100"), "2024.01.01T10:00:00");
    EXPECT_EQ(ZBImageCut::cut("2024.01"), "2024.01");
    EXPECT_EQ(ZBImageCut::textToDate("2024.01.01T00:00:00.999"), kJan2024);
    EXPECT_FALSE(ZBImageCut::textToDate("2024.13.01T00:00:00"));
    EXPECT_FALSE(ZBImageCut::textToDate(""));

    useManualClock(kJan2024 + 12 * 3600); // 2024.01.01T12:00:00
    EXPECT_EQ(ZBImageCut::now(0), "2024.01.01T12:00:00");
    EXPECT_EQ(ZBImageCut::now(-4), "2023.12.04T12:00:00");
    EXPECT_EQ(ZBImageCut::now(-8), "2023.11.06T12:00:00");
    EXPECT_EQ(ZBImageCut::now(1), "2024.01.08T12:00:00");
    EXPECT_FALSE(ZBImageCut::dateCompare("2023.12.04T12:00:00", true));
    EXPECT_EQ(ZBImageCut::dateCompare("2023.12.04T11:59:59", true), "2023.12.04T12:00:00");
    EXPECT_FALSE(ZBImageCut::dateCompare("2023.12.04T00:00:00", false)) << "same day counts as not older";
    EXPECT_EQ(ZBImageCut::dateCompare("2023.12.03T23:59:59", false), "2023.12.04T12:00:00");

    Dates::setTimeZone("Europe/Berlin");
    useManualClock(1711965600); // 2024.04.01T12:00:00 in Berlin (summer time)
    EXPECT_EQ(ZBImageCut::now(-4), "2024.03.04T12:00:00") << "winter time four weeks before";
}

// Saving: an old stamp is stored as four weeks ago, a recent one as given,
// with changeDate off every stamp as given (and nothing is swept). The
// creation date is the moment of the save.
TEST_F(ZBImageCutTest, saves_date_files_by_the_four_week_rule) {
    useManualClock(kJan2024);
    ZBImageCut cut;
    bool called = false;
    ASSERT_TRUE(save(cut, "http://h.com/menu/old.png", "2020.05.05T05:05:05", &called));
    EXPECT_TRUE(called);
    EXPECT_EQ(modificationStamp(pathOf(cut)), "2023.12.04T00:00:00");
    EXPECT_EQ(*ZBImageCut::fileDate(cut.dirName(), cut.fileName()), "2024.01.01T00:00:00");

    ASSERT_TRUE(save(cut, "http://h.com/menu/new.png", "2023.12.20T08:00:00.5"));
    EXPECT_EQ(modificationStamp(pathOf(cut)), "2023.12.20T08:00:00");

    cut.setChangeDate(false);
    ASSERT_TRUE(save(cut, "http://h.com/menu/kept.png", "2020.05.05T05:05:05"));
    EXPECT_EQ(modificationStamp(pathOf(cut)), "2020.05.05T05:05:05");
    advance(9 * kWeek);
    cut.cleanup();
    sys::Queue::waitIdle();
    EXPECT_TRUE(fs::exists(pathOf(cut))) << "and the sweep is off";
}

// Reading a file created over four weeks ago (by its day) moves its
// modification date to four weeks ago and leaves its creation alone.
TEST_F(ZBImageCutTest, reading_an_old_file_moves_its_stamp_forward) {
    useManualClock(kJan2024);
    ZBImageCut cut;
    ASSERT_TRUE(save(cut, "http://h.com/a/pic.png", "2023.12.31T00:00:00"));
    advance(4 * kWeek + 86400 - 1); // the day before is still the same day four weeks on
    ASSERT_TRUE(cut.imageRead(cut.dirName(), cut.fileName(), "ignored"));
    EXPECT_EQ(modificationStamp(pathOf(cut)), "2023.12.31T00:00:00");

    advance(1);
    auto bytes = cut.imageRead(cut.dirName(), cut.fileName(), "ignored");
    ASSERT_TRUE(bytes);
    EXPECT_EQ(*bytes, pngBytes(4, 4, gfx::Color::redColor()));
    EXPECT_EQ(modificationStamp(pathOf(cut)), "2024.01.02T00:00:00");
    EXPECT_EQ(*ZBImageCut::fileDate(cut.dirName(), cut.fileName()), "2024.01.01T00:00:00");
    EXPECT_FALSE(cut.imageRead("img", "missing.png", ""));
}

// The sweep removes files created more than eight weeks ago, to the second,
// logging each, and touches nothing outside the cache folders, even pointed
// at the documents folder itself.
TEST_F(ZBImageCutTest, sweep_deletes_only_old_files_inside_the_cache_folders) {
    useManualClock(kJan2024);
    ZBImageCut cut;
    ASSERT_TRUE(save(cut, "http://h.com/x/old.png", ""));
    const std::string old = pathOf(cut);
    ASSERT_TRUE(sys::Files::createFolder(documents / "toskar" / "h.com"));
    ASSERT_TRUE(sys::Files::write(documents / "toskar" / "h.com" / "t.png", std::string_view("t")));
    ASSERT_TRUE(sys::Files::write(documents / "notes.txt", std::string_view("the app's own")));
    advance(1);
    ASSERT_TRUE(save(cut, "http://h.com/x/younger.png", ""));

    advance(8 * kWeek - 1);
    {
        sys::Log::Capture log;
        ZBImageCut::traverseDirectoryAtPath(documents.string());
        EXPECT_TRUE(log.texts().empty()) << "exactly eight weeks old is not older";
    }
    advance(1);
    sys::Log::Capture log;
    ZBImageCut::traverseDirectoryAtPath(documents.string());
    EXPECT_FALSE(fs::exists(old));
    EXPECT_FALSE(fs::exists(documents / "toskar" / "h.com" / "t.png"));
    EXPECT_TRUE(fs::exists(pathOf(cut)));
    EXPECT_TRUE(fs::exists(documents / "notes.txt"));
    const std::vector<std::string> expected = {"File: " + old, "Date: 2024.01.01T00:00:00", "Del: " + old,
                                               "Deleted file: " + old};
    auto lines = log.texts();
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 4), expected);
    EXPECT_FALSE(ZBImageCut::removeFileAtPath((documents / "notes.txt").string()));
    EXPECT_TRUE(fs::exists(documents / "notes.txt"));
}

// Views ask for the sweep after every picture: a hundred asks sweep both
// cache folders once, on a background queue, never on the main thread; asks
// within the hour after are dropped, and the next one after it sweeps again.
TEST_F(ZBImageCutTest, cleanup_sweeps_once_a_launch_then_hourly_off_the_main_thread) {
    useManualClock(kJan2024);
    ZBImageCut cut;
    ASSERT_TRUE(save(cut, "http://h.com/x/first.png", ""));
    const std::string first = pathOf(cut);
    ASSERT_TRUE(sys::Files::createFolder(documents / "toskar" / "h.com"));
    ASSERT_TRUE(sys::Files::write(documents / "toskar" / "h.com" / "t.png", std::string_view("t")));
    advance(60);
    ASSERT_TRUE(save(cut, "http://h.com/x/second.png", ""));
    const std::string second = pathOf(cut);

    advance(8 * kWeek - 30); // the first files are over eight weeks old, the second not yet
    const auto before = detail::CacheSweep::stats();
    for (int shown = 0; shown < 100; ++shown)
        cut.cleanup();
    sys::Queue::waitIdle();
    const auto after = detail::CacheSweep::stats();
    EXPECT_EQ(after.walks - before.walks, 2) << "one walk of each cache folder";
    EXPECT_EQ(after.mainThreadSeconds, before.mainThreadSeconds) << "a walk ran on the main thread";
    EXPECT_FALSE(fs::exists(first));
    EXPECT_FALSE(fs::exists(documents / "toskar" / "h.com" / "t.png"));
    EXPECT_TRUE(fs::exists(second));

    advance(60); // the second file is old now, but the hour is not over
    cut.cleanup();
    sys::Queue::waitIdle();
    EXPECT_TRUE(fs::exists(second));
    advance(detail::CacheSweep::kInterval);
    cut.cleanup();
    sys::Queue::waitIdle();
    EXPECT_FALSE(fs::exists(second));
}

// Bytes that are not a picture are never cached, and no callback runs.
TEST_F(ZBImageCutTest, undecodable_bytes_are_not_saved) {
    ZBImageCut cut;
    cut.setFileName("http://h.com/a/fake.png");
    bool called = false;
    EXPECT_FALSE(cut.saveImage("<html>not found</html>", cut.fileName(), cut.dirName(), "",
                               [&](const gfx::Image&, bool) { called = true; }));
    EXPECT_FALSE(called);
    EXPECT_TRUE(filesBelowRoot().empty());
}

// A reader holding the old file keeps reading all of the old bytes while the
// cache replaces it; new readers get all of the new bytes, never a mix.
TEST_F(ZBImageCutTest, replacement_is_atomic_for_readers_that_hold_the_file) {
    ZBImageCut cut;
    cut.setFileName("http://h.com/a/pic.png");
    const std::string first = pngBytes(300, 300, gfx::Color::redColor());
    const std::string second = pngBytes(200, 100, gfx::Color::blueColor());
    ASSERT_TRUE(cut.saveImage(first, cut.fileName(), cut.dirName(), "", nullptr));
    const std::string path = pathOf(cut);

    const int fd = ::open(path.c_str(), O_RDONLY);
    ASSERT_GE(fd, 0);
    char head[10];
    ASSERT_EQ(::read(fd, head, sizeof head), ssize_t(sizeof head));
    ASSERT_TRUE(cut.saveImage(second, cut.fileName(), cut.dirName(), "", nullptr));
    std::string rest;
    char buffer[4096];
    for (ssize_t n; (n = ::read(fd, buffer, sizeof buffer)) > 0;)
        rest.append(buffer, size_t(n));
    ::close(fd);
    EXPECT_EQ(std::string(head, sizeof head) + rest, first);
    EXPECT_EQ(*sys::Files::read(path), second);
    EXPECT_EQ(filesBelowRoot().size(), 1u) << "no temporary file left behind";
}

// Hostile addresses: whatever the names, nothing is ever written outside the
// cache folders. Unsafe names are refused with a log line; long ones shortened.
TEST_F(ZBImageCutTest, hostile_addresses_never_leave_the_cache_folders) {
    const std::vector<std::string> corpus = {
        "http://h.com/a/..",
        "http://h.com/a/.",
        "..",
        "%2F..%2F..%2Fescape.png",
        "http://h.com/%2e%2e/%2e%2e/x.png",
        "http://h.com/a%252F..%252F..%252Fx.png",
        "http://h.com/a\\..\\..\\x.png",
        std::string("http://h.com/a/x\0y.png", 22),
        "http://h.com/" + std::string(300, 'a') + "/pic.png",
        "http://h.com/a/" + std::string(400, 'b') + ".png",
        "http://h.com/" + std::string(2000, '/') + "x.png",
        "/etc/passwd",
        "file:///etc/passwd",
        "http://h.com/a/pic.png?../../../x",
        "http://h.com/a/%2F%2F%2F",
        "http://h.com/a/%2F..",
    };
    sys::Log::Capture log;
    for (const auto& address : corpus) {
        ZBImageCut cut;
        cut.setFileName(address);
        cut.saveImage(pngBytes(2, 2, gfx::Color::redColor()), cut.fileName(), cut.dirName(), "", nullptr);
    }
    for (const auto& file : filesBelowRoot()) {
        EXPECT_TRUE(file.rfind("Documents/img/", 0) == 0) << file;
        for (const auto& part : fs::path(file))
            EXPECT_LE(part.string().size(), 255u) << file;
    }

    ZBImageCut cut;
    cut.setFileName("http://h.com/a/" + std::string(400, 'b') + ".png");
    EXPECT_TRUE(cut.isCacheable());
    EXPECT_EQ(cut.fileName().size(), 255u);
    EXPECT_TRUE(cut.fileName().ends_with(".png"));
    ZBImageCut other;
    other.setFileName("http://h.com/a/" + std::string(400, 'b') + "c.png");
    EXPECT_NE(cut.fileName(), other.fileName()) << "the hash tells long names apart";

    cut.setDirName("../outside");
    EXPECT_FALSE(cut.isCacheable());
    EXPECT_FALSE(cut.saveImage(pngBytes(2, 2, gfx::Color::redColor()), "x.png", "../outside", "", nullptr));
    EXPECT_FALSE(fs::exists(root / "outside"));
    const auto lines = log.texts();
    EXPECT_TRUE(
        std::ranges::any_of(lines, [](const std::string& l) { return l.starts_with("Picture not cached"); }));
}

// A link planted inside the cache that points elsewhere is not followed.
TEST_F(ZBImageCutTest, links_inside_the_cache_are_not_followed) {
    fs::create_directories(documents / "img");
    fs::create_directories(root / "elsewhere");
    fs::create_directory_symlink(root / "elsewhere", documents / "img" / "a");
    ZBImageCut cut;
    cut.setFileName("http://h.com/a/pic.png");
    EXPECT_FALSE(
        cut.saveImage(pngBytes(2, 2, gfx::Color::redColor()), cut.fileName(), cut.dirName(), "", nullptr));
    EXPECT_TRUE(fs::is_empty(root / "elsewhere"));
}
