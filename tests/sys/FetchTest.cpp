// Fetching from a loopback server that misbehaves on purpose: errors,
// stalls, resets, endless and oversized bodies, redirects and schemes that
// must be refused.
#include <morvane/sys/Fetch.h>

#include "LoopbackServer.h"

#include <gtest/gtest.h>

#include <chrono>

using namespace morvane::sys;
using morvane::test::LoopbackServer;
using Failure = FetchResult::Failure;

namespace {

// Short limits so that misbehaving servers cost the suite little time.
FetchOptions quick() {
    FetchOptions options;
    options.connectTimeout = 2;
    options.totalTimeout = 1;
    options.maxBytes = 1 << 20;
    options.maxRedirects = 3;
    return options;
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

TEST(Fetch, reads_a_whole_resource) {
    LoopbackServer server;
    std::string picture(300000, '\0');
    for (size_t i = 0; i < picture.size(); ++i)
        picture[i] = char(i * 7 % 256);
    server.serve("/images/food/soup.png", picture, "image/png");
    auto result = fetch(server.address("/images/food/soup.png?x=1"), quick());
    ASSERT_TRUE(result.ok()) << result.error;
    EXPECT_EQ(result.status, 200);
    EXPECT_EQ(result.body, picture);
    EXPECT_TRUE(result.error.empty());
    EXPECT_EQ(server.requestCount("/images/food/soup.png"), 1);
    EXPECT_EQ(server.requestCount("/images/food/soup.png?x=1"), 1);
}

TEST(Fetch, http_errors_are_failures_with_their_status) {
    LoopbackServer server;
    auto missing = fetch(server.address("/missing.png"), quick());
    EXPECT_FALSE(missing);
    EXPECT_EQ(missing.failure, Failure::HttpStatus);
    EXPECT_EQ(missing.status, 404);
    EXPECT_NE(missing.error.find("404"), std::string::npos);

    server.respond("/broken", {500, "oops", {}});
    EXPECT_EQ(fetch(server.address("/broken"), quick()).status, 500);
}

// A server that accepts and then says nothing must not hold the caller beyond
// the total timeout.
TEST(Fetch, a_stalling_server_ends_within_the_timeout) {
    LoopbackServer server;
    server.stall("/slow.png");
    auto start = std::chrono::steady_clock::now();
    auto result = fetch(server.address("/slow.png"), quick());
    EXPECT_EQ(result.failure, Failure::TimedOut);
    EXPECT_LT(secondsSince(start), 5);
    EXPECT_TRUE(result.body.empty());

    // A slow answer within the timeout is fine.
    server.delay("/late.png", 0.2, {200, "late", {}});
    EXPECT_EQ(fetch(server.address("/late.png"), quick()).body, "late");
}

// Nobody listening, or a connection reset before any answer.
TEST(Fetch, broken_connections_are_clean_failures) {
    std::string gone;
    {
        LoopbackServer server;
        gone = server.address("/gone.png");
    }
    auto expectCannotConnect = [](const std::string& address) {
        auto result = fetch(address, quick());
        EXPECT_EQ(result.failure, Failure::CannotConnect) << address;
        EXPECT_EQ(result.status, 0);
        EXPECT_FALSE(result.error.empty());
    };
    expectCannotConnect(gone); // before another server can take the port
    LoopbackServer server;
    server.reset("/reset.png");
    expectCannotConnect(server.address("/reset.png"));
}

// Endless data and an announced size above the cap are both cut off at the cap.
TEST(Fetch, bodies_above_the_cap_are_refused) {
    LoopbackServer server;
    server.endless("/endless");
    auto start = std::chrono::steady_clock::now();
    auto endless = fetch(server.address("/endless"), quick());
    EXPECT_EQ(endless.failure, Failure::TooLarge);
    EXPECT_TRUE(endless.body.empty());
    EXPECT_LT(secondsSince(start), 5);

    server.serve("/big", std::string((1 << 20) + 1, 'b'));
    EXPECT_EQ(fetch(server.address("/big"), quick()).failure, Failure::TooLarge);
    server.serve("/exact", std::string(1 << 20, 'e'));
    EXPECT_TRUE(fetch(server.address("/exact"), quick()));
}

TEST(Fetch, redirects_are_followed_within_the_limit) {
    LoopbackServer server;
    server.redirect("/old.png", "/older.png", 301);
    server.redirect("/older.png", server.address("/new.png"));
    server.serve("/new.png", "pixels");
    auto moved = fetch(server.address("/old.png"), quick());
    ASSERT_TRUE(moved) << moved.error;
    EXPECT_EQ(moved.body, "pixels");
    EXPECT_EQ(moved.finalAddress, server.address("/new.png"));

    server.redirect("/loop", "/loop");
    auto loop = fetch(server.address("/loop"), quick());
    EXPECT_EQ(loop.failure, Failure::TooManyRedirects);
    EXPECT_EQ(server.requestCount("/loop"), 4) << "the first request and three redirects";
}

// Only http and https: local files and other schemes are refused outright,
// and so is a redirect that points to them.
TEST(Fetch, other_schemes_are_refused_even_through_redirects) {
    for (const char* address :
         {"file:///etc/passwd", "ftp://127.0.0.1/x", "FILE:///etc/hostname", "gopher://x"})
        EXPECT_EQ(fetch(address, quick()).failure, Failure::RefusedScheme) << address;
    for (const char* address : {"", "no address at all", "/etc/passwd"})
        EXPECT_EQ(fetch(address, quick()).failure, Failure::BadAddress) << address;

    LoopbackServer server;
    server.redirect("/to-file", "file:///etc/passwd");
    auto result = fetch(server.address("/to-file"), quick());
    EXPECT_EQ(result.failure, Failure::RefusedScheme);
    EXPECT_TRUE(result.body.empty());
}
