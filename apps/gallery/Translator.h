#pragma once
// The gallery's translator: turns the English texts that rows mark with
// "<en>" into French. A real app would ask a translation service; this one
// knows a few phrases and words, and, like a service, answers later and from
// another thread, so the list's re-posting of late texts to the main thread
// takes part in every run.
//
//   auto translator = std::make_shared<Translator>(0.4);
//   list->watchTranslate([translator](const std::string& text, auto done) {
//       translator->translate(text, std::move(done));
//   });

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace gallery {

class Translator {
  public:
    using Completion = std::function<void(const std::string& translated)>;

    // Answers `delay` seconds (on the kit's clock) after each request.
    explicit Translator(double delay = 0.4);

    // Calls `done` with the translation on a background queue, later.
    void translate(const std::string& text, Completion done);
    // Requests not answered yet, and answers given so far (any thread).
    int pending() const { return state_->pending.load(); }
    int answered() const { return state_->answered.load(); }

    // The French for a text: markers dropped, known phrases translated whole,
    // otherwise word by word, unknown words kept as they are.
    static std::string toFrench(std::string_view text);

  private:
    // Shared with requests in flight, which may outlive the translator.
    struct State {
        std::atomic<int> pending{0};
        std::atomic<int> answered{0};
    };
    double delay_;
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace gallery
