#pragma once
// ReentrancyHarness: drives one component through random sequences of its
// public operations and of simulated input (taps, drags, swipes, typing) on
// the headless host; at every callback the component makes, it runs another
// random public operation of the same component, releasing it included.
// Faults show up as sanitizer reports, failed assertions or crashes; a
// failure message carries the seed and the last steps taken.
//
//   ReentrancyHarness<UITbl> harness(seed);
//   harness.make([](ReentrancyHarness<UITbl>& h) {
//       auto list = std::make_shared<UITbl>(gfx::Rect{0, 0, 390, 600});
//       list->watchTbl("h", [&h](auto&&...) { h.callback("select"); }, ...);
//       return list;
//   });
//   harness.operation("refresh", [](UITbl& list, Random&) { list.refresh(); });
//   harness.input("tap", [](ui::HeadlessHost& host, UITbl& list, Random& random) { ... });
//   harness.run(ReentrancyHarness<UITbl>::steps(1500, 20000));
//
// Every component's callbacks, registered in `make`, report to callback():
// the harness then, at random, performs one more operation from inside the
// callback (nested up to a small depth), which is exactly what an owner's
// callback may do.

#include <morvane/gfx/Geometry.h>
#include <morvane/ui/core/Window.h>
#include <morvane/ui/hosts/HeadlessHost.h>

#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace morvane::test {

using Random = std::mt19937;

// Uniform helpers over the harness's generator.
int randomInt(Random& random, int low, int high); // low..high inclusive
bool chance(Random& random, double probability);
gfx::Point randomPointIn(Random& random, const gfx::Rect& rect);
// The middle of a view, in window coordinates (where a finger lands).
gfx::Point centreOf(const ui::View& view);

template <class Component> class ReentrancyHarness {
  public:
    using Make = std::function<std::shared_ptr<Component>(ReentrancyHarness&)>;
    using Operation = std::function<void(Component&, Random&)>;
    using Input = std::function<void(ui::HeadlessHost&, Component&, Random&)>;

    explicit ReentrancyHarness(unsigned seed) : seed_(seed), random_(seed) {}

    // The run length: short in the normal suite, long in the sanitizer build.
    static int steps(int normal, int underSanitizer) {
#ifdef MORVANE_LONG_REENTRANCY_RUNS
        (void)normal;
        return underSanitizer;
#else
        (void)underSanitizer;
        return normal;
#endif
    }

    void make(Make make) {
        make_ = std::move(make);
    }
    void operation(std::string name, Operation run) {
        operations_.push_back({std::move(name), std::move(run)});
    }
    void input(std::string name, Input run) {
        inputs_.push_back({std::move(name), std::move(run)});
    }
    // The input almost every harness wants: a tap anywhere on the component.
    void tapAnywhere() {
        input("tap", [](ui::HeadlessHost& host, Component& component, Random& random) {
            host.tap(randomPointIn(random, component.convertRectTo(component.bounds(), nullptr)));
        });
    }
    // Completions a component handed out (translations, answers): one, at
    // random, is called with the value. Empty ones are skipped.
    template <class Completion, class Result>
    void complete(std::string name, std::vector<Completion>& pending, Result value) {
        operation(std::move(name), [&pending, value](Component&, Random& random) {
            if (pending.empty()) return;
            const auto done = pending[std::size_t(randomInt(random, 0, int(pending.size()) - 1))];
            if (done) done(value);
        });
    }

    ui::HeadlessHost& host() {
        return host_;
    }
    Random& random() {
        return random_;
    }
    // The component now on screen; null after it was released.
    const std::shared_ptr<Component>& component() const {
        return component_;
    }
    long callbacks() const {
        return callbacks_;
    }
    long releases() const {
        return releases_;
    }

    // Called by every callback the component makes: maybe one more
    // operation (or the release) from inside it.
    void callback(const char* where) {
        ++callbacks_;
        if (depth_ >= kMaxDepth || !component_ || !chance(random_, 0.5)) return;
        ++depth_;
        note(std::string("  in ") + where + ": ");
        operate(/*fromCallback=*/true);
        --depth_;
    }

    void run(int count) {
        ASSERT_TRUE(make_) << "no factory given";
        for (int step = 0; step < count && !::testing::Test::HasFatalFailure(); ++step) {
            if (!component_) create();
            // Its first layout may already have released it.
            if (!component_) continue;
            if (!inputs_.empty() && chance(random_, 0.35)) {
                const auto& input = inputs_[std::size_t(randomInt(random_, 0, int(inputs_.size()) - 1))];
                note(input.name);
                auto keep = component_;
                input.run(host_, *keep, random_);
            } else {
                operate(/*fromCallback=*/false);
            }
            if (chance(random_, 0.3))
                host_.advance(0.05 * randomInt(random_, 1, 20));
            else
                host_.runUntilIdle();
            // Drawing now and then: views draw what the callbacks left behind.
            if (chance(random_, 0.05)) {
                note("draw");
                (void)host_.snapshot(1);
            }
            if (::testing::Test::HasFailure()) {
                ADD_FAILURE() << "seed " << seed_ << ", step " << step << ", last steps:\n" << trace();
                return;
            }
        }
        // Whatever is left is released the way an application lets go.
        release();
        host_.runUntilIdle();
    }

    std::string trace() const {
        std::string out;
        for (const std::string& line : trace_)
            out += line + "\n";
        return out;
    }

  private:
    static constexpr int kMaxDepth = 3;
    struct Named {
        std::string name;
        Operation run;
    };
    struct NamedInput {
        std::string name;
        Input run;
    };

    void create() {
        component_ = make_(*this);
        host_.root()->addSubview(component_);
        host_.runUntilIdle();
    }
    void release() {
        if (!component_) return;
        ++releases_;
        component_->removeFromSuperview();
        component_.reset();
    }
    void note(std::string line) {
        trace_.push_back(std::move(line));
        if (trace_.size() > 40) trace_.pop_front();
    }

    // One public operation, or one of the things an owner does to any view:
    // release it, take it off the window, put it back, resize it.
    void operate(bool fromCallback) {
        const int builtIns = 4;
        const int pick = randomInt(random_, 0, int(operations_.size()) + builtIns - 1);
        if (pick < int(operations_.size())) {
            const auto& op = operations_[std::size_t(pick)];
            note(op.name);
            auto keep = component_;
            if (keep) op.run(*keep, random_);
            return;
        }
        switch (pick - int(operations_.size())) {
        case 0:
            // Releasing is rarer than the rest, so runs get deep into each component.
            if (chance(random_, fromCallback ? 0.5 : 0.2)) {
                note("release");
                release();
            }
            break;
        case 1:
            note("remove from window");
            if (component_) component_->removeFromSuperview();
            break;
        case 2:
            note("add to window");
            if (component_ && !component_->superview()) host_.root()->addSubview(component_);
            break;
        default: {
            note("resize");
            const double width = randomInt(random_, 0, 420);
            const double height = randomInt(random_, 0, 900);
            if (component_) component_->setFrame({0, 0, width, height});
            break;
        }
        }
    }

    unsigned seed_;
    Random random_;
    ui::HeadlessHost host_;
    Make make_;
    std::vector<Named> operations_;
    std::vector<NamedInput> inputs_;
    std::shared_ptr<Component> component_;
    std::deque<std::string> trace_;
    int depth_ = 0;
    long callbacks_ = 0;
    long releases_ = 0;
};

} // namespace morvane::test
