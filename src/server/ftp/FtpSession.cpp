#include "server/ftp/FtpSession.h"

#include <algorithm>
#include <array>
#include <charconv>

#include <sys/socket.h>

namespace pollarix::server {

namespace {

constexpr std::size_t LongestLine = 512;
// 32767-32767.xml is the longest name there is.
constexpr std::size_t MostDigits = 5;

std::optional<std::int64_t> TakeNumber(std::string_view& text) {
    std::int64_t number = 0;
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + std::min(text.size(), MostDigits), number);
    if (error != std::errc() || end == text.data() || text.front() == '-' || text.front() == '0')
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

struct UploadName {
    std::int64_t user;
    std::int64_t survey;
};

// "<n>-<n>.xml"
std::optional<UploadName> ParsedName(std::string_view name) {
    const auto user = TakeNumber(name);
    if (!user || !name.starts_with('-'))
        return std::nullopt;
    name.remove_prefix(1);
    const auto survey = TakeNumber(name);
    if (!survey || name != ".xml")
        return std::nullopt;
    return UploadName{*user, *survey};
}

std::string OneLine(std::string words) {
    std::replace_if(
        words.begin(), words.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; },
        ' ');
    return words;
}

} // namespace

FtpSession::FtpSession(const FtpBounds& bounds, const UploadTaker& taker, Socket control, int wake)
    : bounds_(bounds), taker_(taker), control_(std::move(control)), wake_(wake),
      end_(std::chrono::steady_clock::now() + std::chrono::seconds(bounds.sessionSeconds)),
      peer_(PeerAddress(control_)) {}

Moment FtpSession::Soon() const {
    return std::min(end_,
                    std::chrono::steady_clock::now() + std::chrono::seconds(bounds_.idleSeconds));
}

bool FtpSession::Reply(const std::string& line) {
    return SendAll(control_, line + "\r\n", wake_, Soon());
}

