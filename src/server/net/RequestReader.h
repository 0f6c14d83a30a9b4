// Reads one HTTP request out of bytes as they come, straight into a Request. Bounds and sockets are
// the server's business.
#pragma once

#include <string_view>

#include <boost/beast/http/basic_parser.hpp>

#include "server/net/Http.h"

namespace pollarix::server {

class RequestReader : public boost::beast::http::basic_parser<true> {
  public:
    // The request is filled: its path stays empty when its target is none.
    RequestReader(Request& request, std::size_t mostHead, std::size_t mostBody);

    // To be told after each part of the head how much of it was read, and how much lies there
    // unread. False when it gets too long.
    bool TakesMoreHead(std::size_t read, std::size_t unread);
    // What the parser lets pass, and two readers of the same bytes could take for different
    // requests. Known with the head, as is what follows.
    bool IsAmbiguous() const;
    bool IsHttp10() const { return isHttp10_; }
    bool ExpectsContinue() const { return expectsContinue_; }

  private:
    using error_code = boost::beast::error_code;
    using string_view = boost::beast::string_view;
    void on_request_impl(boost::beast::http::verb verb, string_view method, string_view target,
                         int version, error_code& error) override;
    void on_response_impl(int, string_view, int, error_code&) override {}
    void on_field_impl(boost::beast::http::field name, string_view nameText, string_view value,
                       error_code& error) override;
    void on_header_impl(error_code&) override {}
    // A body lies in memory as far as it has come; what was announced counts for nothing.
    void on_body_init_impl(boost::optional<std::uint64_t> const&, error_code&) override {}
    std::size_t on_body_impl(string_view bytes, error_code& error) override;
    void on_chunk_header_impl(std::uint64_t, string_view, error_code&) override {}
    std::size_t on_chunk_body_impl(std::uint64_t remain, string_view bytes,
                                   error_code& error) override;
    void on_finish_impl(error_code&) override {}

    Request& request_;
    const std::size_t mostHead_;
    std::size_t head_ = 0;
    int lengths_ = 0;
    int encodings_ = 0;
    int hosts_ = 0;
    bool isChunkedAlone_ = false;
    bool isHttp10_ = false;
    bool expectsContinue_ = false;
};

} // namespace pollarix::server
