// Formatters, shared instances and saved settings used from several threads
// at once; labelled for the ThreadSanitizer run.
#include <morvane/model/Value.h>
#include <morvane/util/Dates.h>
#include <morvane/util/GAirportCode.h>
#include <morvane/util/GColor.h>
#include <morvane/util/GUsrSignin.h>
#include <morvane/util/Txt.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

using morvane::Dates;
using namespace std::chrono;
using namespace std::chrono_literals;

namespace {

// Formatters are cached per thread and dropped when the zone changes; a reader
// racing a zone change must see either zone, never a torn or stale formatter.
TEST(UtilThreads, stamps_stay_consistent_while_the_zone_changes) {
    const double moment = static_cast<double>(
        duration_cast<seconds>((sys_days(2024y / January / 31) + 14h).time_since_epoch()).count());
    std::atomic<bool> stop{false};
    std::atomic<int> bad{0};
    std::vector<std::thread> readers;
    for (int t = 0; t < 3; ++t) {
        readers.emplace_back([&] {
            while (!stop.load()) {
                const auto text = Dates::stamp(moment);
                if (text != "2024.01.31T14:00:00" && text != "2024.01.31T23:00:00") ++bad;
                const auto back = Dates::text(text);
                if (!back) ++bad;
                if (morvane::Txt::cap("new york", " ") != "New York") ++bad;
                if (morvane::Txt::removeParen("a (b)") != "a ") ++bad;
            }
        });
    }
    for (int i = 0; i < 200; ++i) {
        Dates::setTimeZone(i % 2 ? "Asia/Tokyo" : "UTC");
        std::this_thread::sleep_for(100us);
    }
    stop = true;
    for (auto& r : readers)
        r.join();
    Dates::setTimeZone("");
    EXPECT_EQ(bad.load(), 0);
}

// Shared instances are made once however many threads ask first, and saves
// from several threads all land in the store.
TEST(UtilThreads, shared_instances_are_made_once_and_saves_from_many_threads_all_land) {
    std::vector<const void*> seen(8);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < seen.size(); ++t) {
        threads.emplace_back([&seen, t] {
            seen[t] = t % 2 ? static_cast<const void*>(&morvane::GAirportCode::sharedInstance())
                            : static_cast<const void*>(&morvane::GColor::sharedInstance());
            morvane::GAirportCode::deviceTokenSave("token-" + std::to_string(t));
            morvane::GUsrSignin::usrSave(morvane::Value(static_cast<int>(t)));
        });
    }
    for (auto& t : threads)
        t.join();
    for (std::size_t t = 2; t < seen.size(); ++t)
        EXPECT_EQ(seen[t], seen[t % 2]);
    const auto token = morvane::GAirportCode::deviceToken();
    ASSERT_TRUE(token);
    EXPECT_EQ(token->rfind("token-", 0), 0u);
    EXPECT_TRUE(morvane::GUsrSignin::usrRead().isNumber());
}

} // namespace
