#include "platform/network/Curl.h"

#include <QElapsedTimer>
#include <QUrl>

#include <algorithm>
#include <csignal>

#include "platform/base/Handlers.h"

namespace pollarix {

namespace {

// Between two repaints while a transfer waits.
constexpr int PaintMs = 30;

bool InitializeOnce() {
    static const bool initialized = [] {
#ifdef SIGPIPE
        // A peer that hangs up must end the transfer, not the program.
        std::signal(SIGPIPE, SIG_IGN);
#endif
        return curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    }();
    return initialized;
}

} // namespace

CurlHandle NewCurlHandle(const char* protocols, const TransferPatience& patience) {
    if (!InitializeOnce())
        return {};
    CurlHandle handle(curl_easy_init());
    CURL* curl = handle.get();
    // A library too old to be held to these protocols must not be used at all.
    if (!curl || curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, protocols) != CURLE_OK ||
        curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, protocols) != CURLE_OK)
        return {};
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_PROXY, "");
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, patience.connectSeconds);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT,
                     patience.leastBytes / patience.stallSeconds + 1);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, patience.stallSeconds);
    curl_easy_setopt(curl, CURLOPT_SERVER_RESPONSE_TIMEOUT, patience.stallSeconds);
    return handle;
}

CURLcode PerformCurl(CURL* handle, CURLM* connections, curl_socket_t* socket) {
    if (!connections || curl_multi_add_handle(connections, handle) != CURLM_OK)
        return CURLE_OUT_OF_MEMORY;
    CURLcode result = CURLE_RECV_ERROR;
    int running = 1;
    QElapsedTimer sincePaint;
    sincePaint.start();
    while (running > 0 && curl_multi_perform(connections, &running) == CURLM_OK) {
        if (running > 0)
            curl_multi_poll(connections, nullptr, 0, PaintMs, nullptr);
        if (sincePaint.hasExpired(PaintMs)) {
            DoPaintEvents();
            sincePaint.start();
        }
    }
    int left = 0;
    while (const CURLMsg* message = curl_multi_info_read(connections, &left))
        if (message->msg == CURLMSG_DONE && message->easy_handle == handle)
            result = message->data.result;
    // It is known only as long as the handle is in there.
    if (socket && result == CURLE_OK)
        curl_easy_getinfo(handle, CURLINFO_ACTIVESOCKET, socket);
    curl_multi_remove_handle(connections, handle);
    return result;
}

std::int32_t InternetCode(CURLcode result) {
    switch (result) {
    case CURLE_OK:
        return 0;
    case CURLE_OUT_OF_MEMORY:
        return internet::OutOfHandles;
    case CURLE_OPERATION_TIMEDOUT:
        return internet::TimedOut;
    case CURLE_URL_MALFORMAT:
        return internet::InvalidUrl;
    case CURLE_UNSUPPORTED_PROTOCOL:
        return internet::UnknownScheme;
    case CURLE_COULDNT_RESOLVE_HOST:
        return internet::NameNotResolved;
    case CURLE_LOGIN_DENIED:
        return internet::LoginFailed;
    case CURLE_COULDNT_CONNECT:
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_FTP_CANT_GET_HOST:
        return internet::CannotConnect;
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
        return internet::ConnectionEnded;
    default:
        return internet::InternalError;
    }
}

QByteArray WireHost(const QString& host) {
    const bool ascii =
        std::all_of(host.begin(), host.end(), [](QChar c) { return c.unicode() < 0x80; });
    return ascii ? host.toLatin1() : QUrl::toAce(host);
}

} // namespace pollarix
