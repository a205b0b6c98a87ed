#pragma once
// Dates: reading and writing dates through fixed patterns, shared by the
// picture stamps, the menu screen, the administration panel and the flight
// search. Patterns are ICU/Unicode date patterns used exactly as written.
//
// Machine texts (the "yyyy.MM.dd'T'HH:mm:ss" stamp, the "HHmmsss" clock stamp,
// isValidDateFormat) use the "en_US_POSIX" locale so they never change with the
// user's language; texts shown to people (getFDate, textToDate with a pattern)
// use the current locale. All of them use the current time zone. Both default
// to the system's and can be set, which tests do to pin the results.
//
// Parsing is strict and must consume the whole text: "2024.02.30T..." or a
// trailing character gives nothing. Safe to call from any thread.

#include <morvane/sys/Forward.h>

#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class Dates {
  public:
    Dates() = delete;

    // Dates are the kit's moments: seconds since 1970-01-01 00:00:00 UTC.
    using Time = sys::Date;

    // The picture and record date stamp; compared as text after a 19-character cut.
    static constexpr std::string_view kStamp = "yyyy.MM.dd'T'HH:mm:ss";
    static constexpr std::string_view kDay = "yyyyMMdd";
    // The readable day of the menu screen and the flight search.
    static constexpr std::string_view kShowDay = "dd MMM yyyy, EEE";
    // The readable moment of the administration panel.
    static constexpr std::string_view kShowMoment = "d MMM yyyy HH:mm:ss, EEE";
    // Hours, minutes, then seconds padded to three digits: 14:05:09 is "1405009".
    static constexpr std::string_view kClock = "HHmmsss";

    // The date in a stamp text ("yyyy.MM.dd'T'HH:mm:ss"); nothing if it does not match.
    static std::optional<Time> text(std::string_view s);
    // The day in the first 8 characters of the text ("yyyyMMdd"); a shorter text
    // is read whole. Nothing if it does not match.
    static std::optional<Time> textToDate(std::string_view s);
    // The date read with the pattern in the current locale.
    static std::optional<Time> textToDate(std::string_view s, std::string_view form);
    // The date written with the pattern in the current locale (kShowDay by default).
    static std::string getFDate(Time date, std::string_view pattern = kShowDay);
    // False for an empty text; otherwise whether a strict "en_US_POSIX" parser
    // with the pattern accepts the whole text.
    static bool isValidDateFormat(std::string_view s, std::string_view form);

    // The date written as a stamp, and the current time (the kit's clock) as one.
    static std::string stamp(Time date);
    static std::string stamp();
    // The current time, or the given one, with kClock.
    static std::string getDate();
    static std::string getDate(Time date);
    // The date written with any pattern in "en_US_POSIX" (file names, keys).
    static std::string format(Time date, std::string_view pattern);

    // An Olson identifier such as "Asia/Tokyo"; "" returns to the system's zone.
    // An identifier ICU does not know is ignored (the zone stays as it was).
    static void setTimeZone(std::string_view id);
    // The current time zone's identifier.
    static std::string timeZone();
    // A locale identifier such as "en_US" or "de_DE"; "" returns to the system's.
    static void setLocale(std::string_view id);
    static std::string locale();
};

} // namespace morvane
