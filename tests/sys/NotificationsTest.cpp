// Local notifications: waiting on the kit's clock, then delivered to a
// stand-in notification service on a private bus of the test's own.

#include "NotificationService.h"

#include <morvane/sys/Clock.h>
#include <morvane/sys/Log.h>
#include <morvane/sys/Notifications.h>
#include <morvane/sys/Queue.h>
#include <morvane/sys/RunLoop.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <limits>
#include <mutex>
#include <string>
#include <vector>

using morvane::sys::Clock;
using morvane::sys::Log;
using morvane::sys::Notifications;
using morvane::sys::Queue;
using morvane::sys::RunLoop;
using morvane::test::NotificationService;
using morvane::test::PrivateBus;

namespace {

class NotificationsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_FALSE(bus.address().empty()) << bus.why();
        Clock::useManual();
        Notifications::setBusAddress(bus.address());
        Notifications::setApplicationName("Hotel Farol");
        Notifications::setServiceTimeout(std::chrono::seconds(3));
    }
    void TearDown() override {
        Notifications::removeAllPending();
        Notifications::setBusAddress("");
        Notifications::setApplicationName("");
        Queue::waitIdle();
        Clock::useReal();
    }
    // Moves the kit's clock and lets any delivery it set off finish.
    void advance(double seconds) {
        RunLoop::main().advance(seconds);
        Queue::waitIdle();
    }
    // The completion's answer, collected where it runs.
    struct Outcomes {
        std::mutex mutex;
        std::vector<std::string> errors;
        Notifications::Completion completion() {
            return [this](const std::string& error) {
                std::lock_guard lock(mutex);
                errors.push_back(error);
            };
        }
        std::vector<std::string> all() {
            std::lock_guard lock(mutex);
            return errors;
        }
    };

    PrivateBus bus;
};

TEST_F(NotificationsTest, a_request_waits_its_interval_on_the_kits_clock_then_reaches_the_service) {
    NotificationService service(bus.address());
    ASSERT_TRUE(service.ok());
    Outcomes outcomes;
    Notifications::add("FiveSecond", {.title = "Your room is ready", .body = "Room 12, second floor"}, 5.0,
                       false, outcomes.completion());
    EXPECT_EQ(Notifications::pendingIdentifiers(), std::vector<std::string>{"FiveSecond"});

    advance(4.9);
    EXPECT_TRUE(service.received().empty());
    EXPECT_TRUE(outcomes.all().empty());

    advance(0.1);
    ASSERT_TRUE(service.waitFor(1));
    const auto got = service.received().at(0);
    EXPECT_EQ(got.applicationName, "Hotel Farol");
    EXPECT_EQ(got.summary, "Your room is ready");
    EXPECT_EQ(got.body, "Room 12, second floor");
    EXPECT_EQ(got.hints.at("sound-name"), "message-new-instant");
    EXPECT_EQ(got.replaces, 0u);
    EXPECT_EQ(outcomes.all(), std::vector<std::string>{""});
    EXPECT_TRUE(Notifications::pendingIdentifiers().empty());

    // Once shown it is gone: more time brings nothing more.
    advance(60);
    EXPECT_EQ(service.received().size(), 1u);
}

TEST_F(NotificationsTest, a_second_request_within_the_interval_replaces_the_first) {
    NotificationService service(bus.address());
    ASSERT_TRUE(service.ok());
    Outcomes first, second;
    Notifications::add("FiveSecond", {.title = "first", .body = "1"}, 5.0, false, first.completion());
    advance(3);
    // The menu screen's pattern: everything pending goes, then the new one.
    Notifications::removeAllPending();
    Notifications::add("FiveSecond", {.title = "second", .body = "2"}, 5.0, false, second.completion());
    advance(3); // the first would have fired here
    EXPECT_TRUE(service.received().empty());
    advance(2);
    ASSERT_TRUE(service.waitFor(1));
    advance(10);
    ASSERT_EQ(service.received().size(), 1u);
    EXPECT_EQ(service.received()[0].summary, "second");
    EXPECT_TRUE(first.all().empty()) << "a replaced request never completes";
    EXPECT_EQ(second.all(), std::vector<std::string>{""});

    // The same identifier added again replaces the waiting one by itself too.
    Notifications::add("other", {.title = "a", .body = ""}, 5.0, false);
    Notifications::add("other", {.title = "b", .body = ""}, 5.0, false);
    Notifications::add("third", {.title = "c", .body = "", .defaultSound = false}, 5.0, false);
    EXPECT_EQ(Notifications::pendingIdentifiers(), (std::vector<std::string>{"other", "third"}));
    advance(5);
    ASSERT_TRUE(service.waitFor(3));
    const auto all = service.received();
    EXPECT_EQ(all[1].summary, "b");
    EXPECT_EQ(all[2].summary, "c");
    EXPECT_EQ(all[2].hints.count("sound-name"), 0u);
}

