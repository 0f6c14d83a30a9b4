// The only source that includes Beast, which takes its time to compile.
#include "server/net/HttpServer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <unordered_map>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>

#include "server/net/ReplyHead.h"
#include "server/net/WorkPool.h"

namespace pollarix::server {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;
using tcp = asio::ip::tcp;

namespace {

constexpr std::size_t SocketThreads = 2;
constexpr auto StopPatience = std::chrono::seconds(10);
// What a client that was refused may still send before its connection is cut, so that it gets to
// read why.
constexpr std::size_t MostIgnored = 256 * 1024;
constexpr auto IgnoreSeconds = std::chrono::seconds(2);

bool IsMethod(std::string_view method) {
    return method == "GET" || method == "HEAD" || method == "POST";
}

// What the parser lets pass, and two readers of the same bytes could take for different requests.
bool IsAmbiguous(const http::request<http::string_body>& head) {
    const auto lengths = head.count(http::field::content_length);
    const auto encodings = head.count(http::field::transfer_encoding);
    const auto hosts = head.count(http::field::host);
    if (lengths > 1 || encodings > 1 || (lengths > 0 && encodings > 0) || hosts > 1)
        return true;
    if (encodings == 1 &&
        (head.version() < 11 || !beast::iequals(head[http::field::transfer_encoding], "chunked")))
        return true;
    return head.version() >= 11 && hosts == 0;
}

} // namespace

struct HttpServer::Core : std::enable_shared_from_this<HttpServer::Core> {
    Core(const Router& routes, const HttpBounds& given, LogLine line)
        : router(routes), bounds(given), log(std::move(line)),
          pool(std::make_unique<WorkPool>(given.requestsAtOnce, given.requestsWaiting)) {}

    class Session;
    // A connection that may stay, or not; and one that has ended.
    bool Enter(const std::string& address);
    void Leave(const std::string& address);
    bool IsTrusted(const std::string& address) const {
        return std::find(bounds.trustedProxies.begin(), bounds.trustedProxies.end(), address) !=
               bounds.trustedProxies.end();
    }
    void Accept(const std::shared_ptr<tcp::acceptor>& acceptor);
    Response Answer(const Handler& handler, const Request& request, const PathParts& parts) const;

    const Router& router;
    const HttpBounds bounds;
    const LogLine log;
    // Sockets and what waits on them hold the core in turn, so these go when the server stops.
    std::array<std::unique_ptr<asio::io_context>, SocketThreads> contexts;
    std::vector<asio::executor_work_guard<asio::io_context::executor_type>> guards;
    std::vector<std::shared_ptr<tcp::acceptor>> acceptors;
    std::vector<std::thread> threads;
    std::unique_ptr<WorkPool> pool;
    std::atomic<std::size_t> nextContext = 0;
    std::atomic<bool> isStopping = false;
    std::atomic<std::size_t> reserved = 0; // bytes of bodies

