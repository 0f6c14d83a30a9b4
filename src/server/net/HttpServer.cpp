// The only source that includes Beast and Asio, which take their time to compile.
#include "server/net/HttpServer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>
#include <unordered_set>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <linux/sockios.h>
#include <sys/ioctl.h>

#include "server/net/Address.h"
#include "server/net/ReplyHead.h"
#include "server/net/RequestReader.h"
#include "server/net/WorkPool.h"

namespace pollarix::server {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;
using tcp = asio::ip::tcp;
using Clock = std::chrono::steady_clock;
using std::chrono::seconds;

namespace {

constexpr std::size_t SocketThreads = 2;
constexpr auto StopPatience = seconds(10);
constexpr auto BetweenSweeps = std::chrono::milliseconds(250);
// What a client that was refused may still send before its connection is cut, so that it gets to
// read why.
constexpr std::size_t MostIgnored = 256 * 1024;
constexpr auto IgnoreSeconds = seconds(2);
// What an idle connection reads into, and one that a body comes on.
constexpr std::size_t SmallRead = 2 * 1024;
constexpr std::size_t LargeRead = 16 * 1024;
// So much of a body, there or back, is anybody's without being counted.
constexpr std::size_t Uncounted = 16 * 1024;
// An answer has to be taken this much at a time; how long that may take is a bound.
constexpr std::size_t TakenAtATime = 16 * 1024;

bool IsMethod(std::string_view method) {
    return method == "GET" || method == "HEAD" || method == "POST";
}

// What all clients together, and each address alone, have in memory of bodies.
class BodyRoom {
  public:
    BodyRoom(std::size_t all, std::size_t each) : all_(all), each_(each) {}

    // Changes what one of them has, unless that would be too much.
    bool Change(const std::string& who, std::size_t from, std::size_t to) {
        const std::lock_guard lock(mutex_);
        std::size_t& of = byName_[who];
        const bool fits = to <= from || (used_ - from + to <= all_ && of - from + to <= each_);
        if (fits) {
            used_ = used_ - from + to;
            of = of - from + to;
        }
        if (of == 0)
            byName_.erase(who);
        return fits;
    }

  private:
    const std::size_t all_;
    const std::size_t each_;
    std::mutex mutex_;
    std::size_t used_ = 0;
    std::unordered_map<std::string, std::size_t> byName_;
};

} // namespace

struct HttpServer::Core : std::enable_shared_from_this<HttpServer::Core> {
    class Session;

    // A thread that waits for some of the connections. All but the context is that thread's own.
    struct Loop {
        asio::io_context context{1};
        asio::executor_work_guard<asio::io_context::executor_type> guard{context.get_executor()};
        asio::steady_timer sweep{context};
        bool isSweeping = false;
        std::unordered_set<std::shared_ptr<Session>> sessions;
        std::thread thread;
    };

    Core(const Router& routes, const HttpBounds& given, LogLine line)
        : router(routes), bounds(given), log(std::move(line)),
          bodies(given.allBodiesBytes, std::max(given.bodiesBytesPerAddress, given.bodyBytes)),
          pool(std::make_unique<WorkPool>(given.requestsAtOnce, given.requestsWaiting)) {}

    // A connection that may stay, or not; and one that has ended.
    bool Enter(const std::string& address, const std::string& name);
    void Leave(const std::string& name);
    bool IsTrusted(const std::string& address) const {
        return std::find(bounds.trustedProxies.begin(), bounds.trustedProxies.end(), address) !=
               bounds.trustedProxies.end();
    }
    void Accept(const std::shared_ptr<tcp::acceptor>& acceptor);
    void Sweep(Loop& loop);
    template <typename Make> Response Made(Make make, const Request& request) const {
        try {
            return make();
        } catch (const std::exception& failure) {
            const int status = router.StatusFor(failure);
            log(std::to_string(status) + ": " + failure.what());
            return router.ErrorPage(status, request);
        }
    }

