#include "platform/http_client.h"

#include <curl/curl.h>
#include <strings.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <string>

#include "base/utf8.h"

namespace platform {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr long kMostRedirects = 10;

struct CleanUp {
    void operator()(CURL* handle) const { ::curl_easy_cleanup(handle); }
    void operator()(CURLU* url) const { ::curl_url_cleanup(url); }
    void operator()(curl_slist* list) const { ::curl_slist_free_all(list); }
};
using EasyHandle = std::unique_ptr<CURL, CleanUp>;
using Url = std::unique_ptr<CURLU, CleanUp>;
using HeaderList = std::unique_ptr<curl_slist, CleanUp>;

// A literal IPv6 address goes into brackets, where its colons are no port.
std::string HostOf(const String& server) {
    std::string host = ToNativeBytes(server);
    if (host.find(':') != std::string::npos && !host.starts_with('[')) host = "[" + host + "]";
    return host;
}

// False for what would be more than a host in a URL: libcurl would take a path, a port or a user
// name from it.
bool IsHost(const std::string& host) {
    const Url url(::curl_url());
    return url && ::curl_url_set(url.get(), CURLUPART_HOST, host.c_str(), 0) == CURLUE_OK;
}

// One request on its way: what libcurl reports of it while it performs.
class Exchange {
public:
    Exchange(CURL* handle, const HttpClient::TakePiece& take, std::uint32_t silence_ms)
        : handle_(handle), take_(take), silence_(silence_ms) {
        piece_.reserve(HttpClient::kPieceBytes);
        ::curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, &Exchange::OnHeader);
        ::curl_easy_setopt(handle, CURLOPT_HEADERDATA, this);
        ::curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &Exchange::OnBody);
        ::curl_easy_setopt(handle, CURLOPT_WRITEDATA, this);
        ::curl_easy_setopt(handle, CURLOPT_XFERINFOFUNCTION, &Exchange::OnProgress);
        ::curl_easy_setopt(handle, CURLOPT_XFERINFODATA, this);
        ::curl_easy_setopt(handle, CURLOPT_NOPROGRESS, 0L);
    }

    // False when no response came that is not a redirect; one that breaks off counts.
    bool Perform(std::uint32_t& code) {
        const CURLcode result = ::curl_easy_perform(handle_);
        if (failure_) std::rethrow_exception(failure_);
        if (!piece_.empty()) take_(piece_);
        if (result == CURLE_OK || answered_) return true;
        code = result == CURLE_ABORTED_BY_CALLBACK ? CURLE_OPERATION_TIMEDOUT : result;
        return false;
    }

private:
    // Takes one line of the headers of a response, with its line end.
    void TakeHeader(std::string_view line) {
        last_byte_ = SteadyClock::now();
        constexpr std::string_view kLocation = "Location:";
        if (line.starts_with("HTTP/")) {
            answered_ = moved_ = false;
        } else if (::strncasecmp(line.data(), kLocation.data(),
                                 std::min(line.size(), kLocation.size())) == 0 &&
                   line.size() > kLocation.size()) {
            moved_ = true;
        } else if (line == "\r\n" || line == "\n") {
            long status = 0;
            ::curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
            answered_ = status >= 200 && !(moved_ && status / 100 == 3);
        }
    }

    // The bodies of redirects that are followed do not get here.
    void TakeBody(std::string_view bytes) {
        last_byte_ = SteadyClock::now();
        answered_ = true;
        while (!bytes.empty()) {
            const std::size_t room = HttpClient::kPieceBytes - piece_.size();
            piece_.append(bytes.substr(0, room));
            bytes.remove_prefix(std::min(room, bytes.size()));
            if (piece_.size() < HttpClient::kPieceBytes) return;
            take_(piece_);
            piece_.clear();
        }
    }

    static std::size_t OnHeader(char* bytes, std::size_t, std::size_t count, void* exchange) {
        static_cast<Exchange*>(exchange)->TakeHeader({bytes, count});
        return count;
    }

    // No exception may pass through libcurl.
    static std::size_t OnBody(char* bytes, std::size_t, std::size_t count, void* exchange) {
        auto* const self = static_cast<Exchange*>(exchange);
        try {
            self->TakeBody({bytes, count});
            return count;
        } catch (...) {
            self->failure_ = std::current_exception();
            return CURL_WRITEFUNC_ERROR;
        }
    }

    // Is called about once a second when nothing arrives. libcurl's own lowest speed would also end
    // a response that comes byte by byte.
    static int OnProgress(void* exchange, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
        const auto* const self = static_cast<const Exchange*>(exchange);
        return SteadyClock::now() - self->last_byte_ > self->silence_ ? 1 : 0;
    }

    CURL* handle_;
    const HttpClient::TakePiece& take_;
    const std::chrono::milliseconds silence_;
    SteadyClock::time_point last_byte_ = SteadyClock::now();
    bool moved_ = false;     // the headers name another place
    bool answered_ = false;  // the headers of the last response are there
    std::string piece_;
    std::exception_ptr failure_;  // what `take` threw
};

