// Fetches a page of the web into a file. Only http and https, redirects included; no cookies, no
// headers of our own, no cache.
#pragma once

#include <QString>

#include "platform/network/Transfer.h"

namespace pollarix {

// Stores the reply's body at the path and gives 0, or gives the failure's number. The file is
// replaced only by a whole body: what was there before stays when the transfer fails on the way.
// A page with an error status is a body like any other. A reply beyond 1 GiB is given up.
//
// The URL goes out as it stands, "#" and "&" too. Only bytes that can't stand in a request line
// (blanks, controls, what is not ASCII) become %XX. Characters are sent as Windows-1252, the code
// page of the replies, so that a name comes back as it went out; a value (what stands between two
// "&") with characters beyond it is sent as UTF-8, since "?" in their place would make different
// names the same.
std::int32_t DownloadToPath(const QString& url, const QString& path,
                            const TransferPatience& patience);

} // namespace pollarix
