#pragma once
// The gallery's own picture server: a small HTTP/1.1 server on 127.0.0.1 that
// answers GET and HEAD for the pictures it was given, so that the list's rows
// name real addresses and the kit's download, file cache and refresh path all
// run as they would against a real venue server.
//
//   PictureServer server;
//   if (!server.start(&error)) ...
//   server.publish("/pictures/harbour.jpg", "image/jpeg", bytes);
//   row->set("picture", server.address("/pictures/harbour.jpg"));
//
// One request per connection (the answer says "Connection: close"). Paths are
// looked up in memory, never on disk; a path that tries to climb ("/../") is
// refused all the same, as is anything that is not a well-formed request.
// publish() and requestCount() are safe from any thread.

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace gallery {

class PictureServer {
  public:
    struct Answer {
        int status = 200;
        std::string contentType;
        std::string body;
        bool headOnly = false; // HEAD: headers as for GET, no body
        std::string allow;     // for 405: the methods that are allowed
    };

    PictureServer() = default;
    ~PictureServer();
    PictureServer(const PictureServer&) = delete;
    PictureServer& operator=(const PictureServer&) = delete;

    // Listens on 127.0.0.1 on a free port and starts serving on a thread of
    // its own. False, with the reason in `error`, when no socket could be had.
    bool start(std::string* error = nullptr);
    // Stops serving, closing any connection in progress, and waits for the
    // thread. Safe to call twice; the destructor calls it.
    void stop();
    bool isRunning() const { return thread_.joinable(); }

    int port() const { return port_; }
    // "http://127.0.0.1:<port>" followed by the path.
    std::string address(std::string_view path) const;

    // Serves `body` at `path` (which starts with "/"), replacing what was there.
    void publish(std::string path, std::string contentType, std::string body);
    // How many times the path was answered with its content (GET or HEAD).
    int requestCount(std::string_view path) const;

    // The answer to one request head (request line and headers, without the
    // blank line that ends them). Exposed so the rules can be read in one place.
    Answer answer(std::string_view head) const;
    // The bytes sent for an answer: status line, headers and (unless HEAD) body.
    static std::string encode(const Answer& answer);

    // A request head may be this long; longer ones are refused.
    static constexpr std::size_t kMaxHeadBytes = 8192;
    // A client that sends nothing for this long is dropped.
    static constexpr int kIdleMilliseconds = 2000;

  private:
    void serve();
    void handle(int client);

    struct Resource {
        std::string contentType;
        std::string body;
    };

    mutable std::mutex mutex_;
    std::map<std::string, Resource, std::less<>> resources_;
    mutable std::map<std::string, int, std::less<>> counts_;
    int listener_ = -1;
    int wake_[2] = {-1, -1}; // a pipe: writing to it tells the thread to stop
    int port_ = 0;
    std::thread thread_;
};

} // namespace gallery
