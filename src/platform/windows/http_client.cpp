#include "platform/http_client.h"

#include <windows.h>
// wininet.h wants windows.h first.
#include <wininet.h>

#include <array>

#include "platform/windows/wide.h"

namespace platform {
namespace {

constexpr DWORD_PTR kContext = 1;

struct CloseInternetHandle {
    void operator()(HINTERNET handle) const { ::InternetCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<void, CloseInternetHandle>;

class WinInetClient final : public HttpClient {
public:
    WinInetClient(InternetHandle session, const HttpLimits& limits)
        : limits_(limits), session_(std::move(session)) {}

    bool Connect(std::uint32_t& code, const String& server, std::uint16_t port) override {
        request_.reset();
        connection_.reset(::InternetConnectW(session_.get(), AsWide(server), port, nullptr, nullptr,
                                             INTERNET_SERVICE_HTTP, 0, kContext));
        return Check(code, connection_ != nullptr);
    }

    bool OpenRequest(std::uint32_t& code, const String& method, const String& target) override {
        request_.reset(::HttpOpenRequestW(connection_.get(), AsWide(method), AsWide(target),
                                          nullptr, nullptr, nullptr, INTERNET_FLAG_KEEP_CONNECTION,
                                          kContext));
        if (!Check(code, request_ != nullptr)) return false;
        // More attempts to connect would each take the whole time again.
        SetOption(INTERNET_OPTION_CONNECT_RETRIES, 1);
        SetOption(INTERNET_OPTION_CONNECT_TIMEOUT, limits_.connect_ms);
        SetOption(INTERNET_OPTION_SEND_TIMEOUT, limits_.silence_ms);
        SetOption(INTERNET_OPTION_RECEIVE_TIMEOUT, limits_.silence_ms);
        SetOption(INTERNET_OPTION_DATA_RECEIVE_TIMEOUT, limits_.silence_ms);
        return true;
    }

    bool Send(std::uint32_t& code, const TakePiece& take) override {
        const BOOL sent = ::HttpSendRequestW(request_.get(), nullptr, 0, nullptr, 0);
        if (!Check(code, sent != FALSE)) return false;
        std::array<char, kPieceBytes> piece;
        DWORD count = 0;
        while (::InternetReadFile(request_.get(), piece.data(), kPieceBytes, &count) != FALSE &&
               count > 0) {
            take({piece.data(), count});
        }
        return true;
    }

private:
    static bool Check(std::uint32_t& code, bool succeeded) {
        if (!succeeded) code = ::GetLastError();
        return succeeded;
    }

    // On the request itself: not every WinInet hands the session's options down.
    void SetOption(DWORD option, DWORD value) {
        ::InternetSetOptionW(request_.get(), option, &value, sizeof(value));
    }

    const HttpLimits limits_;
    // Closed in the reverse order: a request before its connection, that before the session.
    InternetHandle session_;
    InternetHandle connection_;
    InternetHandle request_;
};

}  // namespace

std::unique_ptr<HttpClient> HttpClient::Open(std::uint32_t& code, const String& product,
                                             const HttpLimits& limits) {
    InternetHandle session(
        ::InternetOpenW(AsWide(product), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!session) {
        code = ::GetLastError();
        return nullptr;
    }
    return std::make_unique<WinInetClient>(std::move(session), limits);
}

}  // namespace platform
