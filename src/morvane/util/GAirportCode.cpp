#include <morvane/sys/App.h>
#include <morvane/sys/Settings.h>
#include <morvane/util/GAirportCode.h>
#include <morvane/util/Txt.h>
#include <morvane/util/detail/Unicode.h>

#include <unicode/locid.h>

namespace morvane {

namespace {

void save(std::string_view key, const Value& value) {
    auto store = sys::Settings::standard();
    store->setValue(key, value);
    store->synchronize();
}

} // namespace

GAirportCode& GAirportCode::sharedInstance() {
    static GAirportCode instance;
    return instance;
}

void GAirportCode::deviceTokenSave(std::string_view token) {
    save(kDeviceToken, Value(token));
}

std::optional<std::string> GAirportCode::deviceToken() {
    return sys::Settings::standard()->text(kDeviceToken);
}

void GAirportCode::airportCitySave(std::string_view city) {
    save(kAirportCity, Value(Txt::splitBy(city, "/")));
}

std::string GAirportCode::airportCity() {
    if (auto city = sys::Settings::standard()->text(kAirportCity)) {
        // The root locale, so a Turkish user's "ISTANBUL" does not become "ıstanbul".
        auto text = detail::toUtf16(*city);
        text.toLower(icu::Locale::getRoot());
        return detail::toUtf8(text);
    }
    return Txt::splitBy(sys::App::identifier(), ".");
}

void GAirportCode::airportMutableSave(const Value& airports) {
    save(kAirportMutable, airports);
}

Value GAirportCode::airportMutable() {
    return sys::Settings::standard()->value(kAirportMutable);
}

void GAirportCode::applePaySave(const Value& setting) {
    save(kApplePay, setting);
}

std::optional<std::string> GAirportCode::applePayRead() {
    return sys::Settings::standard()->text(kApplePay);
}

} // namespace morvane
