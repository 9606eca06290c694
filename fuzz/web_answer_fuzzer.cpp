// Any bytes as the answer of a web server. They are sent to whoever asks, redirects to other
// servers included, for which the server is the proxy.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>

#include "system/internet.h"

namespace {

// Answers each connection with the same bytes.
class Server {
public:
    Server() : listening_(::socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const general = reinterpret_cast<sockaddr*>(&address);
        if (::bind(listening_, general, size) != 0 || ::listen(listening_, 16) != 0 ||
            ::getsockname(listening_, general, &size) != 0) {
            std::abort();
        }
        port_ = ::ntohs(address.sin_port);
        const std::string proxy = "http://127.0.0.1:" + std::to_string(port_);
        for (const char* const name : {"http_proxy", "https_proxy", "all_proxy"}) {
            ::setenv(name, proxy.c_str(), 1);
        }
        std::thread([this] { Serve(); }).detach();
    }

    std::uint16_t Port() const { return port_; }

    void AnswerWith(std::string answer) {
        const std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }

private:
    void Serve() {
        for (;;) {
            const int connection = ::accept(listening_, nullptr, nullptr);
            char request[4096];
            if (connection >= 0 && ::recv(connection, request, sizeof request, 0) > 0)
                Send(connection);
            ::close(connection);
        }
    }

    void Send(int connection) {
        const std::lock_guard lock(mutex_);
        ::send(connection, answer_.data(), answer_.size(), MSG_NOSIGNAL);
        ::shutdown(connection, SHUT_WR);
        char rest[4096];
        while (::recv(connection, rest, sizeof rest, MSG_DONTWAIT) > 0) {
        }
    }

    const int listening_;
    std::uint16_t port_ = 0;
    std::mutex mutex_;
    std::string answer_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Server& server = *new Server;  // as long as its thread
    server.AnswerWith({reinterpret_cast<const char*>(data), size});
    String error;
    String response;
    const bool done = dInternet().Call(error, response, u"127.0.0.1", u"/", server.Port(), u"GET");
    if (done != error.empty() || response.size() > size) __builtin_trap();
    return 0;
}
