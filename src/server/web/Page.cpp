#include "server/web/Page.h"

#include <algorithm>
#include <array>
#include <ctime>

#include "server/web/Assets.h"

namespace pollarix::server {

Html FramedPage(const Words& words, const Page& page) {
    Html html("<!DOCTYPE html>\n<html");
    html.Attribute("lang", words.language).Attribute("dir", words.isRightToLeft ? "rtl" : "ltr");
    html << "><head><meta charset=\"utf-8\">"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">"
            "<meta name=\"color-scheme\" content=\"light dark\"><title>";
    html.Text(page.title) << "</title><link rel=\"stylesheet\"";
    html.Attribute("href", StylePath()) << ">";
    if (page.hasScript)
        (html << "<script defer").Attribute("src", ScriptPath()) << "></script>";
    html << "</head><body>" << page.navigation << "<main>" << page.body
         << "</main></body></html>\n";
    return html;
}

Response PageResponse(const Words& words, const Page& page) {
    Response response;
    response.status = page.status;
    response.body = FramedPage(words, page).Markup();
    response.headers = {
        {"Content-Security-Policy",
         page.hasScript
             ? "default-src 'none'; style-src 'self'; script-src 'self'; connect-src 'self'; "
               "form-action 'self'; base-uri 'none'; frame-ancestors 'none'"
             : "default-src 'none'; style-src 'self'; img-src 'self'; form-action 'self'; "
               "base-uri 'none'; frame-ancestors 'none'"},
        {"Referrer-Policy", "same-origin"},
        {"Cross-Origin-Opener-Policy", "same-origin"},
        // Not "no-store": Back is to show the form as it was, with its token.
        {"Cache-Control", "private, no-cache"},
        {"Vary", "Accept-Language, Cookie"},
        {"X-Robots-Tag", "noindex"},
    };
    return response;
}

std::string RootOf(const std::string& base, const Request& request) {
    if (!base.empty())
        return base;
    const std::string_view host = request.Header("Host");
    const bool isHost = std::all_of(host.begin(), host.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view(".-:[]").find(c) != std::string_view::npos;
    });
    if (host.empty() || !isHost)
        return "/";
    return (request.isTls ? "https://" : "http://") + std::string(host) + '/';
}

std::string Day(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    if (!gmtime_r(&time, &parts))
        return "";
    std::array<char, 32> day{};
    return {day.data(), std::strftime(day.data(), day.size(), "%Y-%m-%d", &parts)};
}

} // namespace pollarix::server
