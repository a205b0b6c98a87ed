#include <morvane/sys/Clock.h>
#include <morvane/util/Dates.h>
#include <morvane/util/detail/Unicode.h>

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <tuple>

namespace morvane {

namespace {

constexpr const char* kPosix = "en_US_POSIX";

// The settable zone and locale. Formatters are costly to build, so each thread
// keeps the ones it used; a change of zone or locale bumps the generation and
// every thread drops its formatters on its next call.
struct Settings {
    std::mutex mutex;
    std::string zone;   // "" = the system's
    std::string locale; // "" = the system's
    std::atomic<unsigned> generation{0};
};

Settings& settings() {
    static Settings s;
    return s;
}

enum class Which { Posix, Current };

struct FormatterCache {
    unsigned generation = ~0u;
    std::map<std::tuple<std::string, Which>, std::unique_ptr<icu::SimpleDateFormat>> formatters;
};

// The formatter for a pattern, or nullptr when ICU refuses the pattern.
icu::SimpleDateFormat* formatter(std::string_view pattern, Which which) {
    thread_local FormatterCache cache;
    auto& s = settings();
    const unsigned generation = s.generation.load(std::memory_order_acquire);
    if (cache.generation != generation) {
        cache.formatters.clear();
        cache.generation = generation;
    }
    auto key = std::make_tuple(std::string(pattern), which);
    auto it = cache.formatters.find(key);
    if (it != cache.formatters.end()) return it->second.get();

    std::string zone, localeId;
    {
        std::lock_guard lock(s.mutex);
        zone = s.zone;
        localeId = s.locale;
    }
    icu::Locale locale = which == Which::Posix ? icu::Locale(kPosix)
                         : localeId.empty()    ? icu::Locale::getDefault()
                                               : icu::Locale(localeId.c_str());
    UErrorCode status = U_ZERO_ERROR;
    auto made = std::make_unique<icu::SimpleDateFormat>(detail::toUtf16(pattern), locale, status);
    if (U_FAILURE(status)) made.reset();
    if (made) {
        made->setLenient(false);
        made->adoptTimeZone(zone.empty() ? icu::TimeZone::createDefault()
                                         : icu::TimeZone::createTimeZone(detail::toUtf16(zone)));
    }
    auto* result = made.get();
    cache.formatters.emplace(std::move(key), std::move(made));
    return result;
}

UDate toUDate(Dates::Time t) {
    return t * 1000.0;
}
Dates::Time fromUDate(UDate d) {
    return d / 1000.0;
}

std::optional<Dates::Time> parse(std::string_view s, std::string_view pattern, Which which) {
    auto* f = formatter(pattern, which);
    if (!f) return std::nullopt;
    const auto text = detail::toUtf16(s);
    // ICU reports success for an empty text; no date is written as nothing.
    if (text.isEmpty()) return std::nullopt;
    icu::ParsePosition position(0);
    const UDate date = f->parse(text, position);
    if (position.getErrorIndex() >= 0 || position.getIndex() != text.length()) return std::nullopt;
    return fromUDate(date);
}

std::string write(Dates::Time date, std::string_view pattern, Which which) {
    auto* f = formatter(pattern, which);
    if (!f) return {};
    icu::UnicodeString out;
    icu::FieldPosition position;
    UErrorCode status = U_ZERO_ERROR;
    f->format(toUDate(date), out, position, status);
    return U_FAILURE(status) ? std::string() : detail::toUtf8(out);
}

} // namespace

std::optional<Dates::Time> Dates::text(std::string_view s) {
    return parse(s, kStamp, Which::Posix);
}

std::optional<Dates::Time> Dates::textToDate(std::string_view s) {
    // Only the day counts: anything after "yyyyMMdd" (a time part) is cut off.
    auto text = detail::toUtf16(s);
    if (text.length() > static_cast<int32_t>(kDay.size())) text.truncate(static_cast<int32_t>(kDay.size()));
    return parse(detail::toUtf8(text), kDay, Which::Current);
}

std::optional<Dates::Time> Dates::textToDate(std::string_view s, std::string_view form) {
    return parse(s, form, Which::Current);
}

std::string Dates::getFDate(Time date, std::string_view pattern) {
    return write(date, pattern, Which::Current);
}

bool Dates::isValidDateFormat(std::string_view s, std::string_view form) {
    if (s.empty()) return false;
    return parse(s, form, Which::Posix).has_value();
}

std::string Dates::stamp(Time date) {
    return write(date, kStamp, Which::Posix);
}
std::string Dates::stamp() {
    return stamp(sys::Clock::date());
}
std::string Dates::getDate() {
    return getDate(sys::Clock::date());
}
std::string Dates::getDate(Time date) {
    return write(date, kClock, Which::Posix);
}
std::string Dates::format(Time date, std::string_view pattern) {
    return write(date, pattern, Which::Posix);
}

void Dates::setTimeZone(std::string_view id) {
    if (!id.empty()) {
        std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createTimeZone(detail::toUtf16(id)));
        if (!zone || *zone == icu::TimeZone::getUnknown()) return;
    }
    auto& s = settings();
    std::lock_guard lock(s.mutex);
    s.zone = std::string(id);
    s.generation.fetch_add(1, std::memory_order_acq_rel);
}

std::string Dates::timeZone() {
    auto& s = settings();
    {
        std::lock_guard lock(s.mutex);
        if (!s.zone.empty()) return s.zone;
    }
    std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
    icu::UnicodeString id;
    zone->getID(id);
    return detail::toUtf8(id);
}

void Dates::setLocale(std::string_view id) {
    auto& s = settings();
    std::lock_guard lock(s.mutex);
    s.locale = std::string(id);
    s.generation.fetch_add(1, std::memory_order_acq_rel);
}

std::string Dates::locale() {
    auto& s = settings();
    std::lock_guard lock(s.mutex);
    return s.locale.empty() ? std::string(icu::Locale::getDefault().getName()) : s.locale;
}

} // namespace morvane
