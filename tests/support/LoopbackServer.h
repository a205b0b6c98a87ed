#pragma once
// A small HTTP/1.1 server on 127.0.0.1 for tests that fetch: it starts on a
// free port when constructed and stops, closing every connection, when
// destroyed. Each path can be given content or a misbehaviour (stall, reset,
// endless data, redirect), and the server counts the requests per path.
// Paths it does not know get a 404. Safe to configure from any thread.

#include <atomic>
#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace morvane::test {

class LoopbackServer {
  public:
    struct Response {
        int status = 200;
        std::string body;
        std::vector<std::pair<std::string, std::string>> headers;
    };

    LoopbackServer();
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    int port() const { return port_; }
    // "http://127.0.0.1:<port>" followed by the path (which starts with "/").
    std::string address(std::string_view path) const;

    // What a path answers. A route given with a query ("/a.png?v=2") matches
    // only that query; one without matches the path whatever the query.
    void serve(std::string path, std::string body, std::string contentType = "application/octet-stream");
    void respond(std::string path, Response response);
    void redirect(std::string path, std::string location, int status = 302);
    // Reads the request and then sends nothing until the client gives up.
    void stall(std::string path);
    // Reads the request and resets the connection.
    void reset(std::string path);
    // Answers 200 and sends data until the client goes away.
    void endless(std::string path);
    // Answers after a pause of that many seconds.
    void delay(std::string path, double seconds, Response response);

    // Requests received for the path (with or without a query, as registered above).
    int requestCount(std::string_view path) const;
    int totalRequests() const;

    // Stops accepting, ends every connection and waits for the server's threads.
    void stop();

  private:
    enum class Behaviour { Respond, Stall, Reset, Endless };
    struct Route {
        Behaviour behaviour = Behaviour::Respond;
        Response response;
        double delay = 0;
    };

    void acceptLoop();
    void handle(int fd);
    // Waits up to `seconds` or until the server stops; true when it stopped.
    bool waitStopped(double seconds);
    static std::string withoutQuery(std::string_view target);

    int listenFd_ = -1;
    int wakePipe_[2] = {-1, -1};
    int port_ = 0;
    std::thread acceptThread_;

    mutable std::mutex mutex_;
    std::condition_variable stopped_;
    bool stopping_ = false;
    std::map<std::string, Route, std::less<>> routes_;
    std::vector<std::string> received_;
    std::set<int> connections_;
    std::vector<std::thread> handlers_;
};

} // namespace morvane::test
