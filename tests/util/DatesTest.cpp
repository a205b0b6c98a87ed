// Stamps, shown dates and clock stamps in several zones and locales: the
// strict parsing, the day prefix, and the kit's own clock.
#include <morvane/sys/Clock.h>
#include <morvane/util/Dates.h>
#include <morvane/util/Txt.h>

#include <gtest/gtest.h>

#include <chrono>
#include <string>

using morvane::Dates;
using namespace std::chrono;
using namespace std::chrono_literals;

namespace {

// A moment from a UTC calendar day and time of day, as the kit's seconds since 1970.
Dates::Time utc(year_month_day day, seconds time = 0s) {
    return static_cast<double>((sys_days(day) + time).time_since_epoch().count());
}

// Every test pins zone and locale, and puts the system's back afterwards.
class DatesTest : public testing::Test {
  protected:
    void SetUp() override {
        Dates::setTimeZone("UTC");
        Dates::setLocale("en_US");
    }
    void TearDown() override {
        Dates::setTimeZone("");
        Dates::setLocale("");
    }
};

TEST_F(DatesTest, stamps_round_trip_in_several_time_zones) {
    const auto moment = utc(2024y / January / 31, 14h + 30min + 5s);
    const std::pair<const char*, const char*> cases[] = {
        {"UTC", "2024.01.31T14:30:05"},
        {"Asia/Tokyo", "2024.01.31T23:30:05"},
        {"America/Los_Angeles", "2024.01.31T06:30:05"},
        {"Asia/Kolkata", "2024.01.31T20:00:05"},
        {"Pacific/Kiritimati", "2024.02.01T04:30:05"},
    };
    for (const auto& [zone, text] : cases) {
        SCOPED_TRACE(zone);
        Dates::setTimeZone(zone);
        EXPECT_EQ(Dates::stamp(moment), text);
        EXPECT_EQ(Dates::text(text), moment);
    }
    Dates::setTimeZone("Mars/Olympus_Mons"); // unknown: ignored
    EXPECT_EQ(Dates::timeZone(), "Pacific/Kiritimati");
}

// Parsing is strict and whole, POSIX-strict for other formats, and reads
// month names in English whatever the locale.
TEST_F(DatesTest, stamp_parsing_is_strict_and_whole) {
    EXPECT_FALSE(Dates::text(""));
    EXPECT_FALSE(Dates::text("2024.02.30T10:00:00"));     // no such day
    EXPECT_FALSE(Dates::text("2024.01.31T24:00:00"));     // no such hour
    EXPECT_FALSE(Dates::text("2024.01.31T10:00:00Z"));    // trailing text
    EXPECT_FALSE(Dates::text("2024.01.31T10:00:00\xff")); // ill-formed byte, replaced
    EXPECT_TRUE(Dates::text("2024.02.29T00:00:00"));      // leap day
    // 02:30 did not happen in Los Angeles on 10 March 2024 (clocks went forward).
    Dates::setTimeZone("America/Los_Angeles");
    EXPECT_FALSE(Dates::isValidDateFormat("2024.03.10T02:30:00", Dates::kStamp));
    Dates::setTimeZone("Asia/Tokyo");
    EXPECT_TRUE(Dates::isValidDateFormat("2024.03.10T02:30:00", Dates::kStamp));

    EXPECT_FALSE(Dates::isValidDateFormat("", Dates::kStamp));
    EXPECT_FALSE(Dates::isValidDateFormat("", ""));
    EXPECT_FALSE(Dates::isValidDateFormat("Tokyo", Dates::kStamp));
    EXPECT_FALSE(Dates::isValidDateFormat("x", "jjj")); // ICU drops unknown pattern letters
    Dates::setLocale("de_DE");
    EXPECT_TRUE(Dates::isValidDateFormat("31 Dec 2024", "dd MMM yyyy"));
    EXPECT_FALSE(Dates::isValidDateFormat("31 Dez. 2024", "dd MMM yyyy"));
}

TEST_F(DatesTest, textToDate_reads_only_the_day_prefix) {
    EXPECT_EQ(Dates::textToDate("20240131extra"), utc(2024y / January / 31));
    EXPECT_EQ(Dates::textToDate("20240131T10:00:00"), utc(2024y / January / 31));
    EXPECT_FALSE(Dates::textToDate(""));
    EXPECT_FALSE(Dates::textToDate("2024"));
    EXPECT_FALSE(Dates::textToDate("20241331"));
    EXPECT_FALSE(Dates::textToDate("2024013😀")); // the cut halves the pair: replaced, no day
    Dates::setTimeZone("Asia/Tokyo");
    EXPECT_EQ(Dates::textToDate("20240131"), utc(2024y / January / 30, 15h));
}

TEST_F(DatesTest, shown_dates_follow_the_locale_and_round_trip) {
    const auto day = utc(2024y / January / 31, 9h + 5min + 7s);
    EXPECT_EQ(Dates::getFDate(day), "31 Jan 2024, Wed");
    EXPECT_EQ(Dates::getFDate(utc(1990y / January / 1, 1h + 1min + 1s), Dates::kShowMoment),
              "1 Jan 1990 01:01:01, Mon");
    for (const char* locale : {"de_DE", "fr_FR", "ja_JP"}) {
        Dates::setLocale(locale);
        EXPECT_NE(Dates::getFDate(day), "31 Jan 2024, Wed") << locale;
        for (const char* zone : {"UTC", "America/New_York", "Australia/Adelaide"}) {
            Dates::setTimeZone(zone);
            const auto shown = Dates::getFDate(day, Dates::kShowMoment);
            EXPECT_EQ(Dates::textToDate(shown, Dates::kShowMoment), day)
                << locale << " " << zone << " " << shown;
        }
    }
}

// Clock stamps pad seconds to three digits; without a moment they read the
// kit's clock, as do the names made from the moment.
TEST_F(DatesTest, clock_stamps_pad_seconds_to_three_digits_and_read_the_kits_clock) {
    EXPECT_EQ(Dates::getDate(utc(2024y / May / 5, 14h + 5min + 9s)), "1405009");
    EXPECT_EQ(Dates::getDate(utc(2024y / May / 5, 23h + 59min + 59s)), "2359059");
    Dates::setTimeZone("Asia/Kolkata");
    EXPECT_EQ(Dates::format(utc(2024y / May / 5, 14h + 5min + 9s), "yyyyMMddHHmmsss"), "202405051935009");
    morvane::sys::Clock::useManual(utc(2024y / March / 3, 8h + 7min + 6s));
    Dates::setTimeZone("Asia/Tokyo");
    EXPECT_EQ(morvane::Txt::getName("photo-"), "photo-2024.03.03T17:07:06");
    EXPECT_EQ(Dates::getDate(), "1707006");
    morvane::sys::Clock::useReal();
}

} // namespace
