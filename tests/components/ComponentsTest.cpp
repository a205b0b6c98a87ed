// What every component shares: the guard that lets a callback release its
// component, the callback registry, the translation marker, the first key
// with a value, and re-posting to the main queue.
#include <morvane/components/CallbackRegistry.h>
#include <morvane/components/DispatchGuard.h>
#include <morvane/components/KeyLookup.h>
#include <morvane/components/MainQueue.h>
#include <morvane/components/Translation.h>
#include <morvane/model/Node.h>
#include <morvane/sys/Queue.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <thread>

using namespace morvane;

namespace {

// Counts its own destruction, so a test can see exactly when it goes.
struct Counted : ui::View {
    explicit Counted(int& destroyed) : destroyed_(destroyed) {}
    ~Counted() override { ++destroyed_; }
    int& destroyed_;
};

} // namespace

// The last reference dropped inside a guarded dispatch is only let go once
// the main queue runs, after the code that called back is done with `this`.
TEST(DispatchGuard, a_component_released_during_dispatch_outlives_the_dispatch) {
    ui::HeadlessHost host;
    int destroyed = 0;
    auto component = std::make_shared<Counted>(destroyed);
    {
        DispatchGuard guard(*component);
        component.reset(); // what a callback does when it releases the component
        EXPECT_EQ(destroyed, 0);
    }
    EXPECT_EQ(destroyed, 0) << "not freed under the dispatching code";
    host.runUntilIdle();
    EXPECT_EQ(destroyed, 1);

    // Still held elsewhere: the guard lets go at once and posts nothing.
    auto kept = std::make_shared<Counted>(destroyed);
    { DispatchGuard guard(*kept); }
    EXPECT_EQ(kept.use_count(), 1);

    // A view that no shared_ptr owns is not taken over.
    Counted onStack(destroyed);
    { DispatchGuard guard(onStack); }
    host.runUntilIdle();
    EXPECT_EQ(destroyed, 1);
}

// Registering again replaces in place; dispatch from a snapshot lets a
// callback change the registry while the event is delivered.
TEST(CallbackRegistry, replacing_keeps_the_place_and_dispatch_survives_changes) {
    CallbackRegistry<std::function<void()>> registry;
    std::string calls;
    registry.set("a", [&] { calls += "a"; });
    registry.set("b", [&] { calls += "b", registry.clear(); });
    registry.set("c", [&] { calls += "c"; });
    registry.set("a", [&] { calls += "A", registry.set("d", [&] { calls += "d"; }); });
    for (auto& callback : registry.snapshot())
        callback();
    EXPECT_EQ(calls, "Abc") << "registration order, the replaced entry in its place";
    EXPECT_TRUE(registry.empty());
    EXPECT_EQ(registry.find("a"), nullptr);
}

TEST(Translation, the_marker_is_found_anywhere_and_every_marker_is_taken_out) {
    EXPECT_TRUE(isTranslatable("Spot<en>"));
    EXPECT_TRUE(isTranslatable("<en>"));
    EXPECT_FALSE(isTranslatable("<e n>"));
    EXPECT_EQ(withoutTranslateMarkers("<en>City<en>-Spot<en>"), "City-Spot");
    EXPECT_EQ(withoutTranslateMarkers("<en<en>>"), "<en>") << "one pass: what the removal joins stays";
}

// Candidates are tried in their order, not the row's, each through the
// like-search (a nested value counts); the first that yields wins.
TEST(KeyLookup, the_first_candidate_with_a_value_wins) {
    auto row = Node::make({{"photo", "p.png"}, {"info", Node::make({{"image", "i.png"}})}, {"empty", ""}});
    const std::vector<std::string> candidates{"missing", "image", "photo"};
    const KeyValue found = firstValue(*row, candidates);
    ASSERT_TRUE(found);
    EXPECT_EQ(*found.key, "image");
    EXPECT_EQ(found.value.textOr(), "i.png");
    EXPECT_FALSE(firstValue(*row, {"nothing", "none"}));
    EXPECT_FALSE(firstValue(*row, {}));
}

// Work re-posted from another thread runs on the main queue, and only while
// its target lives.
TEST(MainQueue, reposted_work_runs_on_the_main_queue_while_its_target_lives) {
    ui::HeadlessHost host;
    auto alive = std::make_shared<int>(0);
    auto gone = std::make_shared<int>(0);
    std::weak_ptr<int> weakAlive = alive, weakGone = gone;
    std::thread worker([&] {
        postToMain(weakAlive, [](int& value) { value = sys::isMainThread() ? 1 : -1; });
        postToMain(weakGone, [](int& value) { value = 1; });
    });
    worker.join();
    EXPECT_EQ(*alive, 0) << "nothing runs before the main queue does";
    gone.reset();
    host.runUntilIdle();
    EXPECT_EQ(*alive, 1);
}
