#include "server/accounts/Accounts.h"

#include <condition_variable>
#include <ctime>
#include <mutex>

#include "exchange/SentText.h"
#include "server/accounts/Bounds.h"
#include "server/net/Address.h"

namespace pollarix::server {

namespace {

constexpr Time LoginWindow = 15 * 60;
constexpr Time Day = 86400;
// A name may be tried from many addresses. Its bound is wider, so that nobody can lock a holder out
// with a handful of wrong passwords.
constexpr int NameFactor = 10;
// Each takes 64 MB, and the server is to stay below 128 whoever tries to log in.
constexpr int HashesAtOnce = 1;
constexpr int HashesWaiting = 16;
constexpr std::size_t LongestName = 64;
constexpr std::size_t ShortestPassword = 8;
constexpr std::size_t LongestPassword = 128;

Time Now() {
    return std::time(nullptr);
}

// What the program can send: no control characters, and none of the marks that part the values.
bool IsNameFit(std::string_view name) {
    if (name.empty() || name.size() > LongestName || name.front() == ' ' || name.back() == ' ')
        return false;
    for (const char c : name)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            return false;
    return name.find_first_of("&<>%#+\"") == std::string_view::npos;
}

bool IsPasswordFit(std::string_view password) {
    return password.size() >= ShortestPassword && password.size() <= LongestPassword;
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

} // namespace

struct Accounts::State {
    State(Store& usedStore, const AccountBounds& given)
        : store(usedStore), bounds(given), wrongByAddress(given.wrongLogins, LoginWindow),
          wrongByName(given.wrongLogins * NameFactor, LoginWindow),
          newByAddress(given.newAccounts, Day) {}

    // Waits for one of the places where a password is hashed; false when too many wait already.
    bool Enter() {
        std::unique_lock lock(mutex);
        if (waiting >= HashesWaiting)
            return false;
        ++waiting;
        left.wait(lock, [this] { return hashing < HashesAtOnce; });
        --waiting;
        ++hashing;
        return true;
    }
    void Leave() {
        {
            const std::lock_guard lock(mutex);
            --hashing;
        }
        left.notify_one();
    }

