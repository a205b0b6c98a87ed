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
    const struct {
        const char* zone;
        const char* text;
    } cases[] = {
        {"UTC", "2024.01.31T14:30:05"},
        {"Asia/Tokyo", "2024.01.31T23:30:05"},
        {"America/Los_Angeles", "2024.01.31T06:30:05"},
        {"Asia/Kolkata", "2024.01.31T20:00:05"},
        {"Pacific/Kiritimati", "2024.02.01T04:30:05"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.zone);
        Dates::setTimeZone(c.zone);
        EXPECT_EQ(Dates::timeZone(), c.zone);
        EXPECT_EQ(Dates::stamp(moment), c.text);
        ASSERT_EQ(Dates::text(c.text), moment);
        EXPECT_EQ(Dates::stamp(*Dates::text(c.text)), c.text);
    }
}

TEST_F(DatesTest, the_same_wall_time_is_a_different_moment_per_zone) {
    Dates::setTimeZone("Asia/Tokyo");
    const auto tokyo = Dates::text("2024.07.01T12:00:00");
    Dates::setTimeZone("Europe/Berlin");
    const auto berlin = Dates::text("2024.07.01T12:00:00");
    ASSERT_TRUE(tokyo && berlin);
    EXPECT_EQ(*berlin - *tokyo, 7 * 3600.0); // summer time in Berlin: UTC+2 against UTC+9
}

TEST_F(DatesTest, stamp_parsing_is_strict_and_whole) {
    EXPECT_FALSE(Dates::text(""));
    EXPECT_FALSE(Dates::text("2024.02.30T10:00:00"));     // no such day
    EXPECT_FALSE(Dates::text("2024.01.31T24:00:00"));     // no such hour
    EXPECT_FALSE(Dates::text("2024.01.31T10:00:00Z"));    // trailing text
    EXPECT_FALSE(Dates::text("2024-01-31T10:00:00"));     // wrong separators
    EXPECT_FALSE(Dates::text("2024.01.31"));              // incomplete
    EXPECT_FALSE(Dates::text("2024.01.31T10:00:00\xff")); // ill-formed byte, replaced
    EXPECT_TRUE(Dates::text("2024.02.29T00:00:00"));      // leap day
}

TEST_F(DatesTest, skipped_local_times_are_not_valid) {
    // 02:30 did not happen in Los Angeles on 10 March 2024 (clocks went forward).
    Dates::setTimeZone("America/Los_Angeles");
    EXPECT_FALSE(Dates::isValidDateFormat("2024.03.10T02:30:00", Dates::kStamp));
    EXPECT_TRUE(Dates::isValidDateFormat("2024.03.10T03:30:00", Dates::kStamp));
    Dates::setTimeZone("Asia/Tokyo");
    EXPECT_TRUE(Dates::isValidDateFormat("2024.03.10T02:30:00", Dates::kStamp));
}

TEST_F(DatesTest, textToDate_reads_only_the_day_prefix) {
    EXPECT_EQ(Dates::textToDate("20240131extra"), utc(2024y / January / 31));
    EXPECT_EQ(Dates::textToDate("20240131T10:00:00"), utc(2024y / January / 31));
    EXPECT_EQ(Dates::textToDate("20240131"), utc(2024y / January / 31));
    EXPECT_FALSE(Dates::textToDate(""));
    EXPECT_FALSE(Dates::textToDate("2024"));
    EXPECT_FALSE(Dates::textToDate("20241331"));
    EXPECT_FALSE(Dates::textToDate("abcdefgh"));
    // The eighth unit is half of a surrogate pair: replaced, so no day.
    EXPECT_FALSE(Dates::textToDate("2024013😀"));
    Dates::setTimeZone("Asia/Tokyo");
    EXPECT_EQ(Dates::textToDate("20240131"), utc(2024y / January / 30, 15h));
}

