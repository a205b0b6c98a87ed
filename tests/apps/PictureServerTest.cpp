#include "PictureServer.h"

#include <morvane/sys/Fetch.h>

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <thread>

using gallery::PictureServer;

namespace {

// Sends the bytes as they are and reads the whole answer (the server closes
// the connection after each one). "" when no connection could be made.
std::string roundTrip(int port, const std::string& request) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(static_cast<std::uint16_t>(port));
    timeval timeout{5, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    std::string answer;
    if (::connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to) == 0) {
        ::send(fd, request.data(), request.size(), MSG_NOSIGNAL);
        char buffer[4096];
        ssize_t got;
        while ((got = ::recv(fd, buffer, sizeof buffer, 0)) > 0)
            answer.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return answer;
}

std::string get(int port, const std::string& target, const std::string& method = "GET") {
    return roundTrip(port, method + " " + target + " HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
}

std::string statusLine(const std::string& answer) {
    return answer.substr(0, answer.find("\r\n"));
}

std::string bodyOf(const std::string& answer) {
    const std::size_t end = answer.find("\r\n\r\n");
    return end == std::string::npos ? std::string() : answer.substr(end + 4);
}

class PictureServerTest : public ::testing::Test {
  protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(server_.start(&error)) << error;
        server_.publish("/pictures/a.png", "image/png", std::string("\x89PNG\r\n\x1a\n-picture-", 17));
    }
    PictureServer server_;
};

} // namespace

TEST_F(PictureServerTest, serves_published_pictures_with_their_type_and_length) {
    const std::string answer = get(server_.port(), "/pictures/a.png");
    EXPECT_EQ(statusLine(answer), "HTTP/1.1 200 OK");
    EXPECT_NE(answer.find("\r\nContent-Type: image/png\r\n"), std::string::npos) << answer;
    EXPECT_NE(answer.find("\r\nContent-Length: 17\r\n"), std::string::npos) << answer;
    EXPECT_EQ(bodyOf(answer), std::string("\x89PNG\r\n\x1a\n-picture-", 17));

    // HEAD: the same headers and no body; a query does not change the path.
    const std::string head = get(server_.port(), "/pictures/a.png", "HEAD");
    EXPECT_NE(head.find("\r\nContent-Length: 17\r\n"), std::string::npos) << head;
    EXPECT_EQ(bodyOf(head), "");
    EXPECT_EQ(statusLine(get(server_.port(), "/pictures/a.png?v=2")), "HTTP/1.1 200 OK");
    EXPECT_EQ(server_.requestCount("/pictures/a.png"), 3);

    // A new version replaces the old one, and the kit's own client reads it.
    server_.publish("/pictures/a.png", "image/png", "version two");
    const auto fetched = morvane::sys::fetch(server_.address("/pictures/a.png"));
    ASSERT_TRUE(fetched.ok()) << fetched.error;
    EXPECT_EQ(fetched.body, "version two");
}

TEST_F(PictureServerTest, answers_404_for_paths_it_does_not_have) {
    for (const char* target :
         {"/", "/pictures/", "/pictures/b.png", "/pictures/a.png/x", "/PICTURES/a.png"}) {
        const std::string answer = get(server_.port(), target);
        EXPECT_EQ(statusLine(answer), "HTTP/1.1 404 Not Found") << target;
        EXPECT_NE(answer.find("Content-Length: "), std::string::npos) << target;
    }
    EXPECT_EQ(server_.requestCount("/pictures/a.png"), 0);
}

TEST_F(PictureServerTest, refuses_paths_that_climb_or_hide_characters) {
    // Even one that would land on a served picture after climbing back.
    for (const char* target : {"/../etc/passwd", "/pictures/../pictures/a.png", "/pictures/./a.png",
                               "/%2e%2e/etc/passwd", "/pictures/%2E%2E/pictures/a.png", "/..", "/a%00.png",
                               "/pictures\\..\\a.png", "/%zz", "/%2", "pictures/a.png", "*"}) {
        EXPECT_EQ(statusLine(get(server_.port(), target)), "HTTP/1.1 400 Bad Request") << target;
    }
    EXPECT_EQ(server_.requestCount("/pictures/a.png"), 0);
}

TEST_F(PictureServerTest, rejects_malformed_requests_with_the_right_status) {
    const int port = server_.port();
    EXPECT_EQ(statusLine(roundTrip(port, "garbage\r\n\r\n")), "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png\r\n\r\n")), "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(statusLine(roundTrip(port, "GET  /pictures/a.png HTTP/1.1\r\nHost: x\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png FTP/1.1\r\nHost: x\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png HTTP/2.0\r\nHost: x\r\n\r\n")),
              "HTTP/1.1 505 HTTP Version Not Supported");
    // HTTP/1.1 needs a Host; 1.0 does not. Header lines need a name and a colon.
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png HTTP/1.1\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png HTTP/1.0\r\n\r\n")), "HTTP/1.1 200 OK");
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png HTTP/1.1\r\nHost x\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");
    EXPECT_EQ(statusLine(roundTrip(port, "GET /pictures/a.png HTTP/1.1\r\nHost : x\r\n\r\n")),
              "HTTP/1.1 400 Bad Request");

    const std::string post = roundTrip(port, "POST /pictures/a.png HTTP/1.1\r\nHost: x\r\n\r\n");
    EXPECT_EQ(statusLine(post), "HTTP/1.1 405 Method Not Allowed");
    EXPECT_NE(post.find("\r\nAllow: GET, HEAD\r\n"), std::string::npos) << post;

    const std::string huge = "GET /pictures/a.png HTTP/1.1\r\nHost: x\r\nX-Filler: " +
                             std::string(PictureServer::kMaxHeadBytes, 'x') + "\r\n\r\n";
    EXPECT_EQ(statusLine(roundTrip(port, huge)), "HTTP/1.1 431 Request Header Fields Too Large");
    // The server still answers after all of that.
    EXPECT_EQ(statusLine(get(port, "/pictures/a.png")), "HTTP/1.1 200 OK");
}

TEST_F(PictureServerTest, stops_at_once_even_with_a_silent_client_connected) {
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(static_cast<std::uint16_t>(server_.port()));
    ASSERT_EQ(::connect(fd, reinterpret_cast<sockaddr*>(&to), sizeof to), 0);
    ::send(fd, "GET /pict", 9, MSG_NOSIGNAL); // and then nothing more
    std::this_thread::sleep_for(std::chrono::milliseconds(100));

    const auto start = std::chrono::steady_clock::now();
    server_.stop();
    const double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    EXPECT_LT(took, PictureServer::kIdleMilliseconds / 1000.0 / 2) << "stop waited for the client";
    EXPECT_FALSE(server_.isRunning());
    ::close(fd);

    // Nobody listens any more; stopping again is harmless.
    EXPECT_EQ(get(server_.port(), "/pictures/a.png"), "");
    server_.stop();
}
