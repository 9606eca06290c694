#include "system/internet.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <thread>

#include "base/utf8.h"
#include "platform/posix/descriptor.h"

namespace {

// Listens on a free port of the loopback address, and does no more than that by itself.
class Listener {
public:
    explicit Listener(int backlog) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address_);
        EXPECT_EQ(::bind(socket_.Get(), Address(), size), 0);
        EXPECT_EQ(::getsockname(socket_.Get(), Address(), &size), 0);
        EXPECT_EQ(::listen(socket_.Get(), backlog), 0);
    }
    std::uint16_t Port() const { return ntohs(address_.sin_port); }
    sockaddr* Address() { return reinterpret_cast<sockaddr*>(&address_); }

    // Takes one request and answers it.
    void Answer(std::string_view response) const {
        const platform::Descriptor peer(::accept(socket_.Get(), nullptr, nullptr));
        std::string request;
        char byte = 0;
        while (!request.ends_with("\r\n\r\n") && ::read(peer.Get(), &byte, 1) == 1) request += byte;
        platform::WriteFully(peer.Get(), std::as_bytes(std::span(response)));
    }

private:
    platform::Descriptor socket_;
    sockaddr_in address_{};
};

TEST(Internet, ZeroByteCutsItsPieceAndBytesAreWidened) {
    constexpr std::size_t kPiece = 2047;
    const std::string first = "\xE4\xFF" + std::string(kPiece - 2, 'a');
    const std::string second = std::string("b\0c\0", 4) + std::string(kPiece - 4, 'd');
    const std::string third = std::string(kPiece - 1, 'e') + '\0';
    const Listener listener(1);
    std::thread server(
        [&] { listener.Answer("HTTP/1.1 500 Bad\r\n\r\n" + first + second + third + "\x01z"); });
    String error;
    String response = u"of an earlier call";
    EXPECT_TRUE(dInternet().Call(error, response, u"127.0.0.1", u"/", listener.Port(), u"GET"));
    server.join();
    EXPECT_EQ(error, u"");
    EXPECT_EQ(ToUtf8(response),
              "äÿ" + std::string(kPiece - 2, 'a') + "b" + std::string(kPiece - 1, 'e') + "\x01z");
}

TEST(Internet, RequestNeedsAConnection) {
    dInternet internet;
    String error;
    String response;
    EXPECT_TRUE(internet.Initialize(error));
    EXPECT_FALSE(internet.Request(error, response, u"/", u"GET"));
    EXPECT_EQ(ToUtf8(error), "dInternet::Request error: the connection is not established yet.");
}

std::uint32_t CodeOfCall(std::uint16_t port, const platform::HttpLimits& limits) {
    std::uint32_t code = 0;
    const auto client = platform::HttpClient::Open(code, u"test", limits);
    EXPECT_TRUE(client->Connect(code, u"127.0.0.1", port));
    EXPECT_TRUE(client->OpenRequest(code, u"GET", u"/"));
    EXPECT_FALSE(client->Send(code, [](std::string_view) {}));
    return code;
}

constexpr std::uint32_t kNever = 3'600'000;
constexpr std::uint32_t kTimedOut = 28;

TEST(HttpClient, SilentServerIsGivenUp) {
    const Listener listener(1);
    EXPECT_EQ(CodeOfCall(listener.Port(), {.connect_ms = kNever, .silence_ms = 50}), kTimedOut);
}

TEST(HttpClient, ServerThatDoesNotAcceptIsGivenUp) {
    Listener listener(0);  // room for one connection, which this is:
    const platform::Descriptor first(::socket(AF_INET, SOCK_STREAM, 0));
    ASSERT_EQ(::connect(first.Get(), listener.Address(), sizeof(sockaddr_in)), 0);
    EXPECT_EQ(CodeOfCall(listener.Port(), {.connect_ms = 50, .silence_ms = kNever}), kTimedOut);
}

}  // namespace
