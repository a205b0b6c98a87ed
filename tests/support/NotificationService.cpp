#include "NotificationService.h"

#include <gio/gio.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <future>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace morvane::test {

namespace {

// A bus that lets anyone own any name and call anything, and starts no
// services: only what the test puts on it is there.
constexpr const char* kConfig =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

constexpr const char* kIntrospection = R"(<node>
  <interface name="org.freedesktop.Notifications">
    <method name="Notify">
      <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
      <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
    </method>
    <method name="GetCapabilities"><arg type="as" direction="out"/></method>
    <method name="GetServerInformation">
      <arg type="s" direction="out"/><arg type="s" direction="out"/>
      <arg type="s" direction="out"/><arg type="s" direction="out"/>
    </method>
  </interface>
</node>)";

} // namespace

PrivateBus::PrivateBus() {
    char pattern[] = "/tmp/morvane-bus-XXXXXX.conf";
    const int file = ::mkstemps(pattern, 5);
    if (file < 0) {
        why_ = std::string("cannot write the bus configuration: ") + std::strerror(errno);
        return;
    }
    config_ = pattern;
    (void)!::write(file, kConfig, std::strlen(kConfig));
    ::close(file);

    int out[2];
    if (::pipe2(out, O_CLOEXEC) != 0) {
        why_ = "no pipe";
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    // As root it warns that it cannot raise its file limit; a daemon that
    // fails to start shows as an address never printed.
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    const std::string configArg = "--config-file=" + config_;
    const char* argv[] = {"dbus-daemon", configArg.c_str(), "--nofork", "--print-address=1", nullptr};
    const int spawned =
        ::posix_spawnp(&pid_, "dbus-daemon", &actions, nullptr, const_cast<char* const*>(argv), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    if (spawned != 0) {
        pid_ = -1;
        ::close(out[0]);
        why_ = std::string("cannot start dbus-daemon: ") + std::strerror(spawned);
        return;
    }
    // The daemon prints its address once it listens.
    std::string line;
    pollfd wait{out[0], POLLIN, 0};
    char buffer[256];
    while (line.find('\n') == std::string::npos && ::poll(&wait, 1, 10000) > 0) {
        const ssize_t got = ::read(out[0], buffer, sizeof buffer);
        if (got <= 0) break;
        line.append(buffer, std::size_t(got));
    }
    ::close(out[0]);
    if (line.find('\n') == std::string::npos) {
        why_ = "dbus-daemon did not say its address";
        return;
    }
    address_ = line.substr(0, line.find('\n'));
}

PrivateBus::~PrivateBus() {
    if (pid_ > 0) {
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    if (!config_.empty()) std::filesystem::remove(config_);
}

struct NotificationService::State {
    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    std::vector<Received> received;
    std::vector<GDBusMethodInvocation*> unanswered;
    bool silent = false;
    std::uint32_t nextId = 1;
    GMainContext* context = nullptr;
    GMainLoop* loop = nullptr;
};

namespace {

void onCall(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
            GVariant* parameters, GDBusMethodInvocation* invocation, gpointer data) {
    auto* state = static_cast<NotificationService::State*>(data);
    const std::string name = method;
    if (name == "GetCapabilities") {
        const gchar* capabilities[] = {"body", "sound", nullptr};
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(^as)", capabilities));
        return;
    }
    if (name == "GetServerInformation") {
        g_dbus_method_invocation_return_value(
            invocation, g_variant_new("(ssss)", "stand-in", "morvane tests", "1", "1.2"));
        return;
    }
    NotificationService::Received got;
    const gchar *app = nullptr, *icon = nullptr, *summary = nullptr, *body = nullptr;
    GVariantIter* actions = nullptr;
    GVariantIter* hints = nullptr;
    gint32 expire = 0;
    g_variant_get(parameters, "(&su&s&s&sasa{sv}i)", &app, &got.replaces, &icon, &summary, &body, &actions,
                  &hints, &expire);
    got.applicationName = app;
    got.summary = summary;
    got.body = body;
    const gchar* key = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(hints, "{&sv}", &key, &value)) {
        if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING))
            got.hints[key] = g_variant_get_string(value, nullptr);
        g_variant_unref(value);
    }
    g_variant_iter_free(actions);
    g_variant_iter_free(hints);

    std::lock_guard lock(state->mutex);
    if (state->silent) {
        state->unanswered.push_back(invocation);
    } else {
        got.answeredId = got.replaces ? got.replaces : state->nextId++;
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(u)", got.answeredId));
    }
    state->received.push_back(std::move(got));
    state->changed.notify_all();
}

} // namespace

NotificationService::NotificationService(const std::string& address) : state_(new State) {
    std::promise<bool> ready;
    auto started = ready.get_future();
    thread_ = std::thread([this, address, &ready] {
        state_->context = g_main_context_new();
        g_main_context_push_thread_default(state_->context);
        state_->loop = g_main_loop_new(state_->context, FALSE);
        GError* error = nullptr;
        GDBusConnection* connection = g_dbus_connection_new_for_address_sync(
            address.c_str(),
            GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                 G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, &error);
        guint object = 0;
        bool owned = false;
        if (connection) {
            GDBusNodeInfo* info = g_dbus_node_info_new_for_xml(kIntrospection, nullptr);
            static const GDBusInterfaceVTable vtable{onCall, nullptr, nullptr, {}};
            object =
                g_dbus_connection_register_object(connection, "/org/freedesktop/Notifications",
                                                  info->interfaces[0], &vtable, state_, nullptr, nullptr);
            g_dbus_node_info_unref(info);
            GVariant* reply = g_dbus_connection_call_sync(
                connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                "RequestName", g_variant_new("(su)", "org.freedesktop.Notifications", 4u /* do not queue */),
                G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, 5000, nullptr, nullptr);
            if (reply) {
                guint32 result = 0;
                g_variant_get(reply, "(u)", &result);
                owned = result == 1; // the primary owner
                g_variant_unref(reply);
            }
        } else if (error) {
            g_error_free(error);
        }
        ready.set_value(owned && object != 0);
        g_main_loop_run(state_->loop);
        {
            // Calls never answered are answered now, so nothing waits on them.
            std::lock_guard lock(state_->mutex);
            for (GDBusMethodInvocation* invocation : state_->unanswered)
                g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR, G_DBUS_ERROR_FAILED,
                                                              "the stand-in service stopped");
            state_->unanswered.clear();
        }
        if (connection) {
            if (object) g_dbus_connection_unregister_object(connection, object);
            g_dbus_connection_flush_sync(connection, nullptr, nullptr);
            g_dbus_connection_close_sync(connection, nullptr, nullptr);
            g_object_unref(connection);
        }
        g_main_loop_unref(state_->loop);
        g_main_context_pop_thread_default(state_->context);
        g_main_context_unref(state_->context);
    });
    ok_ = started.get();
}

NotificationService::~NotificationService() {
    g_main_context_invoke(
        state_->context,
        [](gpointer loop) {
            g_main_loop_quit(static_cast<GMainLoop*>(loop));
            return gboolean(G_SOURCE_REMOVE);
        },
        state_->loop);
    thread_.join();
    delete state_;
}

void NotificationService::setSilent(bool silent) {
    std::lock_guard lock(state_->mutex);
    state_->silent = silent;
}

std::vector<NotificationService::Received> NotificationService::received() const {
    std::lock_guard lock(state_->mutex);
    return state_->received;
}

bool NotificationService::waitFor(std::size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock lock(state_->mutex);
    return state_->changed.wait_for(lock, timeout, [&] { return state_->received.size() >= count; });
}

} // namespace morvane::test
