#pragma once
// Txt: the small text operations that components and applications share
// (debug lines, price and phone clean-up, flight-number formatting while the
// user types, splitting, removal of parenthesised remarks, capitalisation,
// lower-case storage paths from display labels).
//
// Every operation is a static member named after the kit's operation, with the
// text it works on first and the selector's arguments after it, so a call reads
// like the operation: `Txt::splitBy("a-b-c", "-")`, `Txt::cap("new york", " ")`,
// `Txt::acceptChr(s, 0, 2)`. The colour and date groups (`Colors`, `Dates`,
// `GColor`) follow the same shape.
//
// Texts are UTF-8. Where an operation counts characters it counts UTF-16 code
// units, so a character outside the Basic Multilingual Plane counts twice and a
// cut between its two halves leaves U+FFFD. Ill-formed UTF-8 in a receiver or
// argument is read as U+FFFD; no operation fails or throws.

#include <morvane/model/Forward.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace morvane {

class Txt {
  public:
    Txt() = delete;

    // ---- Debug lines -----------------------------------------------------------

    // Writes "<tag> <file>@<line>: <text>\n" to standard error; the tag defaults
    // to "-zd", the file is the path's last piece after "/" ("" without a path).
    static void println(std::string_view text, std::optional<std::string_view> tag,
                        std::optional<std::string_view> fname, std::int64_t line);
    // Writes "zed <file>:<line>><text>" to the platform log (which stamps it).
    static void printIt(std::string_view text, std::string_view fname, std::int32_t lineNo);

    // ---- Paths and prices ------------------------------------------------------

    // The realtime-database base address, "/" and the text. The address is the
    // application's setting (see setRealtimeBase); "" while none is set.
    static std::string attachURL(std::string_view text);
    // Stores the realtime-database base address in the application's settings;
    // trailing "/" characters are dropped so that attachURL joins with one "/".
    static void setRealtimeBase(std::string_view url);
    static std::string realtimeBase();

    // The characters of the text that occur in "0123456789.", in order.
    static std::string toPrice(std::string_view text);
    // The text followed by the current local time as "yyyy.MM.dd'T'HH:mm:ss".
    static std::string getName(std::string_view text);

    // ---- Splitting -------------------------------------------------------------
    // An empty separator splits nothing: the text is one piece.

    // The last piece after splitting at the separator; the text without one.
    static std::string splitBy(std::string_view text, std::string_view separator);
    static std::string splitLastBy(std::string_view text, std::string_view separator);
    // Everything after the first separator, with leading empty pieces dropped
    // (the NodeTree's splitBy); the text itself when it holds no separator.
    static std::string DELsplitBy(std::string_view text, std::string_view separator);
    // The piece before the first separator; the text without one.
    static std::string prefix(std::string_view text, std::string_view separator);

    // ---- Clean-up and case -----------------------------------------------------

    // Removes every "(...)" group with at least one character inside; the blank
    // in front of a group stays.
    static std::string removeParen(std::string_view text);
    // Removes white space and line breaks at both ends.
    static std::string trim(std::string_view text);
    // Title-cases every piece between separators (each word's first letter upper
    // case, the rest lower case) and joins them again; an empty first piece
    // drops the separator that followed it.
    static std::string cap(std::string_view text, std::string_view separator);
    // Lower-case two-level storage path "a/b" from two "n-Label" labels, e.g.
    // ("1-Japan", "2-Tokyo (Haneda)") gives "japan/tokyo_".
    static std::string attach(std::string_view text, std::string_view other);
    // Lower-case path from a label and a list of labels; a label holding "." is
    // appended without "/" (a file extension), e.g. ("World", {"THA",
    // "1-Bangkok", ".jpg"}) gives "world/tha/bangkok.jpg".
    static std::string attachArray(std::string_view text, const std::vector<std::string>& labels);
    // The same over a NodeTree list; elements that are not texts are skipped.
    static std::string attachArray(std::string_view text, const ListPtr& labels);

    // ---- Typing formats --------------------------------------------------------

    // "as1144" gives "AS 1144": blanks removed, the first two characters are the
    // airline (when at least three remain), the rest the number, both upper case.
    static std::string flightFormat(std::string_view text);
    // "1234567890" gives "123 456-7890"; only digits and "." are kept, ten at most.
    static std::string phoneFormat(std::string_view text);
    // The characters of s at positions min to max inclusive; out of range selects nothing.
    static std::string acceptChr(std::string_view s, std::int64_t min, std::int64_t max);
    // The characters of s that pass charOK.
    static std::string acceptOnly(std::string_view s);
    // True when the text is exactly one of the characters "0123456789.".
    static bool charOK(std::string_view character);
};

} // namespace morvane
