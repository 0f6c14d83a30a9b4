#include "server/app/Serve.h"

#include <csignal>
#include <ctime>
#include <iostream>

#include <malloc.h>
#include <pthread.h>
#include <sys/resource.h>
#include <unistd.h>

#include "server/app/Commands.h"
#include "server/app/DataDirectory.h"
#include "server/app/Log.h"
#include "server/protocol/Exchange.h"
#include "server/web/Pages.h"

namespace pollarix::server {

namespace {

// Every connection is a descriptor.
void RaiseDescriptors() {
    rlimit files{};
    if (getrlimit(RLIMIT_NOFILE, &files) != 0)
        return;
    files.rlim_cur = files.rlim_max;
    setrlimit(RLIMIT_NOFILE, &files);
}

// A link makes an account: it is for the eyes of who sits before the screen, and not for a journal.
void TellOfFirstAccount(Accounts& accounts, const std::string& root) {
    std::cout << "There is no account yet. ";
    if (isatty(STDOUT_FILENO) == 1)
        std::cout << "Make one here: " << InvitationLink(root, accounts.Invite()) << '\n';
    else
        std::cout << "\"pollarix-server user invite\" gives a link to make one.\n";
}

// Until a signal that ends the server. All threads have it blocked, so that it comes here.
void WaitForTheEnd(const sigset_t& signals, const std::function<void()>& hourly) {
    for (;;) {
        const timespec hour{3600, 0};
        if (sigtimedwait(&signals, nullptr, &hour) > 0)
            return;
        hourly();
    }
}

} // namespace

void Serve(const Settings& settings) {
    // Threads would else have a heap each, and memory that one has freed helps no other.
    mallopt(M_ARENA_MAX, 2);
    RaiseDescriptors();
    // A client that has gone, or a file that can't grow, is a failed write and no end.
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);

    const std::string directory = MakeDataDirectory(settings.data);
    const DataLock lock(directory);
    Store store(directory);
    Accounts accounts(store, settings.accounts);
    Questionnaires questionnaires(store);
    Exchange exchange(store, accounts, questionnaires,
                      {settings.url, settings.surveysPerAccount, settings.publish}, Log);
    Router router;
    router.SetFailureStatus([](const std::exception& failure) {
        return dynamic_cast<const StoreFailure*>(&failure) ? 503 : 500;
    });
    exchange.AddRoutes(router);
    AddPages(router, {store, accounts, questionnaires, settings.url,
                      [] { return static_cast<Time>(std::time(nullptr)); }, settings.retention,
                      settings.submissionsPerMinute, settings.httpBounds.bodyBytes});

    FtpReceiver ftp(settings.ftpBounds,
                    {[&](std::int64_t user, std::int64_t survey, const std::string& address) {
                         return exchange.MayDocumentCome(user, survey, address);
                     },
                     [&](std::int64_t user, std::int64_t survey, const std::string& document,
                         const std::string& address) {
                         return exchange.TakeDocument(user, survey, document, address);
                     }},
                    Log);
    HttpServer http(router, settings.httpBounds, Log);
    const std::uint16_t ftpPort =
        settings.ftp.isOff ? 0 : ftp.Listen(settings.ftp.address, settings.ftp.port);
    const std::uint16_t httpPort = http.Listen(settings.http.address, settings.http.port);

    const std::string root = settings.url.empty()
                                 ? "http://" + Shown(settings.http.address, httpPort) + '/'
                                 : settings.url;
    lock.Tell(root);
    std::cout << "Survey server: " << root << '\n';
    if (!settings.ftp.isOff)
        std::cout << "FTP server for uploads: " << Shown(settings.ftp.address, ftpPort) << '\n';
    std::cout << "Data: " << directory << '\n';
    if (!settings.accounts.isOpen && store.ListAccounts().empty())
        TellOfFirstAccount(accounts, root);
    std::cout << "Ready." << std::endl;
    Log("the server has started");

    const auto purge = [&] {
        try {
            if (const std::int64_t gone = store.Purge(settings.retention, std::time(nullptr)))
                Log(std::to_string(gone) + " rows that were kept for long enough are gone");
        } catch (const StoreFailure& failure) {
            Log(std::string("what is old can't be deleted: ") + failure.what());
        }
    };
    purge();
    WaitForTheEnd(signals, purge);
    Log("the server is stopping");
    http.Stop();
    ftp.Stop();
}

} // namespace pollarix::server
