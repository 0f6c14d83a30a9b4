#include "server/ftp/FtpReceiver.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include <sys/eventfd.h>
#include <unistd.h>

#include "server/ftp/FtpSession.h"
#include "server/net/Address.h"

namespace pollarix::server {

// Sessions are few and short, and each has a thread of its own.
struct FtpReceiver::State {
    State(const FtpBounds& given, UploadTaker uploads, std::function<void(const std::string&)> line)
        : bounds(given), taker(std::move(uploads)), log(std::move(line)),
          wake(eventfd(0, EFD_CLOEXEC)) {}

    bool Enter(const std::string& address) {
        const std::lock_guard lock(mutex);
        if (sessions >= bounds.sessions)
            return false;
        int& ofAddress = byAddress[address];
        if (ofAddress >= bounds.sessionsPerAddress)
            return false;
        ++sessions;
        ++ofAddress;
        return true;
    }
    void Leave(const std::string& address) {
        const std::lock_guard lock(mutex);
        --sessions;
        if (--byAddress[address] == 0)
            byAddress.erase(address);
        ended.notify_all();
    }

    const FtpBounds bounds;
    const UploadTaker taker;
    const std::function<void(const std::string&)> log;
    Socket wake; // can be read once the server stops
    std::vector<std::thread> listeners;
    std::mutex mutex;
    std::condition_variable ended;
    int sessions = 0;
    std::unordered_map<std::string, int> byAddress;
};

FtpReceiver::FtpReceiver(const FtpBounds& bounds, UploadTaker taker,
                         std::function<void(const std::string&)> log)
    : state_(std::make_shared<State>(bounds, std::move(taker), std::move(log))) {}

FtpReceiver::~FtpReceiver() {
    Stop();
}

std::uint16_t FtpReceiver::Listen(const std::string& address, std::uint16_t port) {
    Socket listener = ListenOn(address, port);
    const std::uint16_t bound = LocalPort(listener);
    state_->listeners.emplace_back([state = state_, listener = std::move(listener)] {
        constexpr auto aWhile = std::chrono::minutes(5);
        const int wake = state->wake.Get();
        for (;;) {
            Socket control = AcceptUntil(listener, wake, std::chrono::steady_clock::now() + aWhile);
            if (WaitToRead(state->wake, -1, std::chrono::steady_clock::now()))
                return;
            if (!control.IsOpen()) { // out of descriptors, perhaps: some will be free soon
                WaitToRead(state->wake, -1,
                           std::chrono::steady_clock::now() + std::chrono::milliseconds(50));
                continue;
            }
            const std::string name = BoundName(PeerAddress(control));
            if (!state->Enter(name)) {
                SendAll(control, "421 Too many uploads at once.\r\n", wake,
                        std::chrono::steady_clock::now());
                continue;
            }
            try {
                std::thread([state, name, control = std::move(control), wake]() mutable {
                    FtpSession(state->bounds, state->taker, std::move(control), wake).Run();
                    state->Leave(name);
                }).detach();
            } catch (const std::system_error&) {
                state->log("no thread for an upload");
                state->Leave(name);
            }
        }
    });
    return bound;
}

void FtpReceiver::Stop() {
    if (state_->listeners.empty())
        return;
    const std::uint64_t one = 1;
    if (write(state_->wake.Get(), &one, sizeof one) != sizeof one)
        state_->log("the receiver of uploads could not be told to stop");
    for (std::thread& listener : state_->listeners)
        listener.join();
    state_->listeners.clear();
    std::unique_lock lock(state_->mutex);
    state_->ended.wait(lock, [this] { return state_->sessions == 0; });
}

} // namespace pollarix::server
