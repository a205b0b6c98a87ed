#pragma once
// Reading a whole resource by address: fetch() in one blocking call on
// whatever thread calls it, or FetchQueue, which runs transfers in the
// background a few at a time on threads of its own.
//
// Only http and https are fetched; any other scheme is refused, also when a
// redirect points to it. Redirects are followed up to a limit. A server that
// stalls is given up after the timeouts; one that sends more than the size cap
// is cut off. Every failure comes back as a result with a reason, never as an
// exception.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace morvane::sys {

struct FetchOptions {
    double connectTimeout = 15;              // seconds to establish the connection
    double totalTimeout = 60;                // seconds for the whole transfer
    std::size_t maxBytes = 50 * 1024 * 1024; // larger bodies are refused
    int maxRedirects = 5;
    // Asked before a queued transfer starts and about once a second while it
    // runs (on the transfer's thread): false ends it as Failure::Cancelled.
    // Empty means always wanted.
    std::function<bool()> wanted;
};

struct FetchResult {
    enum class Failure {
        None,
        BadAddress,    // not an address at all
        RefusedScheme, // a scheme other than http or https (also after a redirect)
        CannotConnect, // no such host, connection refused or reset
        TimedOut,      // connect or total timeout
        TooLarge,      // more than maxBytes
        TooManyRedirects,
        HttpStatus, // the server answered with a status other than 2xx
        Network,    // any other transfer error
        Cancelled,  // nobody wanted it any more (FetchOptions::wanted)
    };

    Failure failure = Failure::None;
    long status = 0;   // the HTTP status of the last response, 0 when there was none
    std::string body;  // the bytes received (for an HTTP error: the server's error page)
    std::string error; // what went wrong, for a log line; empty on success
    std::string finalAddress;

    bool ok() const { return failure == Failure::None; }
    explicit operator bool() const { return ok(); }
};

FetchResult fetch(std::string_view address, const FetchOptions& options = {});

// Transfers in the background with their own bounded concurrency: at most
// kMaxTransfers run at once, each on a thread of the queue's own, and the rest
// wait in the order they came. A server that stalls holds one of these
// threads, never a global queue's, so slow pictures cannot starve the other
// background work of the app. Queue::waitIdle() waits for running transfers.
class FetchQueue {
  public:
    static constexpr int kMaxTransfers = 4;
    using Completion = std::function<void(FetchResult result)>;

    static FetchQueue& shared();

    // Queues the transfer. The completion runs on the transfer's thread once
    // it ends, whatever the outcome; keep it short (post heavier work on).
    void add(std::string address, FetchOptions options, Completion completion);

    // Transfers running now, and waiting for a free place.
    int running() const;
    std::size_t waiting() const;

    FetchQueue(const FetchQueue&) = delete;
    FetchQueue& operator=(const FetchQueue&) = delete;

  private:
    struct Pending;
    struct State;
    FetchQueue();
    ~FetchQueue() = delete; // lives as long as the process, like the queues
    void runLane(int lane);
    State* state_;
};

} // namespace morvane::sys
