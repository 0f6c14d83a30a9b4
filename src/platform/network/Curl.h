// What every transfer through libcurl has in common: the handle, the protocols it may speak, and
// what its failures are called. For the platform layer's own use.
#pragma once

#include <QString>

#include <memory>

#include <curl/curl.h>

#include "platform/network/Transfer.h"

namespace pollarix {

struct CurlCleanup {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
using CurlHandle = std::unique_ptr<CURL, CurlCleanup>;

struct CurlMultiCleanup {
    void operator()(CURLM* multi) const { curl_multi_cleanup(multi); }
};
// What keeps connections from one transfer to the next; outlived by no handle that ran in it.
using CurlMulti = std::unique_ptr<CURLM, CurlMultiCleanup>;

// A handle that speaks only the given protocols ("http,https"), goes to its server without a proxy
// and gives up by itself; empty when there is none to be had.
CurlHandle NewCurlHandle(const char* protocols, const TransferPatience& patience);

// Runs the handle's transfer to its end. While it waits, windows repaint and timers run; keys and
// clicks stay where they are until it has ended. `socket`, if given, becomes the socket that the
// connection uses.
CURLcode PerformCurl(CURL* handle, CURLM* connections, curl_socket_t* socket = nullptr);

// The failure's number; 0 for none. Logins and servers' words are told apart by the caller.
std::int32_t InternetCode(CURLcode result);

// The host in the form that goes over the wire; other scripts become their ASCII form. Empty when
// it can't be a host's name.
QByteArray WireHost(const QString& host);

} // namespace pollarix
