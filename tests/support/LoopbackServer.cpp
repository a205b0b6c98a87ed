#include "LoopbackServer.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace morvane::test {
namespace {

bool sendAll(int fd, std::string_view data) {
    while (!data.empty()) {
        ssize_t sent = ::send(fd, data.data(), data.size(), MSG_NOSIGNAL);
        if (sent < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data.remove_prefix(size_t(sent));
    }
    return true;
}

const char* reason(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 301:
        return "Moved Permanently";
    case 302:
        return "Found";
    case 404:
        return "Not Found";
    case 500:
        return "Internal Server Error";
    default:
        return "Status";
    }
}

} // namespace

LoopbackServer::LoopbackServer() {
    listenFd_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listenFd_ < 0) throw std::runtime_error("socket failed");
    int yes = 1;
    ::setsockopt(listenFd_, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK); // loopback only, never another address
    local.sin_port = 0;
    if (::bind(listenFd_, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0 ||
        ::listen(listenFd_, 64) != 0)
        throw std::runtime_error(std::string("cannot listen on 127.0.0.1: ") + std::strerror(errno));
    socklen_t length = sizeof local;
    ::getsockname(listenFd_, reinterpret_cast<sockaddr*>(&local), &length);
    port_ = ntohs(local.sin_port);
    if (::pipe2(wakePipe_, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
    acceptThread_ = std::thread([this] { acceptLoop(); });
}

LoopbackServer::~LoopbackServer() {
    stop();
}

std::string LoopbackServer::address(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
}

void LoopbackServer::serve(std::string path, std::string body, std::string contentType) {
    respond(std::move(path), Response{200, std::move(body), {{"Content-Type", std::move(contentType)}}});
}

void LoopbackServer::respond(std::string path, Response response) {
    std::lock_guard lock(mutex_);
    routes_[std::move(path)] = Route{Behaviour::Respond, std::move(response), 0};
}

void LoopbackServer::redirect(std::string path, std::string location, int status) {
    respond(std::move(path), Response{status, "", {{"Location", std::move(location)}}});
}

void LoopbackServer::stall(std::string path) {
    std::lock_guard lock(mutex_);
    routes_[std::move(path)] = Route{Behaviour::Stall, {}, 0};
}

void LoopbackServer::reset(std::string path) {
    std::lock_guard lock(mutex_);
    routes_[std::move(path)] = Route{Behaviour::Reset, {}, 0};
}

void LoopbackServer::endless(std::string path) {
    std::lock_guard lock(mutex_);
    routes_[std::move(path)] = Route{Behaviour::Endless, {}, 0};
}

void LoopbackServer::delay(std::string path, double seconds, Response response) {
    std::lock_guard lock(mutex_);
    routes_[std::move(path)] = Route{Behaviour::Respond, std::move(response), seconds};
}

std::string LoopbackServer::withoutQuery(std::string_view target) {
    return std::string(target.substr(0, target.find('?')));
}

int LoopbackServer::requestCount(std::string_view path) const {
    std::lock_guard lock(mutex_);
    bool hasQuery = path.find('?') != std::string_view::npos;
    int count = 0;
    for (const std::string& target : received_)
        if (target == path || (!hasQuery && withoutQuery(target) == path)) ++count;
    return count;
}

int LoopbackServer::totalRequests() const {
    std::lock_guard lock(mutex_);
    return int(received_.size());
}

void LoopbackServer::stop() {
    std::vector<std::thread> handlers;
    {
        std::lock_guard lock(mutex_);
        if (stopping_) return;
        stopping_ = true;
        // Wake every handler that waits on its client.
        for (int fd : connections_)
            ::shutdown(fd, SHUT_RDWR);
    }
    stopped_.notify_all();
    char byte = 1;
    [[maybe_unused]] ssize_t ignored = ::write(wakePipe_[1], &byte, 1);
    if (acceptThread_.joinable()) acceptThread_.join();
    {
        std::lock_guard lock(mutex_);
        handlers.swap(handlers_);
    }
    for (auto& handler : handlers)
        handler.join();
    ::close(listenFd_);
    ::close(wakePipe_[0]);
    ::close(wakePipe_[1]);
}

bool LoopbackServer::waitStopped(double seconds) {
    std::unique_lock lock(mutex_);
    return stopped_.wait_for(lock, std::chrono::duration<double>(seconds), [this] { return stopping_; });
}

void LoopbackServer::acceptLoop() {
    for (;;) {
        pollfd fds[2] = {{listenFd_, POLLIN, 0}, {wakePipe_[0], POLLIN, 0}};
        if (::poll(fds, 2, -1) < 0) {
            if (errno == EINTR) continue;
            return;
        }
        if (fds[1].revents) return;
        int fd = ::accept4(listenFd_, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd < 0) continue;
        std::lock_guard lock(mutex_);
        if (stopping_) {
            ::close(fd);
            return;
        }
        connections_.insert(fd);
        handlers_.emplace_back([this, fd] { handle(fd); });
    }
}

void LoopbackServer::handle(int fd) {
    auto finish = [&](bool resetConnection) {
        if (resetConnection) {
            linger hard{1, 0}; // closing with a zero linger time sends a reset
            ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
        }
        std::lock_guard lock(mutex_);
        connections_.erase(fd);
        ::close(fd);
    };
    std::string request;
    char buffer[4096];
    while (request.find("\r\n\r\n") == std::string::npos) {
        ssize_t got = ::recv(fd, buffer, sizeof buffer, 0);
        if (got <= 0 || request.size() > 65536) return finish(false);
        request.append(buffer, size_t(got));
    }
    // "GET /path?query HTTP/1.1"
    auto firstSpace = request.find(' ');
    auto secondSpace = request.find(' ', firstSpace + 1);
    if (firstSpace == std::string::npos || secondSpace == std::string::npos) return finish(false);
    std::string target = request.substr(firstSpace + 1, secondSpace - firstSpace - 1);

    Route route{Behaviour::Respond, Response{404, "Not found", {{"Content-Type", "text/plain"}}}, 0};
    {
        std::lock_guard lock(mutex_);
        received_.push_back(target);
        if (auto exact = routes_.find(target); exact != routes_.end())
            route = exact->second;
        else if (auto plain = routes_.find(withoutQuery(target)); plain != routes_.end())
            route = plain->second;
    }

    switch (route.behaviour) {
    case Behaviour::Stall:
        // Keep the connection open and silent until the client leaves or we stop.
        for (;;) {
            pollfd client{fd, POLLIN, 0};
            int ready = ::poll(&client, 1, 50);
            if (ready > 0 && ::recv(fd, buffer, sizeof buffer, 0) <= 0) break;
            if (waitStopped(0)) break;
        }
        return finish(false);
    case Behaviour::Reset:
        return finish(true);
    case Behaviour::Endless: {
        sendAll(fd, "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\nConnection: close\r\n\r\n");
        std::string chunk(65536, 'x');
        while (!waitStopped(0) && sendAll(fd, chunk)) {
        }
        return finish(false);
    }
    case Behaviour::Respond:
        break;
    }
    if (route.delay > 0 && waitStopped(route.delay)) return finish(false);
    const Response& response = route.response;
    std::string head = "HTTP/1.1 " + std::to_string(response.status) + " " + reason(response.status) + "\r\n";
    for (const auto& [name, value] : response.headers)
        head += name + ": " + value + "\r\n";
    head += "Content-Length: " + std::to_string(response.body.size()) + "\r\nConnection: close\r\n\r\n";
    if (sendAll(fd, head)) sendAll(fd, response.body);
    ::shutdown(fd, SHUT_WR);
    // Let the client read everything before the socket goes away.
    pollfd client{fd, POLLIN, 0};
    ::poll(&client, 1, 1000);
    finish(false);
}

} // namespace morvane::test
