#include <morvane/sys/Log.h>

#include <morvane/sys/Clock.h>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <errno.h>
#include <unistd.h>

namespace morvane::sys {
namespace {

// One lock for the capture chain and the sink: lines from several threads
// come out whole and in one order. Never destroyed, so that threads may log
// while the program exits.
struct LogState {
    std::mutex mutex;
    Log::Capture* capture = nullptr;
    Log::Sink sink;
};

LogState& state() {
    static LogState* instance = new LogState;
    return *instance;
}

void writeAll(int fd, std::string_view text) {
    while (!text.empty()) {
        ssize_t written = ::write(fd, text.data(), text.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return;
        }
        text.remove_prefix(static_cast<size_t>(written));
    }
}

// "2026-11-22 22:31:07.123 name[pid:tid] text": the shape of a platform log line.
std::string stamped(std::string_view text) {
    Date now = Clock::date();
    time_t seconds = static_cast<time_t>(std::floor(now));
    int millis = static_cast<int>((now - std::floor(now)) * 1000.0);
    struct tm local {};
    localtime_r(&seconds, &local);
    char stamp[64];
    size_t length = std::strftime(stamp, sizeof stamp, "%Y-%m-%d %H:%M:%S", &local);
    std::snprintf(stamp + length, sizeof stamp - length, ".%03d", millis);
    char process[128];
    std::snprintf(process, sizeof process, " %s[%d:%d] ", program_invocation_short_name, int(getpid()),
                  int(gettid()));
    std::string line;
    line.reserve(text.size() + 64);
    line.append(stamp).append(process).append(text).push_back('\n');
    return line;
}

} // namespace

bool Log::capture(Channel channel, std::string_view text) {
    // Called with the state's mutex held.
    if (!state().capture) return false;
    state().capture->record(channel, text);
    return true;
}

void Log::platform(std::string_view text) {
    Sink sink;
    {
        std::lock_guard lock(state().mutex);
        if (capture(Channel::Platform, text)) return;
        if (!state().sink) {
            writeAll(STDERR_FILENO, stamped(text));
            return;
        }
        sink = state().sink;
    }
    // Outside the lock, so that a sink may itself log.
    sink(text);
}

void Log::standardError(std::string_view text) {
    std::lock_guard lock(state().mutex);
    if (capture(Channel::StandardError, text)) return;
    writeAll(STDERR_FILENO, text);
}

void Log::setPlatformSink(Sink sink) {
    std::lock_guard lock(state().mutex);
    state().sink = std::move(sink);
}

Log::Capture::Capture() {
    std::lock_guard lock(state().mutex);
    previous_ = state().capture;
    state().capture = this;
}

Log::Capture::~Capture() {
    std::lock_guard lock(state().mutex);
    // Captures normally end in reverse order; unlink this one wherever it sits.
    for (Capture** link = &state().capture; *link; link = &(*link)->previous_) {
        if (*link == this) {
            *link = previous_;
            break;
        }
    }
}

void Log::Capture::record(Channel channel, std::string_view text) {
    std::lock_guard lock(mutex_);
    lines_.push_back({channel, std::string(text)});
}

std::vector<Log::Capture::Line> Log::Capture::lines() const {
    std::lock_guard lock(mutex_);
    return lines_;
}

std::vector<std::string> Log::Capture::texts(Channel channel) const {
    std::lock_guard lock(mutex_);
    std::vector<std::string> result;
    for (const Line& line : lines_)
        if (line.channel == channel) result.push_back(line.text);
    return result;
}

bool Log::Capture::contains(std::string_view text, Channel channel) const {
    std::lock_guard lock(mutex_);
    for (const Line& line : lines_)
        if (line.channel == channel && line.text == text) return true;
    return false;
}

void Log::Capture::clear() {
    std::lock_guard lock(mutex_);
    lines_.clear();
}

} // namespace morvane::sys
