// Plain HTTP requests to a web server.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

#include "base/strings.h"

namespace platform {

// How long a request may stand still, in milliseconds.
struct HttpLimits {
    std::uint32_t connect_ms = 30'000;   // until the server's name is found and it accepts
    std::uint32_t silence_ms = 300'000;  // from one byte of the response to the next
};

// A session with a connection to one server. Steps go in the order below; each sets `code` to the
// system's error code when it fails: that of WinInet (GetLastError) on Windows, that of libcurl
// (CURLcode) on Linux.
class HttpClient {
public:
    // The longest piece of a response.
    static constexpr std::size_t kPieceBytes = 2047;
    using TakePiece = std::function<void(std::string_view piece)>;

    virtual ~HttpClient() = default;

    // Opens a session with the system's proxy settings and certificate authorities: on Linux those
    // of the environment variables http_proxy, https_proxy, no_proxy and SSL_CERT_FILE. On failure
    // returns null.
    static std::unique_ptr<HttpClient> Open(std::uint32_t& code, const String& product,
                                            const HttpLimits& limits = {});

    // Takes the server for the requests that follow. It is not called yet, and its name is not
    // taken apart: a scheme, a port or a path in it make a name that is not found.
    virtual bool Connect(std::uint32_t& code, const String& server, std::uint16_t port) = 0;

    // Prepares a request without headers or body. Needs a server.
    // method: as it is to be sent; empty: GET
    // target: path and query; begins with "/" and holds only characters that a target may have
    virtual bool OpenRequest(std::uint32_t& code, const String& method, const String& target) = 0;

    // Sends the prepared request, follows redirects, also to https, and hands the body of the
    // response to `take`, in pieces of up to kPieceBytes bytes. False when no response came. A
    // response of any status is success, and so is one whose body breaks off: `take` got the pieces
    // before that.
    virtual bool Send(std::uint32_t& code, const TakePiece& take) = 0;
};

}  // namespace platform
