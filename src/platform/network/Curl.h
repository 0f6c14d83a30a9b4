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

// A handle that speaks only the given protocols ("http,https"), goes to its server without a proxy
// and gives up by itself; empty when there is none to be had.
CurlHandle NewCurlHandle(const char* protocols, const TransferPatience& patience);

// The failure's number; 0 for none. Logins and servers' words are told apart by the caller.
std::int32_t InternetCode(CURLcode result);

// The host in the form that goes over the wire; other scripts become their ASCII form. Empty when
// it can't be a host's name.
QByteArray WireHost(const QString& host);

} // namespace pollarix
