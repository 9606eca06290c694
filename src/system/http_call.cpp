#include "system/http_call.h"

#include "files/text.h"
#include "system/internet.h"

namespace {

constexpr std::uint16_t kDefaultPort = 80;

constexpr KeyTable kKeys({
    {.name = u"URL",
     .meaning = u"the server: its name or address alone",
     .macros = Macros::Replaced,
     .names = Names::Url,
     .needed = u"url"},
    {.name = u"Parameters",
     .meaning = u"path and query of the request",
     .macros = Macros::Replaced,
     .names = Names::Url},
    {.name = u"Method",
     .edition1 = u"GET",
     .edition2 = u"GET",
     .meaning = u"the request's method",
     .macros = Macros::Replaced},
    {.name = u"Port",
     .kind = KeyKind::Number,
     .edition1 = u"80",
     .edition2 = u"80",
     .meaning = u"the server's port",
     .macros = Macros::Replaced},
});
constexpr Key kUrl = kKeys[u"URL"];
constexpr Key kParameters = kKeys[u"Parameters"];
constexpr Key kMethod = kKeys[u"Method"];
constexpr Key kPort = kKeys[u"Port"];

// The lower 16 bits of the number that `value` begins with.
std::uint16_t PortOf(StringView value) {
    const auto port = static_cast<std::uint16_t>(text::ToInteger(value));
    return port == 0 ? kDefaultPort : port;
}

}  // namespace

KeyList HttpCallKeys() { return {kKeys}; }

bool HttpCall(String& error, const SectionSettings& settings) {
    const String server = settings.Text(kUrl);
    const String object = settings.Text(kParameters);
    const String method = settings.Text(kMethod);
    const std::uint16_t port = PortOf(settings.Text(kPort));
    if (server.empty()) {
        error = u"Http call: URL is empty.";
        return false;
    }
    String response;
    return dInternet().Call(error, response, server, object, port, method);
}
