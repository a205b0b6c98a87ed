#include <morvane/sys/Notifications.h>

#include <morvane/sys/App.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/Timer.h>

#include <gio/gio.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>
#include <utility>

namespace morvane::sys {

namespace {

constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";

struct Pending {
    std::string identifier;
    NotificationContent content;
    Notifications::Completion completion;
    std::shared_ptr<Timer> timer;
};

struct Centre {
    std::mutex mutex;
    std::vector<Pending> pending; // oldest first
    std::map<std::string, std::string> strings;
    std::set<std::string> missingLogged;
    std::string applicationName;
    std::string busAddress;
    std::chrono::milliseconds timeout{3000};
    std::function<void(const Notifications::Delivery&)> observer;
    // The service's identifiers of what each of our requests last showed, so
    // that a repeating request replaces its own notification on the desktop.
    std::map<std::string, std::uint32_t> shown;
};

Centre& centre() {
    static Centre* instance = new Centre; // used by timers until the very end of the process
    return *instance;
}

// The bus connection lives on the delivery queue only. It is a connection of
// our own rather than GIO's shared one, which ends the program when the bus
// goes away.
struct Connection {
    GDBusConnection* connection = nullptr;
    std::string address;
    ~Connection() { reset(); }
    void reset() {
        if (connection) g_object_unref(connection);
        connection = nullptr;
    }
};

Queue& deliveryQueue() {
    return Queue::serial("org.morvane.notifications");
}

std::string sessionBusAddress(const std::string& chosen) {
    if (!chosen.empty()) return chosen;
    if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address && *address) return address;
    // The session's own bus, where a user session runs one. Otherwise there
    // is none: asking GIO would start one through X11, which a kit must not.
    if (const char* runtime = std::getenv("XDG_RUNTIME_DIR"); runtime && *runtime) {
        std::error_code error;
        const std::filesystem::path socket = std::filesystem::path(runtime) / "bus";
        if (std::filesystem::exists(socket, error)) return "unix:path=" + socket.string();
    }
    return {};
}

std::string takeError(GError* error) {
    std::string text = error && error->message ? error->message : "unknown error";
    if (error) g_error_free(error);
    return text;
}

// Hands one notification to the service; returns its identifier there, or
// sets `error`. Runs on the delivery queue.
std::uint32_t deliver(Connection& link, const std::string& address, const std::string& applicationName,
                      const NotificationContent& content, std::uint32_t replaces, int timeoutMs,
                      std::string& error) {
    if (address.empty()) {
        error = "no session bus (DBUS_SESSION_BUS_ADDRESS is not set and the session has none)";
        return 0;
    }
    if (link.connection && (link.address != address || g_dbus_connection_is_closed(link.connection)))
        link.reset();
    if (!link.connection) {
        GError* failure = nullptr;
        link.connection = g_dbus_connection_new_for_address_sync(
            address.c_str(),
            GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                 G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, &failure);
        if (!link.connection) {
            error = "cannot reach the session bus: " + takeError(failure);
            return 0;
        }
        link.address = address;
    }

    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    if (content.defaultSound)
        g_variant_builder_add(&hints, "{sv}", "sound-name", g_variant_new_string("message-new-instant"));
    GVariantBuilder actions;
    g_variant_builder_init(&actions, G_VARIANT_TYPE("as"));
    // Texts that are not UTF-8 would make GLib refuse to build the message:
    // they are mended instead (GLib's own replacement of bad bytes).
    auto valid = [](const std::string& text) {
        gchar* mended = g_utf8_make_valid(text.c_str(), gssize(text.size()));
        std::string out = mended;
        g_free(mended);
        return out;
    };
    GVariant* parameters =
        g_variant_new("(susssasa{sv}i)", valid(applicationName).c_str(), replaces, "",
                      valid(content.title).c_str(), valid(content.body).c_str(), &actions, &hints, -1);
    GError* failure = nullptr;
    GVariant* reply = g_dbus_connection_call_sync(link.connection, kService, kPath, kService, "Notify",
                                                  parameters, G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE,
                                                  timeoutMs, nullptr, &failure);
    if (!reply) {
        error = takeError(failure);
        return 0;
    }
    std::uint32_t id = 0;
    g_variant_get(reply, "(u)", &id);
    g_variant_unref(reply);
    return id;
}

void fire(Timer& timer, bool repeats) {
    Centre& c = centre();
    std::string identifier;
    NotificationContent content;
    Notifications::Completion completion;
    {
        std::lock_guard lock(c.mutex);
        auto it = std::find_if(c.pending.begin(), c.pending.end(),
                               [&](const Pending& p) { return p.timer.get() == &timer; });
        if (it == c.pending.end()) return; // removed or replaced meanwhile
        identifier = it->identifier;
        content = it->content;
        completion = it->completion;
        if (!repeats) c.pending.erase(it);
    }
    deliveryQueue().async([identifier, content = std::move(content), completion = std::move(completion)] {
        static Connection link; // touched on this queue only
        Centre& c = centre();
        std::string address, applicationName;
        std::uint32_t replaces = 0;
        int timeoutMs = 0;
        std::function<void(const Notifications::Delivery&)> observer;
        {
            std::lock_guard lock(c.mutex);
            address = sessionBusAddress(c.busAddress);
            applicationName = c.applicationName.empty() ? App::identifier() : c.applicationName;
            if (auto it = c.shown.find(identifier); it != c.shown.end()) replaces = it->second;
            timeoutMs = int(c.timeout.count());
            observer = c.observer;
        }
        std::string error;
        const std::uint32_t id = deliver(link, address, applicationName, content, replaces, timeoutMs, error);
        if (id != 0) {
            std::lock_guard lock(c.mutex);
            c.shown[identifier] = id;
        }
        if (observer) observer({identifier, content, applicationName, id, error});
        if (completion) completion(error);
    });
}

} // namespace