class CurlClient final : public HttpClient {
public:
    CurlClient(EasyHandle handle, const String& product, const HttpLimits& limits)
        : handle_(std::move(handle)), product_(ToUtf8(product)), limits_(limits) {
        // What libcurl would send of its own.
        for (const char* header : {"Accept:", "Content-Type:"})
            headers_.reset(::curl_slist_append(headers_.release(), header));
    }

    bool Connect(std::uint32_t&, const String& server, std::uint16_t port) override {
        host_ = HostOf(server);
        port_ = port;
        return true;
    }

    bool OpenRequest(std::uint32_t&, const String& method, const String& target) override {
        CURL* const handle = handle_.get();
        ::curl_easy_reset(handle);
        const std::string url =
            "http://" + host_ + ":" + std::to_string(port_) + ToNativeBytes(target);
        ::curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
        ::curl_easy_setopt(handle, CURLOPT_PATH_AS_IS, 1L);
        ::curl_easy_setopt(handle, CURLOPT_USERAGENT, product_.c_str());
        ::curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers_.get());
        FollowRedirects();
        ::curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT_MS,
                           static_cast<long>(limits_.connect_ms));
        ::curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
        SetMethod(ToNativeBytes(method));
        return true;
    }

    bool Send(std::uint32_t& code, const TakePiece& take) override {
        if (!IsHost(host_)) {
            code = CURLE_COULDNT_RESOLVE_HOST;
            return false;
        }
        return Exchange(handle_.get(), take, limits_.silence_ms).Perform(code);
    }

private:
    // Also to https, where libcurl checks the server's certificate.
    void FollowRedirects() {
        CURL* const handle = handle_.get();
        ::curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
        ::curl_easy_setopt(handle, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
        const char* const authorities = std::getenv("SSL_CERT_FILE");
        if (authorities != nullptr && *authorities != '\0')
            ::curl_easy_setopt(handle, CURLOPT_CAINFO, authorities);
        // A proxy's answer on the way to such a server is none of the server's.
        ::curl_easy_setopt(handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
        ::curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, 1L);
        ::curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMostRedirects);
    }

    // libcurl must know of a method without a body to wait for, and turns only its own POST into a
    // GET where a redirect asks for that.
    void SetMethod(const std::string& method) {
        CURL* const handle = handle_.get();
        if (method.empty() || method == "GET") return;
        if (method == "HEAD") {
            ::curl_easy_setopt(handle, CURLOPT_NOBODY, 1L);
            return;
        }
        ::curl_easy_setopt(handle, CURLOPT_POSTFIELDS, "");  // and so "Content-Length: 0"
        if (method != "POST") ::curl_easy_setopt(handle, CURLOPT_CUSTOMREQUEST, method.c_str());
    }

    EasyHandle handle_;
    const std::string product_;
    const HttpLimits limits_;
    HeaderList headers_;
    std::string host_;
    std::uint16_t port_ = 0;
};

}  // namespace

std::unique_ptr<HttpClient> HttpClient::Open(std::uint32_t& code, const String& product,
                                             const HttpLimits& limits) {
    EasyHandle handle(::curl_easy_init());
    if (!handle) {
        code = CURLE_FAILED_INIT;
        return nullptr;
    }
    return std::make_unique<CurlClient>(std::move(handle), product, limits);
}

}  // namespace platform
