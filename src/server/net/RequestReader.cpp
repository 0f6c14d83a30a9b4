#include "server/net/RequestReader.h"

#include <algorithm>

namespace pollarix::server {

namespace beast = boost::beast;
using Header = beast::http::field;

RequestReader::RequestReader(Request& request, std::size_t mostHead, std::size_t mostBody)
    : request_(request), mostHead_(mostHead) {
    header_limit(static_cast<std::uint32_t>(mostHead));
    body_limit(mostBody);
}

bool RequestReader::TakesMoreHead(std::size_t read, std::size_t unread) {
    head_ += read;
    return head_ + unread <= mostHead_;
}

bool RequestReader::IsAmbiguous() const {
    if (lengths_ > 1 || encodings_ > 1 || (lengths_ > 0 && encodings_ > 0) || hosts_ > 1)
        return true;
    if (encodings_ == 1 && (isHttp10_ || !isChunkedAlone_))
        return true;
    return !isHttp10_ && hosts_ == 0;
}

void RequestReader::on_request_impl(beast::http::verb, string_view method, string_view target,
                                    int version, error_code&) {
    isHttp10_ = version < 11;
    request_.method.assign(method.data(), method.size());
    const std::string_view whole(target.data(), target.size());
    const std::size_t mark = std::min(whole.find('?'), whole.size());
    request_.query = whole.substr(std::min(mark + 1, whole.size()));
    std::string path = PercentDecoded(whole.substr(0, mark));
    if (!path.empty() && path.front() == '/' && path.find('\0') == std::string::npos)
        request_.path = std::move(path);
}

void RequestReader::on_field_impl(Header name, string_view nameText, string_view value,
                                  error_code&) {
    switch (name) {
    case Header::content_length:
        ++lengths_;
        break;
    case Header::transfer_encoding:
        ++encodings_;
        isChunkedAlone_ = beast::iequals(value, "chunked");
        break;
    case Header::host:
        ++hosts_;
        break;
    case Header::expect:
        expectsContinue_ = beast::iequals(value, "100-continue");
        break;
    default:
        break;
    }
    request_.headers.emplace_back(std::string(nameText.data(), nameText.size()),
                                  std::string(value.data(), value.size()));
}

std::size_t RequestReader::on_body_impl(string_view bytes, error_code&) {
    request_.body.append(bytes.data(), bytes.size());
    return bytes.size();
}

std::size_t RequestReader::on_chunk_body_impl(std::uint64_t, string_view bytes, error_code&) {
    request_.body.append(bytes.data(), bytes.size());
    return bytes.size();
}

} // namespace pollarix::server
