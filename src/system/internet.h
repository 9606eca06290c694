#pragma once

#include <cstdint>
#include <memory>

#include "base/strings.h"
#include "platform/http_client.h"

// Calls a web server. Messages hold the system's error code, see platform::HttpClient. No status
// code and no header of a response is looked at.
class dInternet {
public:
    // Initialize, Connect and Request in one, and Close whatever came of them.
    // response: the body, one character for each byte and of its value
    // server:   a host name or address and nothing else
    // object:   path and query, see Request
    bool Call(String& error, String& response, const String& server, const String& object,
              std::uint16_t port, const String& method);

    // Opens a session.
    bool Initialize(String& error);
    // Takes the server; nothing is sent yet. Needs a session.
    bool Connect(String& error, const String& server, std::uint16_t port);
    // Sends one request without headers or body and reads the response to its end, or to where it
    // breaks off. Of each piece of up to 2,047 bytes the part from its first zero byte on is left
    // out.
    // object: sent as it is, with a "/" in front when it has none. What cannot stand in a request
    //         (blanks, "#", characters beyond ASCII) is sent as "%" and the bytes of its UTF-8.
    bool Request(String& error, String& response, const String& object, const String& method);
    void Close();

private:
    std::unique_ptr<platform::HttpClient> client_;
    bool connected_ = false;
};
