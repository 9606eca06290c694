#include "system/internet.h"

#include "base/utf8.h"
#include "files/format.h"
#include "files/text.h"

namespace {

// A blank or a line end would end the target, and a line end would begin a header. A "#" would be
// dropped with all behind it.
bool MayStandInTarget(char byte) { return byte > ' ' && byte < '\x7F' && byte != '#'; }

String TargetOf(StringView object) {
    constexpr StringView kDigits = u"0123456789ABCDEF";
    String target;
    if (!object.starts_with(u'/')) target = u"/";
    for (const char byte : ToNativeBytes(object)) {
        if (MayStandInTarget(byte)) {
            target += static_cast<char16_t>(byte);
        } else {
            const auto value = static_cast<unsigned char>(byte);
            target += {u'%', kDigits[value >> 4], kDigits[value & 0xF]};
        }
    }
    return target;
}

}  // namespace

bool dInternet::Call(String& error, String& response, const String& server, const String& object,
                     std::uint16_t port, const String& method) {
    const bool done = Initialize(error) && Connect(error, server, port) &&
                      Request(error, response, object, method);
    Close();
    return done;
}

bool dInternet::Initialize(String& error) {
    std::uint32_t code = 0;
    client_ = platform::HttpClient::Open(code, u"Korvex Quillon");
    if (!client_) error = Format(u"dInternet::Initialize error (%d)", code);
    return client_ != nullptr;
}

bool dInternet::Connect(String& error, const String& server, std::uint16_t port) {
    std::uint32_t code = 0;
    connected_ = client_->Connect(code, server, port);
    if (!connected_) error = Format(u"dInternet::Connect error (%d)", code);
    return connected_;
}

bool dInternet::Request(String& error, String& response, const String& object,
                        const String& method) {
    response.clear();
    if (!connected_) {
        error = u"dInternet::Request error: the connection is not established yet.";
        return false;
    }
    std::uint32_t code = 0;
    if (!client_->OpenRequest(code, method, TargetOf(object))) {
        error = Format(u"dInternet::Request error (%d)", code);
        return false;
    }
    const auto append = [&response](std::string_view piece) {
        response += text::Widen(piece.substr(0, piece.find('\0')));
    };
    if (!client_->Send(code, append)) {
        error = Format(u"dInternet::Send Request error (%d)", code);
        return false;
    }
    return true;
}

void dInternet::Close() {
    connected_ = false;
    client_.reset();
}
