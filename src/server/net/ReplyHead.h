// What goes out before the body of an answer.
#pragma once

#include <string>

#include "server/net/Http.h"

namespace pollarix::server {

// The status line and all headers, with the empty line that ends them. A stream that isn't chunked
// has no length: it ends with the connection.
std::string ReplyHead(const Response& response, bool isChunked, bool keepAlive);

} // namespace pollarix::server
