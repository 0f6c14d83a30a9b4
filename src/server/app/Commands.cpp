#include "server/app/Commands.h"

#include <array>
#include <charconv>
#include <ctime>
#include <filesystem>
#include <iostream>

#include <termios.h>
#include <unistd.h>

#include "server/app/DataDirectory.h"
#include "server/store/Database.h"

namespace pollarix::server {

const char* const Usage =
    "pollarix-server [--data DIRECTORY] [--config FILE] COMMAND\n"
    "  serve                           run the server; this is also done without a command\n"
    "  user add NAME                   make an account; the password is asked for, or read from\n"
    "                                  the input\n"
    "  user list                       all accounts\n"
    "  user password NAME              give an account another password\n"
    "  user disable|enable NAME        shut an account out, or let it in again\n"
    "  user invite                     a link with which somebody can make an account\n"
    "  results list                    the surveys with their results\n"
    "  results restore SURVEY [DAYS]   let results that were fetched and deleted (in the last "
    "DAYS\n"
    "                                  days) wait to be fetched again\n"
    "  backup FILE                     copy the database, also while the server runs\n"
    "  restore FILE                    put a copy in its place, while no server runs\n"
    "  check                           look whether the database is whole\n";

namespace {

using Words = std::span<const std::string>;

// From a terminal without showing it, else the first line of the input.
std::string ReadPassword() {
    const bool isTerminal = isatty(STDIN_FILENO) == 1;
    termios shown{};
    if (isTerminal) {
        std::cout << "Password: " << std::flush;
        tcgetattr(STDIN_FILENO, &shown);
        termios hidden = shown;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
    }
    std::string password;
    std::getline(std::cin, password);
    if (isTerminal) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown);
        std::cout << '\n';
    }
    return password;
}

int Tell(NewAccountResult result) {
    switch (result) {
    case NewAccountResult::Fine:
        return 0;
    case NewAccountResult::NameUnfit:
        std::cerr << "This can't be a name: up to 64 bytes, none of & < > % # + \" among them.\n";
        return 1;
    case NewAccountResult::PasswordWeak:
        std::cerr << "A password has at least 8 characters and at most 128 bytes.\n";
        return 1;
    case NewAccountResult::NameTaken:
        std::cerr << "There is an account of that name.\n";
        return 1;
    default:
        std::cerr << "That did not work.\n";
        return 1;
    }
}

Account Find(Store& store, const std::string& name) {
    const auto account = store.FindAccount(name);
    if (!account)
        throw StoreFailure("There is no account of that name: " + name);
    return *account;
}

std::string Date(Time when) {
    std::tm parts{};
    gmtime_r(&when, &parts);
    char text[32] = {};
    std::strftime(text, sizeof text, "%Y-%m-%d", &parts);
    return text;
}

// With its closing "/", or "/" alone when only a server that runs could tell.
std::string RootOf(const Settings& settings, const std::string& directory) {
    if (!settings.url.empty())
        return settings.url;
    if (std::string running = RunningServer(directory); !running.empty())
        return running;
    return settings.http.port == 0
               ? "/"
               : "http://" + Shown(settings.http.address, settings.http.port) + '/';
}

int UserCommand(Store& store, const Settings& settings, const std::string& directory, Words words) {
    AccountBounds bounds = settings.accounts;
    const std::string& what = words[1];
    if (what == "list" && words.size() == 2) {
        for (const Account& account : store.ListAccounts())
            std::cout << account.name << "\t" << Date(account.created)
                      << (account.isDisabled ? "\tdisabled" : "") << '\n';
        return 0;
    }
    if (what == "invite" && words.size() == 2) {
        const std::string link =
            InvitationLink(RootOf(settings, directory), Accounts(store, bounds).Invite());
        if (link.front() == '/')
            std::cerr << "The server's address isn't known, since it isn't running. Put it before "
                         "this:\n";
        std::cout << link << '\n';
        return 0;
    }
    if (words.size() != 3)
        throw BadUsage("What about users?");
    if (what == "add") {
        bounds.isOpen = true; // to who runs this
        return Tell(Accounts(store, bounds).CreateAccount(words[2], ReadPassword(), "", "").result);
    }
    if (what == "password")
        return Tell(Accounts(store, bounds).SetPassword(Find(store, words[2]).id, ReadPassword()));
    if (what == "disable" || what == "enable") {
        store.SetDisabled(Find(store, words[2]).id, what == "disable");
        return 0;
    }
    throw BadUsage("What about users?");
}

std::int64_t Number(const std::string& text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number < 1 || number > 100000)
        throw BadUsage("This is no number: " + text);
    return number;
}

int ResultsCommand(Store& store, Words words) {
    if (words[1] == "list" && words.size() == 2) {
        for (const Account& account : store.ListAccounts())
            for (const Survey& survey : store.ListSurveys(account.id)) {
                const SurveyCounts counts = store.CountResults(survey.id);
                std::cout << survey.id << '\t' << account.name << '\t' << survey.name << '\t'
                          << counts.waiting << " waiting\t" << counts.dropped << " deleted"
                          << (survey.deleted ? "\tsurvey deleted" : "") << '\n';
            }
        return 0;
    }
    if (words[1] != "restore" || words.size() < 3 || words.size() > 4)
        throw BadUsage("What about results?");
    const Id survey = Number(words[2]);
    if (!store.FindSurvey(survey))
        throw StoreFailure("There is no survey " + words[2]);
    const Time since = words.size() == 4 ? std::time(nullptr) - Number(words[3]) * 86400 : 0;
    std::cout << store.RestoreResults(survey, since) << " results wait to be fetched again.\n";
    return 0;
}

int Check(const std::string& directory) {
    const std::vector<std::string> faults = CheckDatabase(directory);
    for (const std::string& fault : faults)
        std::cout << fault << '\n';
    if (faults.empty())
        std::cout << "The database is whole.\n";
    return faults.empty() ? 0 : 1;
}

} // namespace

std::string Shown(const std::string& address, std::uint16_t port) {
    std::string shown = address.find(':') == std::string::npos ? address : '[' + address + ']';
    std::array<char, 256> name{};
    if ((address == "0.0.0.0" || address == "::") && gethostname(name.data(), name.size() - 1) == 0)
        shown = name.data();
    return shown + ':' + std::to_string(port);
}

std::string InvitationLink(const std::string& root, const std::string& token) {
    return root + "CreateAccount.php?invitation=" + token;
}

int RunCommand(const Settings& settings, Words words) {
    const std::string& command = words[0];
    const std::size_t count = words.size();
    const std::string directory = MakeDataDirectory(settings.data);
    if (command == "restore" && count == 2) {
        const DataLock lock(directory);
        const std::string kept = RestoreDatabase(directory, words[1]);
        std::cout << "The copy is in place.\n";
        if (!kept.empty())
            std::cout << "What was there is kept: " << kept << '\n';
        return 0;
    }
    if ((command == "user" || command == "results") && count >= 2) {
        // A new directory is a beginning, of accounts alone.
        if (command == "results" && !std::filesystem::exists(DatabasePath(directory)))
            throw StoreFailure("There is no database in " + directory);
        Store store(directory, Opening::Use);
        return command == "user" ? UserCommand(store, settings, directory, words)
                                 : ResultsCommand(store, words);
    }
    if (command == "backup" && count == 2) {
        BackupDatabase(directory, words[1]);
        return 0;
    }
    if (command == "check" && count == 1)
        return Check(directory);
    throw BadUsage("There is no such command.");
}

} // namespace pollarix::server
