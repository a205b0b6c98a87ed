#include "PictureServer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

namespace gallery {

namespace {

std::string_view reasonOf(int status) {
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 404:
        return "Not Found";
    case 405:
        return "Method Not Allowed";
    case 431:
        return "Request Header Fields Too Large";
    case 505:
        return "HTTP Version Not Supported";
    default:
        return "Error";
    }
}

PictureServer::Answer failure(int status) {
    PictureServer::Answer answer;
    answer.status = status;
    answer.contentType = "text/plain; charset=utf-8";
    answer.body = std::to_string(status) + " " + std::string(reasonOf(status)) + "\n";
    return answer;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The path of a request target with its %-escapes decoded; nothing when an
// escape is malformed or the path could name something outside the served
// set: a NUL, a backslash, or a "." or ".." segment, escaped or not.
std::optional<std::string> cleanPath(std::string_view target) {
    if (target.empty() || target.front() != '/') return std::nullopt;
    target = target.substr(0, target.find('?'));
    std::string path;
    for (std::size_t i = 0; i < target.size(); ++i) {
        if (target[i] != '%') {
            path += target[i];
            continue;
        }
        if (i + 2 >= target.size()) return std::nullopt;
        const int high = hexDigit(target[i + 1]), low = hexDigit(target[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        path += static_cast<char>(high * 16 + low);
        i += 2;
    }
    if (path.find('\0') != std::string::npos || path.find('\\') != std::string::npos) return std::nullopt;
    std::size_t start = 1;
    while (start <= path.size()) {
        const std::size_t end = std::min(path.find('/', start), path.size());
        const std::string_view segment = std::string_view(path).substr(start, end - start);
        if (segment == "." || segment == "..") return std::nullopt;
        start = end + 1;
    }
    return path;
}

bool startsWithNoCase(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(text[i])) !=
            std::tolower(static_cast<unsigned char>(prefix[i])))
            return false;
    return true;
}

// Writes everything unless the peer goes away, stalls past the idle limit or
// the server is told to stop.
void sendAll(int socket, int wake, std::string_view bytes) {
    while (!bytes.empty()) {
        pollfd fds[2] = {{socket, POLLOUT, 0}, {wake, POLLIN, 0}};
        if (::poll(fds, 2, PictureServer::kIdleMilliseconds) <= 0 || fds[1].revents) return;
        const ssize_t sent = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (sent <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
}

} // namespace

PictureServer::~PictureServer() {
    stop();
}

bool PictureServer::start(std::string* error) {
    if (isRunning()) return true;
    auto fail = [&](const char* what) {
        if (error) *error = std::string(what) + ": " + std::strerror(errno);
        if (listener_ >= 0) ::close(listener_);
        for (int& end : wake_)
            if (end >= 0) ::close(std::exchange(end, -1));
        listener_ = -1;
        return false;
    };
    listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener_ < 0) return fail("socket");
    sockaddr_in local{};
    local.sin_family = AF_INET;
    local.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    local.sin_port = 0; // the system picks a free port
    if (::bind(listener_, reinterpret_cast<sockaddr*>(&local), sizeof local) != 0) return fail("bind");
    if (::listen(listener_, 64) != 0) return fail("listen");
    socklen_t length = sizeof local;
    if (::getsockname(listener_, reinterpret_cast<sockaddr*>(&local), &length) != 0)
        return fail("getsockname");
    if (::pipe2(wake_, O_CLOEXEC) != 0) return fail("pipe");
    port_ = ntohs(local.sin_port);
    thread_ = std::thread([this] { serve(); });
    return true;
}

void PictureServer::stop() {
    if (!thread_.joinable()) return;
    const char byte = 1;
    while (::write(wake_[1], &byte, 1) < 0 && errno == EINTR) {
    }
    thread_.join();
    ::close(listener_);
    listener_ = -1;
    for (int& end : wake_)
        ::close(std::exchange(end, -1));
}

std::string PictureServer::address(std::string_view path) const {
    return "http://127.0.0.1:" + std::to_string(port_) + std::string(path);
}

void PictureServer::publish(std::string path, std::string contentType, std::string body) {
    std::lock_guard lock(mutex_);
    resources_[std::move(path)] = Resource{std::move(contentType), std::move(body)};
}

int PictureServer::requestCount(std::string_view path) const {
    std::lock_guard lock(mutex_);
    auto found = counts_.find(path);
    return found == counts_.end() ? 0 : found->second;
}

PictureServer::Answer PictureServer::answer(std::string_view head) const {
    const std::size_t lineEnd = head.find("\r\n");
    const std::string_view line = head.substr(0, lineEnd);
    // "METHOD SP target SP version", nothing more and nothing less.
    const std::size_t firstSpace = line.find(' ');
    const std::size_t secondSpace =
        firstSpace == std::string_view::npos ? firstSpace : line.find(' ', firstSpace + 1);
    if (secondSpace == std::string_view::npos || line.find(' ', secondSpace + 1) != std::string_view::npos)
        return failure(400);
    const std::string_view method = line.substr(0, firstSpace);
    const std::string_view target = line.substr(firstSpace + 1, secondSpace - firstSpace - 1);
    const std::string_view version = line.substr(secondSpace + 1);
    if (method.empty() || target.empty() || !version.starts_with("HTTP/")) return failure(400);
    if (version != "HTTP/1.1" && version != "HTTP/1.0") return failure(505);

    // Header lines must each be "name: value"; HTTP/1.1 requires a Host.
    bool hasHost = false;
    std::string_view rest = lineEnd == std::string_view::npos ? std::string_view() : head.substr(lineEnd + 2);
    while (!rest.empty()) {
        const std::size_t end = rest.find("\r\n");
        const std::string_view header = rest.substr(0, end);
        const std::size_t colon = header.find(':');
        if (colon == 0 || colon == std::string_view::npos ||
            header.substr(0, colon).find_first_of(" \t") != std::string_view::npos)
            return failure(400);
        if (startsWithNoCase(header, "host:")) hasHost = true;
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 2);
    }
    if (version == "HTTP/1.1" && !hasHost) return failure(400);

    if (method != "GET" && method != "HEAD") {
        Answer refused = failure(405);
        refused.allow = "GET, HEAD";
        return refused;
    }
    const std::optional<std::string> path = cleanPath(target);
    if (!path) return failure(400);

    Answer found;
    {
        std::lock_guard lock(mutex_);
        auto resource = resources_.find(*path);
        if (resource == resources_.end()) {
            found = failure(404);
        } else {
            found.contentType = resource->second.contentType;
            found.body = resource->second.body;
            ++counts_[*path];
        }
    }
    found.headOnly = method == "HEAD";
    return found;
}

std::string PictureServer::encode(const Answer& answer) {
    std::string out = "HTTP/1.1 " + std::to_string(answer.status) + " " +
                      std::string(reasonOf(answer.status)) + "\r\nContent-Type: " + answer.contentType +
                      "\r\nContent-Length: " + std::to_string(answer.body.size()) + "\r\n";
    if (!answer.allow.empty()) out += "Allow: " + answer.allow + "\r\n";
    out += "Connection: close\r\n\r\n";
    if (!answer.headOnly) out += answer.body;
    return out;
}

void PictureServer::serve() {
    for (;;) {
        pollfd fds[2] = {{listener_, POLLIN, 0}, {wake_[0], POLLIN, 0}};
        if (::poll(fds, 2, -1) < 0) {
            if (errno == EINTR) continue;
            return;
        }
        if (fds[1].revents) return;
        if (!(fds[0].revents & POLLIN)) continue;
        const int client = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        if (client < 0) continue;
        handle(client);
        ::close(client);
    }
}

void PictureServer::handle(int client) {
    std::string head;
    char buffer[2048];
    std::size_t end;
    // Read up to the blank line that ends the head; a body (there should be
    // none for GET) is left unread, since the connection closes after the answer.
    while ((end = head.find("\r\n\r\n")) == std::string::npos) {
        if (head.size() > kMaxHeadBytes) {
            sendAll(client, wake_[0], encode(failure(431)));
            return;
        }
        pollfd fds[2] = {{client, POLLIN, 0}, {wake_[0], POLLIN, 0}};
        const int ready = ::poll(fds, 2, kIdleMilliseconds);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0 || fds[1].revents) return;
        const ssize_t got = ::recv(client, buffer, sizeof buffer, 0);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return; // the client went away before finishing
        head.append(buffer, static_cast<std::size_t>(got));
    }
    if (end > kMaxHeadBytes) {
        sendAll(client, wake_[0], encode(failure(431)));
        return;
    }
    head.resize(end);
    sendAll(client, wake_[0], encode(answer(head)));
}

} // namespace gallery
