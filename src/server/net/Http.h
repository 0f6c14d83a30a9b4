// A request and its answer in plain values, for everybody who answers one. Nothing here knows of
// sockets, and nothing of surveys.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pollarix::server {

// A name with a value. Names of headers are compared without regard to case.
using Field = std::pair<std::string, std::string>;

struct Request {
    std::string method; // "GET", "HEAD", "POST"
    std::string path;   // from the target up to "?", percent-decoded, always begins with "/"
    std::string query;  // from the target behind "?", raw; "" for none
    std::vector<Field> headers; // as they came, blanks around values left out
    std::string body;           // whole, below the server's bound
    std::string address;        // of the client, without port; a trusted proxy's word for it
    bool isTls = false;         // the client's own connection is encrypted, as far as is known

    // The first header of that name; "" for none.
    std::string_view Header(std::string_view name) const;
    // A cookie's value; "" for none.
    std::string_view Cookie(std::string_view name) const;
};

// Whether a page of another site had the browser send this, as browsers tell. What isn't a browser
// sends no such headers. base: the server's own root, "" for that of the request.
bool IsFromOtherSite(const Request& request, std::string_view base);

// Takes the client's address and the encryption from what a trusted proxy has written into the
// request; what can't be read leaves them as they are.
void TakeProxysWord(Request& request);

// Fills the chunk with what comes next of a long body; false at its end, with the chunk unused. May
// throw, which cuts the connection, so that the client knows that the body isn't whole.
using BodySource = std::function<bool(std::string& chunk)>;

// Goes on with an answer that had to wait, from any thread and without waiting: what it is given
// makes the answer, and may throw as a handler may. To be called once.
struct Response;
using Resume = std::function<void(std::function<Response()> rest)>;

// What the server adds by itself: Date, Content-Length, Connection, and "nosniff". HEAD is answered
// like GET by the handlers; the server leaves the body out.
struct Response {
    int status = 200;
    std::string contentType = "text/html; charset=utf-8";
    std::string body;
    std::vector<Field> headers;
    BodySource stream; // if there is one, it comes instead of the body
    // If there is one, it is called, and all else comes when it has the answer resumed. For quick
    // handlers alone.
    std::function<void(const Resume&)> begin;

    static Response Text(int status, std::string words);
    // 303: what was sent is not sent again by a reload of the page behind it.
    static Response SeeOther(std::string location);
};

// The fields of a form ("application/x-www-form-urlencoded"), of a body or a query, in their order.
// "+" is a blank, %xx a byte; a "%" that isn't followed by two digits stands for itself. Nothing if
// there are more fields than most.
std::optional<std::vector<Field>> FormFields(std::string_view encoded, std::size_t most = 2000);
// The first of exactly that name; "" for none.
std::string_view FieldOf(const std::vector<Field>& fields, std::string_view name);

// "%41" to "A"; a "%" without two digits stands for itself.
std::string PercentDecoded(std::string_view text);
// Letters, digits and "-._~" stay, all other bytes become %XX.
std::string PercentEncoded(std::string_view text);

} // namespace pollarix::server
