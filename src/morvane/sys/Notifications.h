#pragma once
// Local notifications: a request (an identifier, a title, a body, a sound)
// scheduled to be shown after an interval on the kit's clock, and then handed
// to the desktop's notification service (org.freedesktop.Notifications on the
// session bus).
//
//   sys::Notifications::removeAllPending();
//   sys::Notifications::add("FiveSecond",
//                           {.title = sys::Notifications::localizedString("arrived"),
//                            .body = sys::Notifications::localizedString("arrived-body")},
//                           5.0, false, [](const std::string& error) { ... });
//
// Requests wait on the kit's clock, so on the manual clock a test or a
// scripted tour decides when they fire. A request added under the identifier
// of a pending one replaces it. When one fires, the call to the service is
// made on a queue of its own with a short timeout, so a service that never
// answers holds up nothing but later notifications.
//
// The session bus is the one DBUS_SESSION_BUS_ADDRESS names, else the
// session's own ($XDG_RUNTIME_DIR/bus); without either there is no bus, and
// the kit never starts one. Everything here is safe from any thread.

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace morvane::sys {

struct NotificationContent {
    std::string title;
    std::string body;
    // The desktop's sound for a new message, where the service plays sounds.
    bool defaultSound = true;
};

class Notifications {
  public:
    Notifications() = delete;

    // Runs on the notifications' own queue once a fired request has been
    // handed to the service: an empty text when the service took it, else
    // what went wrong (no bus, no service, a refusal, no answer in time). A
    // request removed or replaced before it fires never completes.
    using Completion = std::function<void(const std::string& error)>;

    // Schedules `content` under `identifier`, to be shown `seconds` from now
    // (and every `seconds` after that when `repeats`). A request with the same
    // identifier still waiting is replaced. An interval that is not a
    // positive number (or under a minute for a repeating request, so that a
    // desktop is not flooded) completes at once with the reason.
    static void add(const std::string& identifier, NotificationContent content, double seconds, bool repeats,
                    Completion completion = {});
    // Forgets every request still waiting; nothing already shown is taken back.
    static void removeAllPending();
    // The identifiers of the requests still waiting, oldest first.
    static std::vector<std::string> pendingIdentifiers();

    // The application's table of notification texts by key. A key missing
    // from it is shown as itself, and logged once.
    static void setStrings(std::map<std::string, std::string> table);
    static std::string localizedString(const std::string& key);

    // The name the service shows the notification under; the application's
    // identifier until one is set.
    static void setApplicationName(std::string name);
    // How long a delivery waits for the service's answer (3 seconds by default).
    static void setServiceTimeout(std::chrono::milliseconds timeout);
    // The bus to deliver on, as a D-Bus address; empty returns to the
    // session's. For tests and applications that run a bus of their own.
    static void setBusAddress(std::string address);

    // What was handed to the service, for an application that wants to show
    // it too (the gallery does): called on the notifications' queue after
    // every delivery, with the service's identifier of the notification (0
    // when it was not shown).
    struct Delivery {
        std::string identifier;
        NotificationContent content;
        std::string applicationName;
        std::uint32_t serviceId = 0;
        std::string error;
    };
    static void setDeliveryObserver(std::function<void(const Delivery&)> observer);
};

} // namespace morvane::sys
