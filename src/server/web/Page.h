// The frame that all pages share: head, style, script, and the headers that bound what a browser
// may do with it. What stands in the page is the callers' business.
#pragma once

#include <string>

#include "server/net/Http.h"
#include "server/web/Html.h"
#include "server/web/Words.h"

namespace pollarix::server {

struct Page {
    int status = 200;
    std::string title;
    Html body;              // of <main>
    Html navigation;        // before it; none on the respondents' pages
    bool hasScript = false; // the form's comfort
};

Html FramedPage(const Words& words, const Page& page);
// The same as an answer to a request. Pages are kept by the browser for its own Back only.
Response PageResponse(const Words& words, const Page& page);

// What the server's own addresses begin with, for links that leave the page: the base, or where the
// request went to. With "/" at its end.
std::string RootOf(const std::string& base, const Request& request);

// "2026-07-23", in UTC. seconds since 1970.
std::string Day(std::int64_t seconds);

} // namespace pollarix::server
