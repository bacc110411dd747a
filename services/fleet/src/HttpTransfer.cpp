#include "HttpTransfer.h"

#include "HttpThread.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <utility>

namespace fleet {

namespace {

/// In bytes a second; less is silence.
constexpr long lowestSpeed = 1000;

template <class Value>
void setOption(CURL* handle, CURLoption option, Value value) {
    // Fails only for an option that this build of libcurl lacks, and for lack of memory.
    if (const auto code = curl().curl_easy_setopt(handle, option, value); code != CURLE_OK) {
        throw std::runtime_error(curl().curl_easy_strerror(code));
    }
}

void setFile(CURL* handle, CURLoption option, const std::string& path) {
    if (!path.empty()) {
        setOption(handle, option, path.c_str());
    }
}

} // namespace

HttpTransfer::HttpTransfer(HttpThread& owner, const ZelUnified::FleetAccess& access, HttpRequest sentRequest,
                           HttpHandler resultHandler)
    : thread(owner),
      request(std::move(sentRequest)),
      handler(std::make_shared<const HttpHandler>(std::move(resultHandler))),
      handle(curl().curl_easy_init()) {
    if (!handle) {
        throw std::bad_alloc();
    }
    setOptions(access);
    thread.add(*this);
}

HttpTransfer::~HttpTransfer() {
    thread.remove(*this);
}

void HttpTransfer::setOptions(const ZelUnified::FleetAccess& access) {
    auto* const easy = handle.get();
    setOption(easy, CURLOPT_URL, request.url.c_str());
    setOption(easy, CURLOPT_PROTOCOLS_STR, access.plainHttpAllowed ? "https,http" : "https");
    setOption(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    setOption(easy, CURLOPT_PROXY, ""); // not what the user's environment names
    setOption(easy, CURLOPT_NOSIGNAL, 1L);
    // The end must not wait for a name server.
    setOption(easy, CURLOPT_QUICK_EXIT, 1L);
    setOption(easy, CURLOPT_CONNECTTIMEOUT_MS, 5000L);
    setOption(easy, CURLOPT_TIMEOUT_MS, static_cast<long>(request.timeout.count()));
    if (request.silence.count() > 0) {
        setOption(easy, CURLOPT_LOW_SPEED_LIMIT, lowestSpeed);
        setOption(easy, CURLOPT_LOW_SPEED_TIME, static_cast<long>(request.silence.count()));
    }
    setOption(easy, CURLOPT_TCP_KEEPALIVE, 1L);
    setOption(easy, CURLOPT_TCP_KEEPIDLE, 30L);
    setOption(easy, CURLOPT_TCP_KEEPINTVL, 10L);
    setOption(easy, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    setFile(easy, CURLOPT_SSLCERT, access.clientCertificate);
    setFile(easy, CURLOPT_SSLKEY, access.clientKey);
    // Otherwise the TLS library asks for a passphrase on the terminal, and waits.
    setOption(easy, CURLOPT_KEYPASSWD, "");
    if (!access.authority.empty()) {
        setOption(easy, CURLOPT_CAINFO, access.authority.c_str());
        setOption(easy, CURLOPT_CAPATH, static_cast<const char*>(nullptr));
    }
    for (const auto& header : request.headers) {
        auto* const extended = curl().curl_slist_append(headerList.get(), header.c_str());
        if (extended == nullptr) {
            throw std::bad_alloc();
        }
        // The list is the same one, unless it was empty.
        static_cast<void>(headerList.release());
        headerList.reset(extended);
    }
    setOption(easy, CURLOPT_HTTPHEADER, headerList.get());
    setOption(easy, CURLOPT_POST, 1L);
    setOption(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.view().size()));
    setOption(easy, CURLOPT_POSTFIELDS, request.body.view().data());
    setOption(easy, CURLOPT_WRITEFUNCTION, &HttpTransfer::receive);
    setOption(easy, CURLOPT_WRITEDATA, static_cast<void*>(this));
    setOption(easy, CURLOPT_PRIVATE, static_cast<void*>(this));
}

std::size_t HttpTransfer::receive(char* data, std::size_t size, std::size_t count, void* self) {
    auto& transfer = *static_cast<HttpTransfer*>(self);
    const auto length = size * count;
    if (length > bufferLimit - transfer.received.size()) {
        transfer.tooLong = true;
        return 0;
    }
    try {
        // Only marked: a handler may destroy the transfer, which libcurl does not allow during this call.
        transfer.received.append(data, length);
        transfer.thread.markReady(transfer);
        return length;
    } catch (const std::exception&) {
        return 0; // no exception may pass through libcurl
    }
}

int HttpTransfer::getStatus() const {
    long status = 0;
    curl().curl_easy_getinfo(handle.get(), CURLINFO_RESPONSE_CODE, &status);
    return static_cast<int>(status);
}

void HttpTransfer::setEnded(CURLcode code) {
    result.status = getStatus();
    long sentBytes = 0;
    curl().curl_easy_getinfo(handle.get(), CURLINFO_REQUEST_SIZE, &sentBytes);
    result.wasSent = sentBytes > 0;
    result.tooLong = tooLong;
    if (code != CURLE_OK) {
        result.error = describe(code);
    }
    ended = true;
}

std::string HttpTransfer::describe(CURLcode code) const {
    if (tooLong) {
        return "the answer is too long";
    }
    if (code == CURLE_WRITE_ERROR) {
        return "there is not enough memory for the answer";
    }
    if (code == CURLE_SSL_CERTPROBLEM) {
        return "the client's certificate or its key cannot be used; a key with a passphrase is not supported";
    }
    return curl().curl_easy_strerror(code);
}

void HttpTransfer::deliver() {
    const auto kept = handler; // outlives the transfer, which a call may destroy
    if (kept->onData && !received.empty() && getStatus() == successStatus) {
        if (ended) {
            thread.markReady(*this); // the end is the next delivery
        }
        const auto data = std::exchange(received, {});
        kept->onData(data);
    } else if (ended) {
        result.body = std::move(received);
        const auto last = std::move(result);
        kept->onEnd(last);
    }
}

} // namespace fleet
