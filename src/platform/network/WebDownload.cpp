#include "platform/network/WebDownload.h"

#include <QSaveFile>

#include <algorithm>
#include <optional>

#include "platform/base/Windows1252.h"
#include "platform/network/Curl.h"

namespace pollarix {

namespace {

constexpr qint64 LargestReply = qint64(1) << 30;
constexpr int MostRedirects = 20;

// A URL as the transfer needs it: where to connect, and what stands in the request line.
struct WebAddress {
    QByteArray url;    // with nothing in it that would be cut off or read in another way
    QByteArray target; // raw
};

QByteArray WireBytes(const QString& text) {
    QByteArray bytes;
    for (const QString& part : text.split('&'))
        bytes += '&' + (FitsWindows1252(part) ? ToWindows1252(part) : part.toUtf8());
    return bytes.mid(1);
}

QByteArray RequestLineBytes(const QString& text) {
    QByteArray line;
    for (const char byte : WireBytes(text)) {
        if (byte > 0x20 && byte < 0x7F)
            line += byte;
        else
            line += '%' + QByteArray(1, byte).toHex().toUpper();
    }
    return line;
}

std::optional<QByteArray> WireAuthority(const QString& authority) {
    const qsizetype at = authority.lastIndexOf('@');
    const QString user = authority.left(at + 1);
    QString host = authority.mid(at + 1);
    QString port;
    if (const qsizetype colon = host.lastIndexOf(':'); colon > host.lastIndexOf(']')) {
        port = host.mid(colon);
        host.truncate(colon);
    }
    const QByteArray wireHost = WireHost(host);
    if (wireHost.isEmpty())
        return std::nullopt;
    return RequestLineBytes(user) + wireHost + port.toUtf8();
}

bool IsWebScheme(const QString& url) {
    return url.startsWith("http://", Qt::CaseInsensitive) ||
           url.startsWith("https://", Qt::CaseInsensitive);
}

std::optional<WebAddress> AddressOf(const QString& url) {
    const qsizetype start = url.indexOf("://") + 3;
    const auto end = std::find_if(url.begin() + start, url.end(),
                                  [](QChar c) { return c == '/' || c == '?' || c == '#'; });
    const qsizetype length = end - url.begin() - start;
    const auto authority = WireAuthority(url.mid(start, length));
    if (!authority)
        return std::nullopt;
    WebAddress address;
    address.target = RequestLineBytes(url.mid(start + length));
    if (!address.target.startsWith('/'))
        address.target.prepend('/');
    // libcurl would cut the URL at "#"; there it only serves to find the server and to resolve
    // redirects, the request line is given apart.
    address.url =
        url.left(start).toLatin1() + *authority + QByteArray(address.target).replace('#', "%23");
    return address;
}

struct BodySink {
    QSaveFile* file;
    qint64 size = 0;
};

size_t WriteBody(char* data, size_t, size_t count, void* user) {
    auto* sink = static_cast<BodySink*>(user);
    sink->size += static_cast<qint64>(count);
    if (sink->size > LargestReply)
        return 0;
    return sink->file->write(data, static_cast<qint64>(count)) == static_cast<qint64>(count) ? count
                                                                                             : 0;
}

struct Fetched {
    std::int32_t code = 0;
    QString redirect; // where the server sent us instead of an answer
};

Fetched FetchOnce(const WebAddress& address, const QString& path,
                  const TransferPatience& patience) {
    const CurlMulti connections(curl_multi_init());
    const CurlHandle handle = NewCurlHandle("http,https", patience);
    CURL* curl = handle.get();
    if (!curl)
        return {internet::OutOfHandles, {}};
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {internet::LocalFileAccess, {}};
    BodySink sink{&file};
    curl_easy_setopt(curl, CURLOPT_URL, address.url.constData());
    curl_easy_setopt(curl, CURLOPT_REQUEST_TARGET, address.target.constData());
    curl_easy_setopt(curl, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, WriteBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &sink);
    if (const CURLcode result = PerformCurl(curl, connections.get()); result != CURLE_OK)
        return {InternetCode(result), {}};
    const char* redirect = nullptr;
    curl_easy_getinfo(curl, CURLINFO_REDIRECT_URL, &redirect);
    if (redirect)
        return {0, QString::fromUtf8(redirect)};
    return {file.commit() ? 0 : internet::LocalFileAccess, {}};
}

} // namespace

std::int32_t DownloadToPath(const QString& url, const QString& path,
                            const TransferPatience& patience) {
    QString next = url;
    for (int hop = 0; hop <= MostRedirects; ++hop) {
        if (!IsWebScheme(next))
            return internet::UnknownScheme;
        const auto address = AddressOf(next);
        if (!address)
            return internet::InvalidUrl;
        const Fetched fetched = FetchOnce(*address, path, patience);
        if (fetched.code != 0 || fetched.redirect.isEmpty())
            return fetched.code;
        // The fragment of a redirect is for a browser, not for the server.
        next = fetched.redirect.section('#', 0, 0);
    }
    return internet::InternalError;
}

} // namespace pollarix
