#include "system/http_call.h"

#include "files/text.h"
#include "system/internet.h"

namespace {

constexpr std::uint16_t kDefaultPort = 80;

// The lower 16 bits of the number that `value` begins with.
std::uint16_t PortOf(StringView value) {
    const auto port = static_cast<std::uint16_t>(text::ToInteger(value));
    return port == 0 ? kDefaultPort : port;
}

}  // namespace

bool HttpCall(String& error, const SectionSettings& settings) {
    const String server = settings.ResolvedText(u"URL");
    const String object = settings.ResolvedText(u"Parameters");
    const String method = settings.ResolvedText(u"Method", u"GET");
    const std::uint16_t port = PortOf(settings.ResolvedText(u"Port", u"80"));
    if (server.empty()) {
        error = u"Http call: URL is empty.";
        return false;
    }
    String response;
    return dInternet().Call(error, response, server, object, port, method);
}
