#include <morvane/ui/core/detail/Animator.h>

#include <morvane/sys/Clock.h>
#include <morvane/sys/Queue.h>

#include <algorithm>
#include <vector>

namespace morvane::ui::detail {

namespace {

struct AnimatorState {
    std::vector<Animator::Context> stack;
    double busyUntil = 0;
    sys::Clock::Kind busyClock = sys::Clock::Kind::Real;
    int continuous = 0;
    std::uint64_t generation = 1;
};

AnimatorState& state() {
    static AnimatorState s;
    return s;
}

// Ease in, ease out: slow at both ends, as the platform's default curve.
double ease(double t) {
    return t * t * (3 - 2 * t);
}

} // namespace

void AnimationGroup::finish(bool finished) {
    if (done) return;
    done = true;
    // Copied first: the completion may start animations that replace this group.
    auto completion = std::move(this->completion);
    if (completion) completion(finished && !cancelled);
}

double Track::progress(double now) const {
    if (!active || duration <= 0 || now >= start + duration) return 1;
    if (now <= start) return 0;
    return ease((now - start) / duration);
}

bool ViewAnimations::runningAt(double now) const {
    for (const Track& track : tracks)
        if (track.runningAt(now)) return true;
    return dissolve.runningAt(now);
}

double mix(double from, double to, double t) {
    return from + (to - from) * t;
}

gfx::Point mix(gfx::Point from, gfx::Point to, double t) {
    return {mix(from.x, to.x, t), mix(from.y, to.y, t)};
}

gfx::Rect mix(const gfx::Rect& from, const gfx::Rect& to, double t) {
    return {mix(from.x, to.x, t), mix(from.y, to.y, t), mix(from.width, to.width, t),
            mix(from.height, to.height, t)};
}

gfx::Transform mix(const gfx::Transform& from, const gfx::Transform& to, double t) {
    if (t >= 1) return to;
    if (t <= 0) return from;
    // Element-wise mixing: exact for the scales and translations views use;
    // a rotation passes through a slight shrink, which is acceptable here.
    gfx::Transform m{mix(from.a, to.a, t), mix(from.b, to.b, t),   mix(from.c, to.c, t),
                     mix(from.d, to.d, t), mix(from.tx, to.tx, t), mix(from.ty, to.ty, t)};
    double z = mix(from.zScale(), to.zScale(), t);
    if (z != 1) m = gfx::Transform::scale3D(1, 1, z).concatenated(m);
    return m;
}

Animator::Context* Animator::current() {
    auto& stack = state().stack;
    return stack.empty() ? nullptr : &stack.back();
}

void Animator::push(Context context) {
    state().stack.push_back(std::move(context));
}

void Animator::pop() {
    auto& stack = state().stack;
    if (!stack.empty()) stack.pop_back();
}

double Animator::busyUntil() {
    // Times of another clock mean nothing on this one (a test's manual clock
    // may be far ahead of the real one a window host then uses).
    return state().busyClock == sys::Clock::kind() ? state().busyUntil : 0;
}

void Animator::noteBusyUntil(double time) {
    auto& s = state();
    if (s.busyClock != sys::Clock::kind()) {
        s.busyClock = sys::Clock::kind();
        s.busyUntil = 0;
    }
    s.busyUntil = std::max(s.busyUntil, time);
}

void Animator::addContinuous() {
    ++state().continuous;
}

void Animator::removeContinuous() {
    if (state().continuous > 0) --state().continuous;
}

int Animator::continuousCount() {
    return state().continuous;
}

std::uint64_t Animator::displayGeneration() {
    return state().generation;
}

void Animator::bumpDisplayGeneration() {
    ++state().generation;
}

} // namespace morvane::ui::detail