    const Router& router;
    const HttpBounds bounds;
    const LogLine log;
    BodyRoom bodies;
    std::unique_ptr<WorkPool> pool;
    std::atomic<bool> isStopping = false;
    // Sockets and what waits on them hold the core in turn, so these go when the server stops.
    std::array<std::unique_ptr<Loop>, SocketThreads> loops;
    // New connections have a thread of their own: one doesn't wait behind all that others do.
    std::unique_ptr<Loop> door;
    std::size_t nextLoop = 0; // the door's own
    std::vector<std::shared_ptr<tcp::acceptor>> acceptors;

    std::mutex mutex;
    std::condition_variable ended;
    std::size_t connections = 0;
    std::size_t begun = 0; // answers that somebody else will resume
    std::unordered_map<std::string, std::size_t> byName;
};

// One connection. Lives in its loop's set until it has ended; all of it happens on the loop's
// thread.
class HttpServer::Core::Session : public std::enable_shared_from_this<Session> {
  public:
    Session(std::shared_ptr<Core> core, Loop& loop, tcp::socket socket, std::string peer,
            std::string name)
        : core_(std::move(core)), loop_(loop), socket_(std::move(socket)), peer_(std::move(peer)),
          name_(std::move(name)) {}
    ~Session() {
        Hold(0);
        core_->Leave(name_);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void Start() {
        loop_.sessions.insert(shared_from_this());
        if (!loop_.isSweeping) {
            loop_.isSweeping = true;
            core_->Sweep(loop_);
        }
        Next();
    }
    // Ends a connection that has not begun a request, or only its head; one that is being answered
    // ends after that.
    void EndIfIdle() {
        if (state_ == State::Idle || (state_ == State::Reading && !reader_->is_header_done()))
            End();
    }
    // Ends it if its time is over. Gives whether it has ended.
    bool IsOver(Clock::time_point now) {
        if (state_ == State::Writing && HasTaken())
            LetItHave(seconds(core_->bounds.secondsForWrite));
        return now >= deadline_;
    }
    void End() {
        if (state_ == State::Ended)
            return;
        state_ = State::Ended;
        error_code ignored;
        socket_.close(ignored);
        loop_.sessions.erase(shared_from_this());
    }

  private:
    enum class State {
        Idle,      // waits for the first byte of a request, or for the client to go
        Reading,   // in the midst of a request
        Answering, // waits for whoever answers
        Writing,
        Ended
    };

    void LetItHave(Clock::duration time) { deadline_ = Clock::now() + time; }

    void Next() {
        if (core_->isStopping)
            return End();
        Hold(0);
        request_ = {};
        reader_.emplace(request_, core_->bounds.headBytes, core_->bounds.bodyBytes);
        LetItHave(seconds(core_->bounds.secondsForRequest));
        if (begin_ < end_) { // it was sent along with the one before
            state_ = State::Reading;
            // Behind all others that wait, however many one sends at once.
            return asio::post(loop_.context, [self = shared_from_this()] {
                if (self->state_ == State::Reading)
                    self->Parse();
            });
        }
        state_ = State::Idle;
        begin_ = end_ = 0;
        // An idle connection holds no more than it must.
        if (read_.size() > SmallRead)
            std::vector<char>().swap(read_);
        Read(SmallRead);
    }

    void Read(std::size_t size) {
        if (begin_ > 0) {
            std::copy(read_.begin() + static_cast<std::ptrdiff_t>(begin_),
                      read_.begin() + static_cast<std::ptrdiff_t>(end_), read_.begin());
            end_ -= begin_;
            begin_ = 0;
        }
        if (read_.size() < std::max(size, end_ + 1))
            read_.resize(std::max(size, end_ * 2));
        socket_.async_read_some(asio::buffer(read_.data() + end_, read_.size() - end_),
                                [self = shared_from_this()](error_code error, std::size_t count) {
                                    if (self->state_ == State::Ended)
                                        return;
                                    if (error)
                                        return self->End();
                                    self->end_ += count;
                                    if (self->state_ == State::Idle) {
                                        self->state_ = State::Reading;
                                        self->LetItHave(
                                            seconds(self->core_->bounds.secondsForRequest));
                                    }
                                    self->Parse();
                                });
    }

    // Takes what has come so far.
    void Parse() {
        for (;;) {
            const bool wasHead = reader_->is_header_done();
            error_code error;
            const std::size_t used =
                reader_->put(asio::buffer(read_.data() + begin_, end_ - begin_), error);
            begin_ += used;
            const bool needsMore = error == http::error::need_more;
            if (error && !needsMore)
                return Failed(error);
            if (!reader_->is_header_done()) {
                if (!reader_->TakesMoreHead(used, end_ - begin_))
                    return Refuse(431);
                if (needsMore)
                    return Read(std::min(end_ - begin_ + SmallRead, core_->bounds.headBytes + 1));
                continue;
            }
            if (!wasHead && !TakeHead())
                return;
            if (reader_->is_done())
                return Whole();
            if (!Hold(request_.body.size()))
                return Refuse(503);
            if (needsMore && end_ - begin_ >= LargeRead) // a chunk's head without an end
                return Refuse(400);
            if (needsMore || begin_ == end_)
                return Read(LargeRead);
        }
    }

    // False when the request is refused.
    bool TakeHead() {
        int status = 0;
        if (reader_->IsAmbiguous() || request_.path.empty())
            status = 400;
        else if (!IsMethod(request_.method))
            status = 405;
        request_.address = peer_;
        if (core_->IsTrusted(peer_))
            TakeProxysWord(request_);
        if (status != 0) {
            Refuse(status);
            return false;
        }
        if (reader_->ExpectsContinue() && !reader_->is_done() && begin_ == end_) {
            static constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
            error_code ignored; // so few bytes always fit, or the connection is broken
            socket_.write_some(asio::buffer(goOn), ignored);
        }
        return true;
    }

    // Counts what lies in memory of the request's body, or of the answer's. False, and as before,
    // when that is too much.
    bool Hold(std::size_t size) {
        const std::size_t wanted = size > Uncounted ? size : 0;
        if (wanted == held_)
            return true;
        if (held_ == 0)
            holder_ = BoundName(request_.address);
        if (!core_->bodies.Change(holder_, held_, wanted))
            return false;
        held_ = wanted;
        return true;
    }

    void Whole() {
        keepAlive_ = reader_->keep_alive();
        isHttp10_ = reader_->IsHttp10();
        state_ = State::Answering;
        deadline_ = Clock::time_point::max();
        Router::Found found = core_->router.Find(request_.method, request_.path);
        if (!found.route)
            return Send(core_->router.ErrorPage(found.status, request_));
        if (found.route->quick) {
            std::optional<Response> response;
            Response failed = core_->Made(
                [&] {
                    response = found.route->quick(request_, found.parts);
                    return Response();
                },
                request_);
            if (failed.status != Response().status)
                return Send(std::move(failed));
            if (response && response->begin)
                return Begin(response->begin);
            if (response)
                return Send(std::move(*response));
        }
        const bool isTaken = core_->pool->Post([self = shared_from_this(),
                                                found = std::move(found)] {
            auto response = std::make_shared<Response>(self->core_->Made(
                [&] { return found.route->handler(self->request_, found.parts); }, self->request_));
            asio::post(self->loop_.context, [self, response] { self->Send(std::move(*response)); });
        });
        if (!isTaken)
            Send(core_->router.ErrorPage(503, request_));
    }

    // The answer comes when somebody else is done.
    void Begin(const std::function<void(Resume)>& begin) {
        {
            const std::lock_guard lock(core_->mutex);
            ++core_->begun;
        }
        // Who resumes may keep this for longer than the server is there, so it lets go of the
        // connection, which goes along to its own thread.
        const auto held = std::make_shared<std::shared_ptr<Session>>(shared_from_this());
        const auto resume = [held, core = core_](std::function<Response()> rest) {
            Loop& loop = (*held)->loop_;
            asio::post(loop.context, [self = std::move(*held), rest = std::move(rest)] {
                self->Send(self->core_->Made(rest, self->request_));
            });
            const std::lock_guard lock(core->mutex);
            if (--core->begun == 0)
                core->ended.notify_all();
        };
        Response failed = core_->Made(
            [&] {
                begin(resume);
                return Response();
            },
            request_);
        if (failed.status != Response().status)
            resume([failed] { return failed; });
    }

    void Failed(error_code error) {
        if (error == http::error::body_limit)
            return Refuse(413);
        if (error == http::error::header_limit)
            return Refuse(431);
        Refuse(400);
    }

    // Says why, and ends the connection: what follows on it can't be told from the refused request.
    void Refuse(int status) {
        keepAlive_ = false;
        isHttp10_ = false;
        request_.body.clear(); // not whole
        Send(core_->router.ErrorPage(status, request_));
    }

    void Send(Response response) {
        if (state_ == State::Ended)
            return;
        std::string().swap(request_.body);
        if (!Hold(response.body.size())) { // pages that nobody reads
            response =
                Response::Text(503, "The server has too much to do just now. Please go back, "
                                    "where your answers still are, and try again.");
            Hold(0);
        }
        response_ = std::move(response);
        if (core_->isStopping || (response_.stream && isHttp10_))
            keepAlive_ = false;
        head_ = ReplyHead(response_, response_.stream && !isHttp10_, keepAlive_);
        if (request_.method == "HEAD" || response_.status == 304) {
            response_.body.clear();
            response_.stream = nullptr;
        }
        tail_ = "";
        isLast_ = !response_.stream;
        BeginWriting();
    }

    void BeginWriting() {
        state_ = State::Writing;
        written_ = taken_ = 0;
        LetItHave(seconds(core_->bounds.secondsForWrite));
        Write();
    }
    // As much as the system takes, and the rest when it takes more.
    void Write() {
        for (;;) {
            const std::array<asio::const_buffer, 3> parts = Unwritten();
            if (asio::buffer_size(parts) == 0)
                break;
            error_code error;
            written_ += socket_.write_some(parts, error);
            if (error == asio::error::would_block || error == asio::error::try_again)
                return socket_.async_wait(tcp::socket::wait_write,
                                          [self = shared_from_this()](error_code failed) {
                                              if (self->state_ == State::Ended)
                                                  return;
                                              if (failed)
                                                  self->End();
                                              else
                                                  self->Write();
                                          });
            if (error)
                return End();
        }
        if (isLast_)
            Sent();
        else
            NextChunk();
    }
    std::array<asio::const_buffer, 3> Unwritten() const {
        std::array<asio::const_buffer, 3> parts = {
            asio::buffer(head_), asio::buffer(response_.body), asio::buffer(tail_)};
        std::size_t skipped = written_;
        for (asio::const_buffer& part : parts) {
            const std::size_t size = std::min(skipped, part.size());
            part += size;
            skipped -= size;
        }
        return parts;
    }
    // Whether the client has taken another piece of what is being written. What the system holds
    // for it isn't taken yet, and that may be much.
    bool HasTaken() {
        int held = 0;
        if (ioctl(socket_.native_handle(), SIOCOUTQ, &held) != 0)
            return false;
        const std::size_t taken = written_ - std::min(written_, static_cast<std::size_t>(held));
        if (taken < taken_ + TakenAtATime)
            return false;
        taken_ = taken;
        return true;
    }

    // The source is asked on a thread that may wait, a chunk at a time.
    void NextChunk() {
        state_ = State::Answering;
        deadline_ = Clock::time_point::max();
        const bool isTaken = core_->pool->Post([self = shared_from_this()] {
            bool isMore = false;
            bool isWhole = true;
            auto chunk = std::make_shared<std::string>();
            try {
                isMore = self->response_.stream(*chunk);
            } catch (const std::exception& failure) {
                self->core_->log(std::string("an answer was cut: ") + failure.what());
                isWhole = false;
            }
            asio::post(self->loop_.context, [self, chunk, isMore, isWhole] {
                if (!isWhole)
                    self->End();
                else
                    self->SendChunk(std::move(*chunk), isMore);
            });
        });
        if (!isTaken)
            End();
    }
    void SendChunk(std::string chunk, bool isMore) {
        if (state_ == State::Ended)
            return;
        if (isMore && chunk.empty())
            return NextChunk();
        response_.body = isMore ? std::move(chunk) : "";
        isLast_ = !isMore;
        head_.clear();
        tail_ = "";
        if (!isHttp10_) {
            std::array<char, 24> size{};
            std::snprintf(size.data(), size.size(), "%zx\r\n", response_.body.size());
            head_ = size.data();
            tail_ = "\r\n";
        }
        BeginWriting();
    }

    void Sent() {
        response_ = {};
        if (keepAlive_)
            return Next();
        error_code ignored;
        socket_.shutdown(tcp::socket::shutdown_send, ignored);
        Hold(0);
        LetItHave(IgnoreSeconds);
        ignored_ = 0;
        std::vector<char>().swap(read_);
        state_ = State::Idle;
        Ignore();
    }
    void Ignore() {
        static thread_local std::array<char, 16384> nowhere;
        socket_.async_read_some(asio::buffer(nowhere),
                                [self = shared_from_this()](error_code error, std::size_t count) {
                                    if (self->state_ == State::Ended)
                                        return;
                                    self->ignored_ += count;
                                    if (error || self->ignored_ > MostIgnored)
                                        self->End();
                                    else
                                        self->Ignore();
                                });
    }

    const std::shared_ptr<Core> core_;
    Loop& loop_;
    tcp::socket socket_;
    const std::string peer_;
    const std::string name_;
    State state_ = State::Idle;
    Clock::time_point deadline_;
    std::vector<char> read_; // of which what lies between these two is not yet taken
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    Request request_;
    std::optional<RequestReader> reader_;
    std::size_t held_ = 0; // in the room for bodies, under that name
    std::string holder_;
    Response response_;
    std::string head_;
    std::string_view tail_;
    std::size_t written_ = 0; // of head, body and tail together
    std::size_t taken_ = 0;   // of these, when that was last enough
    std::size_t ignored_ = 0;
    bool isLast_ = true;
    bool keepAlive_ = false;
    bool isHttp10_ = false;
};

bool HttpServer::Core::Enter(const std::string& address, const std::string& name) {
    const std::lock_guard lock(mutex);
    std::size_t& ofName = byName[name];
    if (isStopping || connections >= bounds.connections ||
        (ofName >= bounds.connectionsPerAddress && !IsTrusted(address))) {
        if (ofName == 0)
            byName.erase(name);
        return false;
    }
    ++connections;
    ++ofName;
    return true;
}

void HttpServer::Core::Leave(const std::string& name) {
    const std::lock_guard lock(mutex);
    if (const auto found = byName.find(name); --found->second == 0)
        byName.erase(found);
    if (--connections == 0)
        ended.notify_all();
}

void HttpServer::Core::Accept(const std::shared_ptr<tcp::acceptor>& acceptor) {
    Loop& loop = *loops[nextLoop++ % loops.size()];
    acceptor->async_accept(loop.context, [core = shared_from_this(), acceptor,
                                          &loop](error_code error, tcp::socket socket) {
        if (!acceptor->is_open())
            return;
        if (!error) {
            error_code gone;
            const std::string peer =
                PlainAddress(socket.remote_endpoint(gone).address().to_string());
            const std::string name = BoundName(peer);
            socket.set_option(tcp::no_delay(true), gone);
            socket.non_blocking(true, gone);
            // One too many is cut without a word: words would be work.
            if (!gone && core->Enter(peer, name)) {
                auto session = std::make_shared<Session>(core, loop, std::move(socket), peer, name);
                asio::post(loop.context, [session] { session->Start(); });
            }
            return core->Accept(acceptor);
        }
        // Out of descriptors: some will be free soon.
        auto timer = std::make_shared<asio::steady_timer>(core->door->context,
                                                          std::chrono::milliseconds(50));
        timer->async_wait([core, acceptor, timer](error_code) { core->Accept(acceptor); });
    });
}

// Ends the connections whose time is over, every now and then for as long as there are any.
void HttpServer::Core::Sweep(Loop& loop) {
    loop.sweep.expires_after(BetweenSweeps);
    loop.sweep.async_wait([core = shared_from_this(), &loop](error_code error) {
        if (error)
            return;
        const auto now = Clock::now();
        std::vector<std::shared_ptr<Session>> over;
        for (const std::shared_ptr<Session>& session : loop.sessions)
            if (session->IsOver(now))
                over.push_back(session);
        for (const std::shared_ptr<Session>& session : over)
            session->End();
        loop.isSweeping = !loop.sessions.empty();
        if (loop.isSweeping)
            core->Sweep(loop);
    });
}

HttpServer::HttpServer(const Router& router, const HttpBounds& bounds, LogLine log)
    : core_(std::make_shared<Core>(router, bounds, std::move(log))) {
    const auto open = [](std::unique_ptr<Core::Loop>& loop) {
        loop = std::make_unique<Core::Loop>();
        loop->thread = std::thread([&context = loop->context] { context.run(); });
    };
    for (std::unique_ptr<Core::Loop>& loop : core_->loops)
        open(loop);
    open(core_->door);
}

HttpServer::~HttpServer() {
    Stop();
}

std::uint16_t HttpServer::Listen(const std::string& address, std::uint16_t port) {
    try {
        auto acceptor = std::make_shared<tcp::acceptor>(core_->door->context);
        const tcp::endpoint endpoint(asio::ip::make_address(address), port);
        acceptor->open(endpoint.protocol());
        acceptor->set_option(tcp::acceptor::reuse_address(true));
        acceptor->bind(endpoint);
        acceptor->listen(4096);
        core_->acceptors.push_back(acceptor);
        const std::uint16_t bound = acceptor->local_endpoint().port();
        asio::post(core_->door->context, [core = core_, acceptor] { core->Accept(acceptor); });
        return bound;
    } catch (const boost::system::system_error& failure) {
        throw std::runtime_error("Can't listen on " + address + " port " + std::to_string(port) +
                                 ": " + failure.code().message());
    }
}

void HttpServer::Stop() {
    if (core_->isStopping.exchange(true))
        return;
    asio::post(core_->door->context, [core = core_] {
        for (const auto& acceptor : core->acceptors) {
            error_code ignored;
            acceptor->close(ignored);
        }
    });
    for (const auto& loop : core_->loops)
        asio::post(loop->context, [&served = *loop] {
            const std::vector<std::shared_ptr<Core::Session>> open(served.sessions.begin(),
                                                                   served.sessions.end());
            for (const std::shared_ptr<Core::Session>& session : open)
                session->EndIfIdle();
        });
    {
        std::unique_lock lock(core_->mutex);
        core_->ended.wait_for(lock, StopPatience, [this] { return core_->connections == 0; });
    }
    for (Core::Loop* loop : {core_->loops[0].get(), core_->loops[1].get(), core_->door.get()}) {
        loop->guard.reset();
        loop->context.stop();
        loop->thread.join();
    }
    core_->pool.reset(); // what was begun is finished, though nobody may listen any more
    {
        std::unique_lock lock(core_->mutex);
        core_->ended.wait(lock, [this] { return core_->begun == 0; });
    }
    core_->acceptors.clear();
    // Before the others: what waits at the door holds a socket of theirs.
    core_->door.reset();
    for (const auto& loop : core_->loops)
        loop->sessions.clear();
    for (auto& loop : core_->loops)
        loop.reset();
}

} // namespace pollarix::server