    Store& store;
    const AccountBounds bounds;
    Bound wrongByAddress;
    Bound wrongByName;
    Bound newByAddress;
    std::mutex mutex;
    std::condition_variable left;
    int waiting = 0;
    int hashing = 0;
};

namespace {

template <typename State> class HashPlace {
  public:
    explicit HashPlace(State& state) : state_(state), isHad_(state.Enter()) {}
    ~HashPlace() {
        if (isHad_)
            state_.Leave();
    }
    HashPlace(const HashPlace&) = delete;
    HashPlace& operator=(const HashPlace&) = delete;
    explicit operator bool() const { return isHad_; }

  private:
    State& state_;
    bool isHad_;
};

} // namespace

Accounts::Accounts(Store& store, const AccountBounds& bounds)
    : state_(std::make_unique<State>(store, bounds)) {}

Accounts::~Accounts() = default;

Accounts::Login Accounts::LogIn(std::string_view typedName, std::string_view typedPassword,
                                const std::string& address) {
    const std::string name = exchange::AsSent(typedName);
    const std::string password = exchange::AsSent(typedPassword);
    const std::string who = BoundName(address);
    const std::string key = Lower(name);
    if (state_->wrongByAddress.IsReached(who, Now()) || state_->wrongByName.IsReached(key, Now()))
        return {LogInResult::TooMany};
    const auto account = state_->store.FindAccount(name);
    const bool canLogIn = account && !account->isDisabled && password.size() <= LongestPassword;
    bool fits = false;
    {
        const HashPlace place(*state_);
        if (!place)
            return {LogInResult::Busy};
        fits = PasswordFits(canLogIn ? account->passwordHash : std::string(),
                            std::string_view(password).substr(0, LongestPassword));
    }
    if (!fits) {
        state_->wrongByAddress.Count(who, Now());
        state_->wrongByName.Count(key, Now());
        return {LogInResult::Wrong};
    }
    return {LogInResult::Fine, account->id, account->stamp};
}

Accounts::Creation Accounts::CreateAccount(std::string_view typedName,
                                           std::string_view typedPassword,
                                           std::string_view invitation,
                                           const std::string& address) {
    const std::string wanted = exchange::AsSent(typedName);
    const std::string password = exchange::AsSent(typedPassword);
    if (!MayCreateAccount(invitation))
        return {NewAccountResult::Closed, None};
    if (!IsNameFit(wanted))
        return {NewAccountResult::NameUnfit, None};
    if (!IsPasswordFit(password))
        return {NewAccountResult::PasswordWeak, None};
    if (state_->store.FindAccount(wanted))
        return {NewAccountResult::NameTaken, None};
    if (!state_->newByAddress.Take(BoundName(address), Now()))
        return {NewAccountResult::TooMany, None};
    std::string hash;
    {
        const HashPlace place(*state_);
        if (!place)
            return {NewAccountResult::Busy, None};
        hash = HashPassword(password);
    }
    const Id account =
        invitation.empty()
            ? state_->store.CreateAccount(wanted, hash, Now())
            : state_->store.CreateInvitedAccount(TokenHash(invitation), wanted, hash, Now());
    if (account != None)
        return {NewAccountResult::Fine, account};
    // Somebody else was faster, with the name or with the invitation.
    return {MayCreateAccount(invitation) ? NewAccountResult::NameTaken : NewAccountResult::Closed,
            None};
}

bool Accounts::MayCreateAccount(std::string_view invitation) {
    return invitation.empty() ? state_->bounds.isOpen
                              : state_->store.HasInvitation(TokenHash(invitation), Now());
}

std::string Accounts::Invite() {
    const std::string token = NewToken();
    state_->store.CreateInvitation(TokenHash(token), Now() + state_->bounds.invitationSeconds);
    return token;
}

NewAccountResult Accounts::ChangePassword(Id account, std::string_view oldPassword,
                                          std::string_view newPassword,
                                          const std::string& address) {
    const auto found = state_->store.FindAccount(account);
    if (!found)
        return NewAccountResult::Closed;
    const Login login = LogIn(found->name, oldPassword, address);
    if (login.result == LogInResult::Busy)
        return NewAccountResult::Busy;
    if (login.result == LogInResult::TooMany)
        return NewAccountResult::TooMany;
    if (login.result != LogInResult::Fine)
        return NewAccountResult::Closed;
    return SetPassword(account, newPassword);
}

NewAccountResult Accounts::SetPassword(Id account, std::string_view typedPassword) {
    const std::string newPassword = exchange::AsSent(typedPassword);
    if (!IsPasswordFit(newPassword))
        return NewAccountResult::PasswordWeak;
    std::string hash;
    {
        const HashPlace place(*state_);
        if (!place)
            return NewAccountResult::Busy;
        hash = HashPassword(newPassword);
    }
    return state_->store.SetPasswordHash(account, hash) ? NewAccountResult::Fine
                                                        : NewAccountResult::Closed;
}

std::string Accounts::StartSession(Id account) {
    const std::string token = NewToken();
    state_->store.CreateSession(TokenHash(token),
                                {account, NewToken(), Now() + state_->bounds.sessionSeconds});
    return token;
}

std::optional<Session> Accounts::FindSession(std::string_view token) {
    if (token.empty())
        return std::nullopt;
    const auto session = state_->store.FindSession(TokenHash(token), Now());
    if (!session)
        return std::nullopt;
    const auto account = state_->store.FindAccount(session->account);
    return account && !account->isDisabled ? session : std::nullopt;
}

void Accounts::EndSession(std::string_view token) {
    state_->store.DeleteSession(TokenHash(token));
}

} // namespace pollarix::server