    std::mutex mutex;
    std::condition_variable ended;
    std::size_t connections = 0;
    std::unordered_map<std::string, std::size_t> byAddress;
    std::unordered_map<Session*, std::weak_ptr<Session>> sessions;
};

class HttpServer::Core::Session : public std::enable_shared_from_this<Session> {
  public:
    Session(std::shared_ptr<Core> core, tcp::socket socket, std::string peer)
        : core_(std::move(core)), stream_(std::move(socket)), peer_(std::move(peer)) {
        buffer_.max_size(core_->bounds.headBytes + 4096);
        const std::lock_guard lock(core_->mutex);
        core_->sessions.emplace(this, std::weak_ptr<Session>());
    }
    ~Session() {
        {
            const std::lock_guard lock(core_->mutex);
            core_->sessions.erase(this);
        }
        GiveBack();
        core_->Leave(peer_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void Start() {
        {
            const std::lock_guard lock(core_->mutex);
            core_->sessions[this] = weak_from_this();
        }
        asio::post(stream_.get_executor(), [self = shared_from_this()] { self->ReadHead(); });
    }
    // Ends a connection that waits for its next request; one that is being answered ends after
    // that.
    void EndIfIdle() {
        asio::post(stream_.get_executor(), [self = shared_from_this()] {
            if (self->isIdle_)
                self->stream_.close();
        });
    }

  private:
    void ReadHead() {
        if (core_->isStopping)
            return stream_.close();
        GiveBack();
        parser_.emplace();
        parser_->header_limit(static_cast<std::uint32_t>(core_->bounds.headBytes));
        parser_->body_limit(core_->bounds.bodyBytes);
        isIdle_ = true;
        stream_.expires_after(std::chrono::seconds(core_->bounds.secondsForRequest));
        http::async_read_header(
            stream_, buffer_, *parser_,
            [self = shared_from_this()](error_code error, std::size_t) { self->HeadRead(error); });
    }

    void HeadRead(error_code error) {
        isIdle_ = false;
        request_ = {};
        if (error)
            return Failed(error);
        const auto& head = parser_->get();
        if (IsAmbiguous(head) || !TakeHead(head)) // the latter when its target is none
            return Refuse(400);
        if (!IsMethod(request_.method))
            return Refuse(405);
        if (!Reserve())
            return Refuse(503);
        if (beast::iequals(head[http::field::expect], "100-continue") && !parser_->is_done()) {
            static constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
            asio::async_write(stream_, asio::buffer(goOn),
                              [self = shared_from_this()](error_code failed, std::size_t) {
                                  if (!failed)
                                      self->ReadBody();
                              });
            return;
        }
        ReadBody();
    }

    // Bodies lie in memory while they come in, and all clients together can't have more than so
    // much of it.
    bool Reserve() {
        if (!parser_->is_done()) {
            const auto length = parser_->content_length();
            reserved_ = length ? static_cast<std::size_t>(*length) : core_->bounds.bodyBytes;
        }
        const bool isThere = (core_->reserved += reserved_) <= core_->bounds.allBodiesBytes;
        if (!isThere)
            GiveBack();
        return isThere;
    }
    void GiveBack() { core_->reserved -= std::exchange(reserved_, 0); }

    // Still within the time that the head began with.
    void ReadBody() {
        if (parser_->is_done())
            return BodyRead({});
        http::async_read(
            stream_, buffer_, *parser_,
            [self = shared_from_this()](error_code error, std::size_t) { self->BodyRead(error); });
    }

    void BodyRead(error_code error) {
        if (error)
            return Failed(error);
        request_.body = std::move(parser_->get().body());
        keepAlive_ = parser_->get().keep_alive();
        isHttp10_ = parser_->get().version() < 11;
        parser_.reset();
        stream_.expires_never();
        Router::Found found = core_->router.Find(request_.method, request_.path);
        if (!found.handler)
            return Send(core_->router.ErrorPage(found.status, request_));
        if (found.work == Work::Quick)
            return Send(core_->Answer(*found.handler, request_, found.parts));
        const bool isTaken =
            core_->pool->Post([self = shared_from_this(), found = std::move(found)] {
                auto response = std::make_shared<Response>(
                    self->core_->Answer(*found.handler, self->request_, found.parts));
                asio::post(self->stream_.get_executor(),
                           [self, response] { self->Send(std::move(*response)); });
            });
        if (!isTaken)
            Send(core_->router.ErrorPage(503, request_));
    }

    bool TakeHead(const http::request<http::string_body>& head) {
        const auto target = std::string_view(head.target().data(), head.target().size());
        const std::size_t mark = std::min(target.find('?'), target.size());
        request_.method = std::string(head.method_string());
        request_.path = PercentDecoded(target.substr(0, mark));
        request_.query = target.substr(std::min(mark + 1, target.size()));
        if (request_.path.empty() || request_.path.front() != '/' ||
            request_.path.find('\0') != std::string::npos)
            return false;
        for (const auto& field : head)
            request_.headers.emplace_back(std::string(field.name_string()),
                                          std::string(field.value()));
        request_.address = peer_;
        if (core_->IsTrusted(peer_))
            TakeProxysWord(request_);
        return true;
    }

    void Failed(error_code error) {
        if (error == http::error::body_limit)
            return Refuse(413);
        if (error == http::error::header_limit || error == http::error::buffer_overflow)
            return Refuse(431);
        if (error.category() == http::make_error_code(http::error::bad_target).category() &&
            error != http::error::end_of_stream && error != http::error::partial_message)
            return Refuse(400);
        stream_.close();
    }

    // Says why, and ends the connection: what follows on it can't be told from the refused request.
    void Refuse(int status) {
        keepAlive_ = false;
        isHttp10_ = false;
        parser_.reset();
        Send(core_->router.ErrorPage(status, request_));
    }

    void Send(Response response) {
        response_ = std::move(response);
        if (core_->isStopping)
            keepAlive_ = false;
        const bool isChunked = response_.stream && !isHttp10_;
        if (response_.stream && isHttp10_)
            keepAlive_ = false;
        const bool hasBody = request_.method != "HEAD" && response_.status != 304;
        head_ = ReplyHead(response_, isChunked, keepAlive_);
        if (!hasBody) {
            response_.body.clear();
            response_.stream = nullptr;
        }
        stream_.expires_after(std::chrono::seconds(core_->bounds.secondsForWrite));
        const std::array<asio::const_buffer, 2> parts = {asio::buffer(head_),
                                                         asio::buffer(response_.body)};
        asio::async_write(stream_, parts,
                          [self = shared_from_this()](error_code error, std::size_t) {
                              if (error)
                                  self->stream_.close();
                              else if (self->response_.stream)
                                  self->NextChunk();
                              else
                                  self->Sent();
                          });
    }

    // The source is asked on a thread that may wait, a chunk at a time.
    void NextChunk() {
        stream_.expires_never();
        const bool isTaken = core_->pool->Post([self = shared_from_this()] {
            bool isMore = false;
            bool isWhole = true;
            std::string chunk;
            try {
                isMore = self->response_.stream(chunk);
            } catch (const std::exception& failure) {
                self->core_->log(std::string("an answer was cut: ") + failure.what());
                isWhole = false;
            }
            auto shared = std::make_shared<std::string>(std::move(chunk));
            asio::post(self->stream_.get_executor(), [self, shared, isMore, isWhole] {
                if (!isWhole)
                    self->stream_.close();
                else
                    self->SendChunk(std::move(*shared), isMore);
            });
        });
        if (!isTaken)
            stream_.close();
    }
    void SendChunk(std::string chunk, bool isMore) {
        if (isMore && chunk.empty())
            return NextChunk();
        response_.body = std::move(chunk);
        head_.clear();
        tail_ = "";
        if (!isHttp10_) {
            std::array<char, 24> size{};
            std::snprintf(size.data(), size.size(), "%zx\r\n", isMore ? response_.body.size() : 0);
            head_ = size.data();
            tail_ = "\r\n";
        }
        if (!isMore) {
            response_.body.clear();
            response_.stream = nullptr;
        }
        stream_.expires_after(std::chrono::seconds(core_->bounds.secondsForWrite));
        const std::array<asio::const_buffer, 3> parts = {
            asio::buffer(head_), asio::buffer(response_.body), asio::buffer(tail_)};
        asio::async_write(stream_, parts,
                          [self = shared_from_this(), isMore](error_code error, std::size_t) {
                              if (error)
                                  self->stream_.close();
                              else if (isMore)
                                  self->NextChunk();
                              else
                                  self->Sent();
                          });
    }

    void Sent() {
        response_ = {};
        if (keepAlive_) {
            if (buffer_.size() == 0)
                buffer_.shrink_to_fit(); // an idle connection holds no more than it must
            return ReadHead();
        }
        error_code ignored;
        stream_.socket().shutdown(tcp::socket::shutdown_send, ignored);
        stream_.expires_after(IgnoreSeconds);
        ignored_ = 0;
        buffer_.clear();
        buffer_.shrink_to_fit();
        isIdle_ = true;
        Ignore();
    }
    void Ignore() {
        static thread_local std::array<char, 16384> nowhere;
        stream_.async_read_some(asio::buffer(nowhere),
                                [self = shared_from_this()](error_code error, std::size_t count) {
                                    self->ignored_ += count;
                                    if (error || self->ignored_ > MostIgnored)
                                        self->stream_.close();
                                    else
                                        self->Ignore();
                                });
    }

    std::shared_ptr<Core> core_;
    beast::tcp_stream stream_;
    std::string peer_;
    beast::flat_buffer buffer_;
    std::optional<http::request_parser<http::string_body>> parser_;
    Request request_;
    Response response_;
    std::string head_;
    std::string_view tail_;
    std::size_t ignored_ = 0;
    std::size_t reserved_ = 0;
    bool keepAlive_ = false;
    bool isHttp10_ = false;
    bool isIdle_ = true;
};

bool HttpServer::Core::Enter(const std::string& address) {
    const std::lock_guard lock(mutex);
    std::size_t& ofAddress = byAddress[address];
    if (isStopping || connections >= bounds.connections ||
        (ofAddress >= bounds.connectionsPerAddress && !IsTrusted(address))) {
        if (ofAddress == 0)
            byAddress.erase(address);
        return false;
    }
    ++connections;
    ++ofAddress;
    return true;
}

void HttpServer::Core::Leave(const std::string& address) {
    const std::lock_guard lock(mutex);
    --connections;
    if (const auto found = byAddress.find(address); --found->second == 0)
        byAddress.erase(found);
    ended.notify_all();
}

void HttpServer::Core::Accept(const std::shared_ptr<tcp::acceptor>& acceptor) {
    asio::io_context& context = *contexts[nextContext++ % contexts.size()];
    acceptor->async_accept(
        context, [core = shared_from_this(), acceptor](error_code error, tcp::socket socket) {
            if (!acceptor->is_open())
                return;
            if (!error) {
                error_code gone;
                auto address = socket.remote_endpoint(gone).address();
                if (address.is_v6() && address.to_v6().is_v4_mapped())
                    address = asio::ip::make_address_v4(asio::ip::v4_mapped, address.to_v6());
                socket.set_option(tcp::no_delay(true), gone);
                // One too many is cut without a word: words would be work.
                if (const std::string peer = address.to_string(); !gone && core->Enter(peer))
                    std::make_shared<Session>(core, std::move(socket), peer)->Start();
                return core->Accept(acceptor);
            }
            // Out of descriptors: some will be free soon.
            auto timer = std::make_shared<asio::steady_timer>(acceptor->get_executor(),
                                                              std::chrono::milliseconds(50));
            timer->async_wait([core, acceptor, timer](error_code) { core->Accept(acceptor); });
        });
}

Response HttpServer::Core::Answer(const Handler& handler, const Request& request,
                                  const PathParts& parts) const {
    try {
        return handler(request, parts);
    } catch (const std::exception& failure) {
        const int status = router.StatusFor(failure);
        log(std::to_string(status) + ": " + failure.what());
        return router.ErrorPage(status, request);
    }
}

HttpServer::HttpServer(const Router& router, const HttpBounds& bounds, LogLine log)
    : core_(std::make_shared<Core>(router, bounds, std::move(log))) {
    for (std::unique_ptr<asio::io_context>& context : core_->contexts) {
        context = std::make_unique<asio::io_context>(1);
        core_->guards.push_back(asio::make_work_guard(*context));
        core_->threads.emplace_back([&served = *context] { served.run(); });
    }
}

HttpServer::~HttpServer() {
    Stop();
}

std::uint16_t HttpServer::Listen(const std::string& address, std::uint16_t port) {
    try {
        auto acceptor = std::make_shared<tcp::acceptor>(*core_->contexts[0]);
        const tcp::endpoint endpoint(asio::ip::make_address(address), port);
        acceptor->open(endpoint.protocol());
        acceptor->set_option(tcp::acceptor::reuse_address(true));
        acceptor->bind(endpoint);
        acceptor->listen(1024);
        core_->acceptors.push_back(acceptor);
        core_->Accept(acceptor);
        return acceptor->local_endpoint().port();
    } catch (const boost::system::system_error& failure) {
        throw std::runtime_error("Can't listen on " + address + " port " + std::to_string(port) +
                                 ": " + failure.code().message());
    }
}

void HttpServer::Stop() {
    if (core_->isStopping.exchange(true))
        return;
    asio::post(*core_->contexts[0], [core = core_] {
        for (const auto& acceptor : core->acceptors) {
            error_code ignored;
            acceptor->close(ignored);
        }
    });
    {
        std::unique_lock lock(core_->mutex);
        std::vector<std::shared_ptr<Core::Session>> open;
        for (const auto& [session, weak] : core_->sessions)
            open.push_back(weak.lock());
        lock.unlock();
        for (const auto& session : open)
            if (session)
                session->EndIfIdle();
        open.clear();
        lock.lock();
        core_->ended.wait_for(lock, StopPatience, [this] { return core_->connections == 0; });
    }
    core_->guards.clear();
    for (const auto& context : core_->contexts)
        context->stop();
    for (std::thread& thread : core_->threads)
        thread.join();
    core_->pool.reset(); // what was begun is finished, though nobody may listen any more
    core_->acceptors.clear();
    for (auto& context : core_->contexts)
        context.reset();
}

} // namespace pollarix::server