std::optional<std::string> FtpSession::NextLine() {
    const Moment until = Soon();
    for (;;) {
        if (const std::size_t end = read_.find('\n'); end != std::string::npos) {
            std::string line = read_.substr(0, end);
            read_.erase(0, end + 1);
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            return line;
        }
        std::array<char, LongestLine> buffer;
        if (read_.size() > LongestLine || !WaitToRead(control_, wake_, until))
            return std::nullopt;
        const ssize_t count = recv(control_.Get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count <= 0)
            return std::nullopt;
        read_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void FtpSession::Run() {
    if (!Reply("220 Survey documents are taken here."))
        return;
    while (const auto line = NextLine()) {
        const std::size_t blank = std::min(line->find(' '), line->size());
        std::string command = line->substr(0, blank);
        for (char& c : command)
            if (c >= 'a' && c <= 'z')
                c = static_cast<char>(c - 'a' + 'A');
        if (!Do(command, line->substr(std::min(blank + 1, line->size()))))
            return;
    }
}

bool FtpSession::Do(const std::string& command, const std::string& argument) {
    if (command == "QUIT") {
        Reply("221 Goodbye.");
        return false;
    }
    if (command == "NOOP")
        return Reply("200 Fine.");
    if (command == "SYST")
        return Reply("215 UNIX Type: L8");
    if (command == "FEAT")
        return Reply("211-Beside the usual:\r\n EPSV\r\n UTF8\r\n211 That is all.");
    // Anybody may come in: what counts is the number in the name of the file, which only a login
    // gives.
    if (command == "USER") {
        hasName_ = true;
        isLoggedIn_ = false;
        return Reply("331 And the password?");
    }
    if (command == "PASS") {
        isLoggedIn_ = hasName_;
        return Reply(hasName_ ? "230 Welcome." : "503 The name comes first.");
    }
    if (command != "CWD" && command != "PWD" && command != "TYPE" && command != "PASV" &&
        command != "EPSV" && command != "STOR")
        return Reply("502 This server only takes survey documents.");
    if (!isLoggedIn_)
        return Reply("530 Please log in first.");
    if (command == "CWD")
        return ChangeDirectory(argument);
    if (command == "PWD")
        return Reply(isInIncoming_ ? "257 \"/incoming\"" : "257 \"/\"");
    if (command == "TYPE")
        return Reply(argument == "I" || argument == "i" || argument == "A" || argument == "a"
                         ? "200 Bytes are taken as they come."
                         : "504 There is no such type here.");
    if (command == "STOR")
        return Store(argument);
    return Listen(command == "EPSV");
}

bool FtpSession::ChangeDirectory(const std::string& directory) {
    if (directory == "/") {
        isInIncoming_ = false;
        return Reply("250 Fine.");
    }
    const bool isIncoming =
        directory == "/incoming" || directory == "/incoming/" ||
        (!isInIncoming_ && (directory == "incoming" || directory == "incoming/"));
    if (!isIncoming)
        return Reply("550 There is only the directory incoming.");
    isInIncoming_ = true;
    return Reply("250 Fine.");
}

bool FtpSession::Listen(bool isExtended) {
    const std::string local = LocalAddress(control_);
    const bool isV6 = local.find(':') != std::string::npos;
    if (isV6 && !isExtended)
        return Reply("522 Please ask with EPSV.");
    data_.Close();
    for (std::uint32_t port = bounds_.firstDataPort; port <= bounds_.lastDataPort; ++port) {
        try {
            data_ = ListenOn(local, static_cast<std::uint16_t>(port));
            break;
        } catch (const std::exception&) { // somebody else's upload; the next one is tried
        }
    }
    if (!data_.IsOpen())
        return Reply("425 There is no port free for the data.");
    const int port = LocalPort(data_);
    if (isExtended)
        return Reply("229 Data go here (|||" + std::to_string(port) + "|).");
    std::string numbers = bounds_.publicAddress.empty() ? local : bounds_.publicAddress;
    std::replace(numbers.begin(), numbers.end(), '.', ',');
    return Reply("227 Data go here (" + numbers + ',' + std::to_string(port / 256) + ',' +
                 std::to_string(port % 256) + ").");
}

bool FtpSession::Store(const std::string& name) {
    const bool isFull = name.starts_with("/incoming/");
    std::string_view file = name;
    if (isFull)
        file.remove_prefix(10);
    else if (!isInIncoming_ && name.starts_with("incoming/"))
        file.remove_prefix(9);
    else if (!isInIncoming_)
        return Reply("553 Documents go into the directory incoming.");
    const auto upload = ParsedName(file);
    if (!upload)
        return Reply("553 A document's name is two numbers: 1-2.xml");
    if (!data_.IsOpen())
        return Reply("425 Please ask for a data connection first.");
    try {
        if (const std::string why = taker_.mayCome(upload->user, upload->survey, peer_);
            !why.empty())
            return Reply("550 " + OneLine(why));
        if (!Reply("150 Ready."))
            return false;
        std::string refusal;
        auto document = ReceiveData(refusal);
        data_.Close();
        if (!document)
            return Reply(refusal);
        const std::string why =
            taker_.take(upload->user, upload->survey, std::move(*document), peer_);
        return Reply(why.empty() ? "226 Taken." : "550 " + OneLine(why));
    } catch (const std::exception&) {
        return Reply("452 The server can't store this just now.");
    }
}

std::optional<std::string> FtpSession::ReceiveData(std::string& refusal) {
    Socket data;
    // A connection from elsewhere is somebody who guesses ports.
    for (const Moment until = Soon(); !data.IsOpen();) {
        data = AcceptUntil(data_, wake_, until);
        if (!data.IsOpen()) {
            refusal = "425 No data connection came.";
            return std::nullopt;
        }
        if (PeerAddress(data) != peer_)
            data.Close();
    }
    std::string document;
    std::array<char, 65536> buffer;
    for (;;) {
        if (!WaitToRead(data, wake_, Soon())) {
            refusal = "426 The data did not come.";
            return std::nullopt;
        }
        const ssize_t count = recv(data.Get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (count == 0)
            return document;
        if (count < 0) {
            refusal = "426 The data connection broke.";
            return std::nullopt;
        }
        if (document.size() + static_cast<std::size_t>(count) > bounds_.documentBytes) {
            refusal = "552 The document is too large for this server.";
            return std::nullopt;
        }
        document.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

} // namespace pollarix::server