void Notifications::add(const std::string& identifier, NotificationContent content, double seconds,
                        bool repeats, Completion completion) {
    std::string refusal;
    if (!std::isfinite(seconds) || seconds <= 0)
        refusal = "the interval must be a positive number of seconds";
    else if (repeats && seconds < 60)
        refusal = "a repeating notification needs an interval of at least 60 seconds";
    if (!refusal.empty()) {
        if (completion)
            deliveryQueue().async([completion = std::move(completion), refusal] { completion(refusal); });
        return;
    }
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    for (auto it = c.pending.begin(); it != c.pending.end();) {
        if (it->identifier != identifier) {
            ++it;
            continue;
        }
        it->timer->invalidate();
        it = c.pending.erase(it);
    }
    // The timer finds its request by itself, so a timer of a replaced request
    // that fires anyway (invalidated off the main thread, racing) finds nothing.
    auto timer = Timer::schedule(seconds, repeats ? Timer::Repeat::Repeating : Timer::Repeat::Once,
                                 [repeats](Timer& fired) { fire(fired, repeats); });
    c.pending.push_back({identifier, std::move(content), std::move(completion), std::move(timer)});
}

void Notifications::removeAllPending() {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    for (Pending& p : c.pending)
        p.timer->invalidate();
    c.pending.clear();
}

std::vector<std::string> Notifications::pendingIdentifiers() {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    std::vector<std::string> out;
    for (const Pending& p : c.pending)
        out.push_back(p.identifier);
    return out;
}

void Notifications::setStrings(std::map<std::string, std::string> table) {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    c.strings = std::move(table);
    c.missingLogged.clear();
}

std::string Notifications::localizedString(const std::string& key) {
    Centre& c = centre();
    std::unique_lock lock(c.mutex);
    if (auto it = c.strings.find(key); it != c.strings.end()) return it->second;
    const bool first = c.missingLogged.insert(key).second;
    lock.unlock();
    if (first)
        Log::platform("Notifications: no text for \"" + key +
                      "\" in the application's table of notification texts; the key is shown instead");
    return key;
}

void Notifications::setApplicationName(std::string name) {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    c.applicationName = std::move(name);
}

void Notifications::setServiceTimeout(std::chrono::milliseconds timeout) {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    c.timeout = std::max(timeout, std::chrono::milliseconds(1));
}

void Notifications::setBusAddress(std::string address) {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    c.busAddress = std::move(address);
}

void Notifications::setDeliveryObserver(std::function<void(const Delivery&)> observer) {
    Centre& c = centre();
    std::lock_guard lock(c.mutex);
    c.observer = std::move(observer);
}

} // namespace morvane::sys