TEST_F(DatesTest, shown_dates_follow_the_locale_and_round_trip) {
    const auto day = utc(2024y / January / 31, 9h + 5min + 7s);
    EXPECT_EQ(Dates::getFDate(day), "31 Jan 2024, Wed");
    EXPECT_EQ(Dates::getFDate(utc(1990y / January / 1, 1h + 1min + 1s), Dates::kShowMoment),
              "1 Jan 1990 01:01:01, Mon");

    for (const char* locale : {"en_US", "de_DE", "fr_FR", "ja_JP"}) {
        SCOPED_TRACE(locale);
        Dates::setLocale(locale);
        EXPECT_EQ(Dates::locale(), locale);
        for (const char* zone : {"UTC", "America/New_York", "Australia/Adelaide"}) {
            SCOPED_TRACE(zone);
            Dates::setTimeZone(zone);
            const auto shown = Dates::getFDate(day, Dates::kShowMoment);
            EXPECT_EQ(Dates::textToDate(shown, Dates::kShowMoment), day) << shown;
        }
    }
    Dates::setLocale("de_DE");
    Dates::setTimeZone("UTC");
    EXPECT_NE(Dates::getFDate(day), "31 Jan 2024, Wed");
}

TEST_F(DatesTest, isValidDateFormat_is_posix_strict_and_refuses_empty_text) {
    EXPECT_FALSE(Dates::isValidDateFormat("", Dates::kStamp));
    EXPECT_FALSE(Dates::isValidDateFormat("", ""));
    EXPECT_TRUE(Dates::isValidDateFormat("1990.01.01T01:01:01", Dates::kStamp));
    EXPECT_FALSE(Dates::isValidDateFormat("1990.1.1T1:1:1x", Dates::kStamp));
    EXPECT_FALSE(Dates::isValidDateFormat("Tokyo", Dates::kStamp));
    // Month names are read in English whatever the current locale is.
    Dates::setLocale("de_DE");
    EXPECT_TRUE(Dates::isValidDateFormat("31 Dec 2024", "dd MMM yyyy"));
    EXPECT_FALSE(Dates::isValidDateFormat("31 Dez. 2024", "dd MMM yyyy"));
}

TEST_F(DatesTest, odd_patterns_neither_fail_nor_invent_dates) {
    // ICU skips letters that are no pattern field and reads an open quote to the end.
    const auto day = utc(2024y / January / 31);
    EXPECT_EQ(Dates::getFDate(day, "jjj"), "");
    EXPECT_EQ(Dates::getFDate(day, "yyyy 'open quote"), "2024 open quote");
    EXPECT_EQ(Dates::getFDate(day, ""), "");
    EXPECT_FALSE(Dates::textToDate("x", "jjj"));
    EXPECT_FALSE(Dates::textToDate("", ""));
    EXPECT_FALSE(Dates::isValidDateFormat("x", ""));
}

TEST_F(DatesTest, clock_stamp_pads_seconds_to_three_digits) {
    EXPECT_EQ(Dates::getDate(utc(2024y / May / 5, 14h + 5min + 9s)), "1405009");
    EXPECT_EQ(Dates::getDate(utc(2024y / May / 5, 0s)), "0000000");
    EXPECT_EQ(Dates::getDate(utc(2024y / May / 5, 23h + 59min + 59s)), "2359059");
    Dates::setTimeZone("Asia/Kolkata");
    EXPECT_EQ(Dates::getDate(utc(2024y / May / 5, 14h + 5min + 9s)), "1935009");
    EXPECT_EQ(Dates::getDate().size(), 7u);
    EXPECT_EQ(Dates::format(utc(2024y / May / 5, 14h + 5min + 9s), "yyyyMMddHHmmsss"), "202405051935009");
}

TEST_F(DatesTest, unknown_zones_are_ignored) {
    Dates::setTimeZone("Asia/Tokyo");
    Dates::setTimeZone("Mars/Olympus_Mons");
    EXPECT_EQ(Dates::timeZone(), "Asia/Tokyo");
}

TEST_F(DatesTest, current_stamps_read_the_kits_clock) {
    morvane::sys::Clock::useManual(utc(2024y / March / 3, 8h + 7min + 6s));
    Dates::setTimeZone("Asia/Tokyo");
    EXPECT_EQ(morvane::Txt::getName("photo-"), "photo-2024.03.03T17:07:06");
    EXPECT_EQ(Dates::stamp(), "2024.03.03T17:07:06");
    EXPECT_EQ(Dates::getDate(), "1707006");
    morvane::sys::Clock::useReal();
    // Back on the real clock the stamp is today's, in the stamp's own pattern.
    EXPECT_TRUE(Dates::isValidDateFormat(morvane::Txt::getName(""), Dates::kStamp));
}

} // namespace
