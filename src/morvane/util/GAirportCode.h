#pragma once
// GAirportCode: the small values about the device and the traveller that must
// survive a restart (push token, chosen airport city, airport list, manual
// payment setting). They live in the application's settings store under fixed
// keys and every save is written through at once.
//
// All operations are static and safe from any thread; sharedInstance exists
// for code that wants an object and holds no state.

#include <morvane/model/Value.h>

#include <optional>
#include <string>
#include <string_view>

namespace morvane {

class GAirportCode {
  public:
    // The keys in the settings store.
    static constexpr std::string_view kDeviceToken = "deviceTokenSave";
    static constexpr std::string_view kAirportCity = "airportCity";
    static constexpr std::string_view kAirportMutable = "airportMutable";
    static constexpr std::string_view kApplePay = "apple-pay-manual";

    // The once-made shared instance (thread-safe).
    static GAirportCode& sharedInstance();

    static void deviceTokenSave(std::string_view token);
    // The stored token, or nothing.
    static std::optional<std::string> deviceToken();

    // Stores the text's last piece after "/": "World/THA/Bangkok" stores "Bangkok".
    static void airportCitySave(std::string_view city);
    // The stored city in lower case; with none stored, the last piece of the
    // application identifier after "." as it stands ("com.example.Osaka" gives "Osaka").
    static std::string airportCity();

    // Any NodeTree value, normally the list of airport Nodes; the absent value removes it.
    static void airportMutableSave(const Value& airports);
    // The stored value, or the absent value.
    static Value airportMutable();

    static void applePaySave(const Value& setting);
    // The stored text, or nothing (also when what is stored is not a text).
    static std::optional<std::string> applePayRead();

  private:
    GAirportCode() = default;
};

} // namespace morvane
