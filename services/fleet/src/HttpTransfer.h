#pragma once

#include "CurlLibrary.h"

#include <FleetAdministration.h>
#include <WipedText.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fleet {

class HttpThread;

inline constexpr int successStatus = 200;

/// The result of a request.
struct HttpResult {
    int status = 0;       ///< The HTTP status; 0 if there was no answer.
    std::string error;    ///< Why there was no complete answer; empty if it is complete.
    std::string body;     ///< What no HttpHandler::onData has received.
    bool tooLong = false; ///< The answer exceeds HttpTransfer::bufferLimit.
    bool wasSent = false; ///< The member may have received the request.

    bool isSuccess() const { return error.empty() && status == successStatus; }
};

struct HttpRequest {
    std::string url;
    std::vector<std::string> headers;
    ZelUnified::WipedText body;           ///< May contain a password.
    std::chrono::milliseconds timeout{0}; ///< For the complete answer; 0 for none.
    std::chrono::seconds silence{0};      ///< Ends the request if nearly nothing arrives for so long; 0 for never.
};

/// Both are called on the thread of the HttpThread and may destroy the transfer.
struct HttpHandler {
    /// Receives the answer in pieces. If it is null, or the status is another one than `successStatus`, `body` of the
    /// result collects them.
    std::function<void(std::string_view)> onData;
    std::function<void(const HttpResult&)> onEnd;
};

/// One POST request in progress, which HttpThread::start() returns. The destructor aborts it. On the HttpThread's
/// thread only.
class HttpTransfer {
public:
    /// An answer that waits for its handler, or that is collected, has at most this size; a longer one is an error.
    static constexpr std::size_t bufferLimit = std::size_t{64} << 20U;

    HttpTransfer(HttpThread& owner, const ZelUnified::FleetAccess& access, HttpRequest sentRequest,
                 HttpHandler resultHandler);
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    CURL* getHandle() const { return handle.get(); }
    void setEnded(CURLcode code);
    /// Passes the received data and the end to the handler. The transfer may not exist after the call.
    void deliver();

private:
    static std::size_t receive(char* data, std::size_t size, std::size_t count, void* self);

    void setOptions(const ZelUnified::FleetAccess& access);
    /// Returns 0 before the answer begins.
    int getStatus() const;
    std::string describe(CURLcode code) const;

    struct HandleDeleter {
        void operator()(CURL* easy) const { curl().curl_easy_cleanup(easy); }
    };
    struct ListDeleter {
        void operator()(curl_slist* list) const { curl().curl_slist_free_all(list); }
    };

    HttpThread& thread;
    const HttpRequest request;
    const std::shared_ptr<const HttpHandler> handler;
    const std::unique_ptr<CURL, HandleDeleter> handle;
    std::unique_ptr<curl_slist, ListDeleter> headerList;
    std::string received;
    bool tooLong = false;
    bool ended = false;
    HttpResult result;
};

} // namespace fleet
