#include "server/net/Http.h"

#include <algorithm>

#include "server/net/Address.h"

namespace pollarix::server {

namespace {

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool SameName(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

int HexDigit(char c) {
    c = Lower(c);
    if (c >= '0' && c <= '9')
        return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

std::string Decoded(std::string_view text, bool plusIsBlank) {
    std::string decoded;
    decoded.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const int high = text[i] == '%' && i + 2 < text.size() ? HexDigit(text[i + 1]) : -1;
        const int low = high >= 0 ? HexDigit(text[i + 2]) : -1;
        if (low >= 0) {
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        } else {
            decoded += plusIsBlank && text[i] == '+' ? ' ' : text[i];
        }
    }
    return decoded;
}

} // namespace

std::string_view Request::Header(std::string_view name) const {
    const auto found = std::find_if(headers.begin(), headers.end(), [&](const Field& field) {
        return SameName(field.first, name);
    });
    return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

std::string_view Request::Cookie(std::string_view name) const {
    for (const auto& [header, value] : headers) {
        if (!SameName(header, "Cookie"))
            continue;
        for (std::string_view rest = value; !rest.empty();) {
            const std::size_t end = std::min(rest.find(';'), rest.size());
            std::string_view pair = rest.substr(0, end);
            rest.remove_prefix(std::min(end + 1, rest.size()));
            pair.remove_prefix(std::min(pair.find_first_not_of(' '), pair.size()));
            const std::size_t equals = pair.find('=');
            if (equals != std::string_view::npos && pair.substr(0, equals) == name)
                return pair.substr(equals + 1);
        }
    }
    return {};
}

bool IsFromOtherSite(const Request& request, std::string_view base) {
    if (const std::string_view site = request.Header("Sec-Fetch-Site"); !site.empty())
        return site != "same-origin" && site != "none";
    // Older ones, and all where the connection isn't encrypted, tell only this.
    const std::string_view origin = request.Header("Origin");
    if (origin.empty() || (!base.empty() && base.substr(0, base.find('/', 8)) == origin))
        return false;
    const std::size_t mark = origin.find("://");
    if (mark == std::string_view::npos)
        return true;
    std::string_view host = origin.substr(mark + 3);
    const std::string_view own = request.Header("Host");
    // A proxy may leave the port out.
    if (own.find(':', own.rfind(']') + 1) == std::string_view::npos)
        host = host.substr(0, host.find(':', host.rfind(']') + 1));
    return !SameName(host, own);
}

void TakeProxysWord(Request& request) {
    // The last address of the last header is the one that the proxy itself has seen.
    std::string_view chain;
    for (const auto& [name, value] : request.headers)
        if (SameName(name, "X-Forwarded-For"))
            chain = value;
    const std::size_t before = chain.find_last_of(", "); // none is one before the first
    if (std::string last = PlainAddress(chain.substr(before + 1)); !last.empty())
        request.address = std::move(last);
    request.isTls = request.Header("X-Forwarded-Proto") == "https";
}

Response Response::Text(int status, std::string words) {
    Response response;
    response.status = status;
    response.contentType = "text/plain; charset=utf-8";
    response.body = std::move(words);
    return response;
}

Response Response::SeeOther(std::string location) {
    Response response;
    response.status = 303;
    response.headers.emplace_back("Location", std::move(location));
    return response;
}

std::optional<std::vector<Field>> FormFields(std::string_view encoded, std::size_t most) {
    std::vector<Field> fields;
    while (!encoded.empty()) {
        const std::size_t end = std::min(encoded.find('&'), encoded.size());
        const std::string_view pair = encoded.substr(0, end);
        encoded.remove_prefix(std::min(end + 1, encoded.size()));
        if (pair.empty())
            continue;
        if (fields.size() == most)
            return std::nullopt;
        const std::size_t equals = std::min(pair.find('='), pair.size());
        fields.emplace_back(Decoded(pair.substr(0, equals), true),
                            Decoded(pair.substr(std::min(equals + 1, pair.size())), true));
    }
    return fields;
}

std::string_view FieldOf(const std::vector<Field>& fields, std::string_view name) {
    const auto found = std::find_if(fields.begin(), fields.end(),
                                    [&](const Field& field) { return field.first == name; });
    return found == fields.end() ? std::string_view() : std::string_view(found->second);
}

std::string PercentDecoded(std::string_view text) {
    return Decoded(text, false);
}

std::string PercentEncoded(std::string_view text) {
    constexpr std::string_view plain = "-._~";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char c : text) {
        const char lower = Lower(c);
        if ((lower >= 'a' && lower <= 'z') || (c >= '0' && c <= '9') ||
            plain.find(c) != std::string_view::npos) {
            encoded += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            encoded += {'%', digits[byte / 16], digits[byte % 16]};
        }
    }
    return encoded;
}

} // namespace pollarix::server