TEST_F(NotificationsTest, a_repeating_request_replaces_its_own_notification_on_the_desktop) {
    NotificationService service(bus.address());
    ASSERT_TRUE(service.ok());
    Notifications::add("daily", {.title = "Breakfast is served", .body = ""}, 60, true);
    advance(60);
    advance(60);
    ASSERT_TRUE(service.waitFor(2));
    const auto all = service.received();
    EXPECT_EQ(all[0].replaces, 0u);
    EXPECT_NE(all[0].answeredId, 0u);
    EXPECT_EQ(all[1].replaces, all[0].answeredId);
    EXPECT_EQ(Notifications::pendingIdentifiers(), std::vector<std::string>{"daily"});

    // Intervals a desktop should not get are refused at once, with the reason.
    Outcomes refused;
    Notifications::add("now", {.title = "x", .body = ""}, 0, false, refused.completion());
    Notifications::add("flood", {.title = "x", .body = ""}, 10, true, refused.completion());
    Notifications::add("never", {.title = "x", .body = ""}, std::numeric_limits<double>::quiet_NaN(), false,
                       refused.completion());
    Queue::waitIdle();
    const auto errors = refused.all();
    ASSERT_EQ(errors.size(), 3u);
    for (const auto& error : errors)
        EXPECT_NE(error.find("interval"), std::string::npos) << error;
    EXPECT_EQ(Notifications::pendingIdentifiers(), std::vector<std::string>{"daily"});
}

TEST_F(NotificationsTest, no_service_a_silent_service_and_no_bus_give_an_error_and_hold_up_nothing) {
    Outcomes outcomes;
    // Nobody owns the name, and the bus starts no services.
    Notifications::add("FiveSecond", {.title = "t", .body = ""}, 5.0, false, outcomes.completion());
    advance(5);
    ASSERT_EQ(outcomes.all().size(), 1u);
    EXPECT_NE(outcomes.all()[0].find("org.freedesktop.Notifications"), std::string::npos)
        << outcomes.all()[0];

    {
        // A service that takes the call and never answers: the delivery
        // gives up after the timeout, and the main thread never waits on it.
        NotificationService service(bus.address());
        ASSERT_TRUE(service.ok());
        service.setSilent(true);
        Notifications::setServiceTimeout(std::chrono::milliseconds(300));
        Notifications::add("FiveSecond", {.title = "t", .body = ""}, 5.0, false, outcomes.completion());
        const auto start = std::chrono::steady_clock::now();
        RunLoop::main().advance(5);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(250));
        ASSERT_TRUE(service.waitFor(1));
        Queue::waitIdle();
        ASSERT_EQ(outcomes.all().size(), 2u);
        EXPECT_FALSE(outcomes.all()[1].empty());
    }

    Notifications::setBusAddress("unix:path=/nonexistent/morvane-bus");
    Notifications::add("FiveSecond", {.title = "t", .body = ""}, 5.0, false, outcomes.completion());
    advance(5);
    ASSERT_EQ(outcomes.all().size(), 3u);
    EXPECT_TRUE(outcomes.all()[2].starts_with("cannot reach the session bus: ")) << outcomes.all()[2];
}

TEST_F(NotificationsTest, texts_come_from_the_applications_table_and_a_missing_key_shows_itself_logged_once) {
    Notifications::setStrings({{"ready", "Your room is ready"}});
    Log::Capture log;
    EXPECT_EQ(Notifications::localizedString("ready"), "Your room is ready");
    EXPECT_EQ(Notifications::localizedString("late"), "late");
    EXPECT_EQ(Notifications::localizedString("late"), "late");
    EXPECT_EQ(log.texts(),
              std::vector<std::string>{"Notifications: no text for \"late\" in the application's "
                                       "table of notification texts; the key is shown instead"});

    // Bytes that are not UTF-8 are mended rather than lost with the rest.
    NotificationService service(bus.address());
    ASSERT_TRUE(service.ok());
    Notifications::add("bad", {.title = "caf\xe9", .body = "ok"}, 1, false);
    advance(1);
    ASSERT_TRUE(service.waitFor(1));
    EXPECT_EQ(service.received()[0].summary, "caf\xef\xbf\xbd");
    EXPECT_EQ(service.received()[0].body, "ok");
}

} // namespace
