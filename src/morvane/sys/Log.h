#pragma once
// The two places diagnostics go: the platform log (one line per message, with
// a time stamp and the process, by default on standard error) and the raw
// standard-error writer. Callers hand over finished texts; formatting is theirs.
//
// Tests read what was written with a Log::Capture: while one is alive, every
// line is recorded in it instead of being written out. Everything here is safe
// from any thread.

#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace morvane::sys {

class Log {
  public:
    enum class Channel { Platform, StandardError };

    // Writes one line to the platform log; a time stamp and the process are
    // put in front, a line break after.
    static void platform(std::string_view text);
    // Writes the text to standard error exactly as given.
    static void standardError(std::string_view text);

    // Replaces where platform lines go (the default writes them, stamped, to
    // standard error). The sink receives the text without the stamp. An empty
    // function restores the default.
    using Sink = std::function<void(std::string_view text)>;
    static void setPlatformSink(Sink sink);

    // Records every line written while it is alive (the newest capture wins
    // when several are alive). Nothing captured reaches the real outputs.
    class Capture {
      public:
        struct Line {
            Channel channel;
            std::string text;
        };

        Capture();
        ~Capture();
        Capture(const Capture&) = delete;
        Capture& operator=(const Capture&) = delete;

        std::vector<Line> lines() const;
        // The texts of one channel, in the order written.
        std::vector<std::string> texts(Channel channel = Channel::Platform) const;
        // True when some line of the channel equals `text`.
        bool contains(std::string_view text, Channel channel = Channel::Platform) const;
        void clear();

      private:
        friend class Log;
        void record(Channel channel, std::string_view text);

        mutable std::mutex mutex_;
        std::vector<Line> lines_;
        Capture* previous_ = nullptr;
    };

  private:
    static bool capture(Channel channel, std::string_view text);
};

} // namespace morvane::sys
