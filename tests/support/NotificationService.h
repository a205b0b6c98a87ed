#pragma once
// A private session bus (a dbus-daemon of the test's own, started when
// constructed and stopped when destroyed) and a stand-in for the desktop's
// notification service on it, which records what it is asked to show.
//
//   PrivateBus bus;
//   NotificationService service(bus.address());
//   sys::Notifications::setBusAddress(bus.address());
//   ... service.waitFor(1) ... service.received()[0].summary

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace morvane::test {

class PrivateBus {
  public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    // The bus's D-Bus address; empty when the daemon could not be started
    // (then `why()` says why).
    const std::string& address() const { return address_; }
    const std::string& why() const { return why_; }

  private:
    pid_t pid_ = -1;
    std::string config_;
    std::string address_;
    std::string why_;
};

class NotificationService {
  public:
    struct Received {
        std::string applicationName;
        std::uint32_t replaces = 0;
        std::string summary;
        std::string body;
        std::map<std::string, std::string> hints; // the hints that are texts
        std::uint32_t answeredId = 0;             // 0: not answered (silent)
    };

    // Takes the service's name on the bus at `address`; `ok()` tells whether it could.
    explicit NotificationService(const std::string& address);
    ~NotificationService();
    NotificationService(const NotificationService&) = delete;
    NotificationService& operator=(const NotificationService&) = delete;

    bool ok() const { return ok_; }
    // While silent, calls are taken and never answered (a hung service).
    void setSilent(bool silent);

    std::vector<Received> received() const;
    // Waits until `count` notifications have arrived; false on timeout.
    bool waitFor(std::size_t count, std::chrono::milliseconds timeout = std::chrono::seconds(5)) const;

    struct State; // shared with the service's own thread

  private:
    State* state_;
    std::thread thread_;
    bool ok_ = false;
};

} // namespace morvane::test
