#pragma once
// Reading a whole resource by address in one blocking call, on whatever
// thread calls it (the photo loaders call it on a global queue).
//
// Only http and https are fetched; any other scheme is refused, also when a
// redirect points to it. Redirects are followed up to a limit. A server that
// stalls is given up after the timeouts; one that sends more than the size cap
// is cut off. Every failure comes back as a result with a reason, never as an
// exception.

#include <cstddef>
#include <string>
#include <string_view>

namespace morvane::sys {

struct FetchOptions {
    double connectTimeout = 15;              // seconds to establish the connection
    double totalTimeout = 60;                // seconds for the whole transfer
    std::size_t maxBytes = 50 * 1024 * 1024; // larger bodies are refused
    int maxRedirects = 5;
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

} // namespace morvane::sys
