// The server's database as its promises are: what was acknowledged is there, once, whatever
// happened in between.
#include "server/store/Store.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <thread>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "server/store/Database.h"

using namespace pollarix::server;

namespace {

constexpr Time Now = 1'800'000'000;

class Stored : public testing::Test {
  protected:
    std::string Directory() const { return directory.path().toStdString(); }
    // A survey that takes answers.
    static Id LiveSurvey(Store& store, const std::string& name = "Lunch") {
        const auto known = store.FindAccount("anna");
        const Id account = known ? known->id : store.CreateAccount("anna", "hash", Now);
        const Id survey = store.CreateSurvey(account, name, "address of " + name, Now);
        EXPECT_EQ(store.Publish(survey, "first", true, Now), 1);
        return survey;
    }
    static std::vector<Submission> All(std::unique_ptr<Submissions> rows) {
        std::vector<Submission> all;
        while (auto row = rows->Next())
            all.push_back(*row);
        return all;
    }
    static std::vector<std::string> Answers(std::unique_ptr<Submissions> rows) {
        std::vector<std::string> answers;
        for (const Submission& row : All(std::move(rows)))
            answers.push_back(row.answers);
        return answers;
    }

    // Runs the work in a process of its own, which tells by a byte for each what it has
    // acknowledged; kills it after so many, if it hasn't ended by then. Gives how many there were.
    static int InAnotherProcess(const std::function<void(int told)>& work, int killAfter) {
        int ends[2];
        EXPECT_EQ(pipe(ends), 0);
        const pid_t child = fork();
        if (child == 0) {
            work(ends[1]);
            _exit(0);
        }
        close(ends[1]);
        int told = 0;
        char byte = 0;
        while (read(ends[0], &byte, 1) == 1)
            if (++told == killAfter)
                kill(child, SIGKILL);
        close(ends[0]);
        waitpid(child, nullptr, 0);
        return told;
    }

    QTemporaryDir directory;
    Id survey = None;
};

using Words = std::vector<std::string>;

} // namespace

TEST_F(Stored, WhatWasAcknowledgedIsThereOnceAfterAKill) {
    {
        Store store(Directory());
        survey = LiveSurvey(store);
    }
    const char* wanted = std::getenv("POLLARIX_KILL_ROUNDS");
    const int rounds = wanted ? std::atoi(wanted) : 10;
    std::size_t acknowledged = 0;
    for (int round = 0; round < rounds; ++round) {
        acknowledged += static_cast<std::size_t>(InAnotherProcess(
            [&](int told) {
                Store store(Directory());
                std::vector<std::thread> senders;
                for (int sender = 0; sender < 8; ++sender)
                    senders.emplace_back([&, sender] {
                        for (int i = 0;; ++i) {
                            const std::string token = std::to_string(round) + '/' +
                                                      std::to_string(sender) + '/' +
                                                      std::to_string(i);
                            // Each is sent twice, as by a browser that wasn't sure.
                            store.Submit(survey, 1, token, "a", Now);
                            EXPECT_EQ(store.Submit(survey, 1, token, "a", Now),
                                      Submitted::AlreadyStored);
                            if (write(told, "x", 1) != 1)
                                return;
                        }
                    });
                for (std::thread& sender : senders)
                    sender.join();
            },
            50 + round * 7));
        Store store(Directory());
        EXPECT_TRUE(CheckDatabase(Directory()).empty());
        const auto stored = static_cast<std::size_t>(store.CountResults(survey).waiting);
        // One that was stored but not yet acknowledged may be there for each sender and round.
        EXPECT_GE(stored, acknowledged);
        EXPECT_LE(stored, acknowledged + static_cast<std::size_t>(8 * (round + 1)));
    }
}

TEST_F(Stored, ADiskThatIsFullLosesNothingAndGoesOnWhenThereIsRoom) {
    {
        Store store(Directory());
        survey = LiveSurvey(store);
    }
    const std::string answers(20000, 'a');
    const int acknowledged = InAnotherProcess(
        [&](int told) {
            signal(SIGXFSZ, SIG_IGN);
            Store store(Directory());
            rlimit room{3'000'000, RLIM_INFINITY};
            setrlimit(RLIMIT_FSIZE, &room);
            int sent = 0;
            const auto send = [&] {
                store.Submit(survey, 1, std::to_string(sent), answers, Now);
                ++sent;
                return write(told, "x", 1) == 1;
            };
            try {
                while (sent < 1000)
                    send();
            } catch (const StoreFailure&) {
                room.rlim_cur = RLIM_INFINITY;
                setrlimit(RLIMIT_FSIZE, &room);
                for (int i = 0; i < 5; ++i)
                    send();
            }
        },
        -1);
    Store store(Directory());
    EXPECT_GT(acknowledged, 10);
    EXPECT_LT(acknowledged, 1000);
    EXPECT_EQ(store.CountResults(survey).waiting, acknowledged);
    EXPECT_TRUE(CheckDatabase(Directory()).empty());
}

TEST_F(Stored, ManyAtOnceAreOneRowForEachForm) {
    Store store(Directory());
    survey = LiveSurvey(store);
    store.KeepDraft("0", {survey, 1, "half", Now});
    std::map<Submitted, std::atomic<int>> results;
    for (const Submitted result : {Submitted::Stored, Submitted::AlreadyStored,
                                   Submitted::StoredAsConflict, Submitted::Closed})
        results[result] = 0;
    std::vector<std::thread> senders;
    for (int sender = 0; sender < 20; ++sender)
        senders.emplace_back([&] {
            for (int form = 0; form < 50; ++form)
                ++results.at(store.Submit(survey, 1, std::to_string(form), "a", Now));
        });
    for (std::thread& sender : senders)
        sender.join();
    EXPECT_EQ(results[Submitted::Stored], 50);
    EXPECT_EQ(results[Submitted::AlreadyStored], 950);
    EXPECT_FALSE(store.FindDraft("0")); // sent, so there is nothing to go on with

    EXPECT_EQ(store.Submit(survey, 1, "7", "b", Now), Submitted::StoredAsConflict);
    EXPECT_EQ(store.Submit(survey, 1, "7", "b", Now), Submitted::AlreadyStored);
    const SurveyCounts counts = store.CountResults(survey);
    EXPECT_EQ(counts.waiting, 51);
    EXPECT_EQ(counts.conflicts, 1);
}

TEST_F(Stored, OneThatFailsTakesNobodyDownWithIt) {
    Store store(Directory());
    survey = LiveSurvey(store);
    std::atomic<int> refused = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 16; ++i)
        threads.emplace_back([&, i] {
            if (i % 2 == 0) {
                store.Submit(survey, 1, std::to_string(i), "a", Now);
                return;
            }
            try { // no such account
                store.CreateSession(std::to_string(i), {999, "secret", Now + 60});
            } catch (const StoreFailure&) {
                ++refused;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(refused, 8);
    EXPECT_EQ(store.CountResults(survey).waiting, 8);
}

TEST_F(Stored, DroppingTakesOnlyWhatWasHandedOutAndCanBeUndone) {
    Store store(Directory());
    survey = LiveSurvey(store);
    for (int i = 0; i < 450; ++i) // more than a page
        store.Submit(survey, 1, std::to_string(i), std::to_string(i), Now);
    auto fetch = store.WaitingResults(survey);
    ASSERT_EQ(fetch->Next()->answers, "0");
    store.Submit(survey, 1, "late", "late", Now); // while the fetch goes on
    int handedOut = 1;
    while (const auto row = fetch->Next())
        EXPECT_EQ(row->answers, std::to_string(handedOut++));
    EXPECT_EQ(handedOut, 450);
    const HandedOut all = fetch->All();
    EXPECT_EQ(store.DropResults(survey, all, Now + 5), 450);
    EXPECT_EQ(Answers(store.WaitingResults(survey)), Words{"late"});
    EXPECT_EQ(store.RestoreResults(survey, Now + 6), 0);
    EXPECT_EQ(store.RestoreResults(survey, Now + 5), 450);
    EXPECT_EQ(store.CountResults(survey).waiting, 451);

    // What came back since was not handed out by that fetch, nor by one that is under way.
    EXPECT_EQ(store.DropResults(survey, all, Now + 6), 0);
    fetch = store.WaitingResults(survey);
    fetch->Next();
    store.DropResults(survey, fetch->All(), Now + 7);
    EXPECT_EQ(store.RestoreResults(survey, 0), 451);
    while (fetch->Next()) {
    }
    EXPECT_EQ(store.DropResults(survey, fetch->All(), Now + 8), 0);

    HandedOut first = store.WaitingResults(survey)->All();
    first.last -= 1; // "late" stays
    store.DropResults(survey, first, Now + 10);
    const Retention retention;
    EXPECT_EQ(store.Purge(retention, Now + 9 + retention.droppedResults), 0);
    EXPECT_EQ(store.Purge(retention, Now + 10 + retention.droppedResults), 450);
    EXPECT_EQ(Answers(store.AllResults(survey)), Words{"late"});
}

TEST_F(Stored, AnUpdateKeepsEarlierVersionsAndAClosedSurveyTakesNothing) {
    Store store(Directory());
    survey = LiveSurvey(store);
    store.KeepUpload(survey, "half done", Now);
    store.KeepUpload(survey, "second", Now);
    EXPECT_EQ(*store.FindUpload(survey), "second");
    EXPECT_EQ(store.Publish(survey, "second", false, Now), 2);
    EXPECT_FALSE(store.FindUpload(survey));
    EXPECT_EQ(store.Publish(survey, "second", true, Now), 2); // nothing new
    EXPECT_EQ(*store.FindVersion(survey, 1), "first");
    EXPECT_EQ(store.Submit(survey, 1, "begun before", "a", Now), Submitted::Stored);
    EXPECT_EQ(store.ListPublicSurveys(Now).size(), 1u);

    Survey changed = *store.FindSurvey(survey);
    const auto submit = [&](const char* token) { return store.Submit(survey, 2, token, "a", Now); };
    changed.closes = Now;
    EXPECT_TRUE(store.ChangeSurvey(changed));
    EXPECT_EQ(submit("1"), Submitted::Closed);
    EXPECT_EQ(submit("begun before"), Submitted::AlreadyStored);
    changed.closes = 0;
    changed.opens = Now + 1;
    EXPECT_TRUE(store.ChangeSurvey(changed));
    EXPECT_EQ(submit("1"), Submitted::Closed);
    changed.opens = Now;
    EXPECT_TRUE(store.ChangeSurvey(changed));
    EXPECT_EQ(submit("1"), Submitted::Stored);

    // Its name is free for another one as long as it is deleted.
    EXPECT_EQ(store.CreateSurvey(changed.account, "Lunch", "x", Now), None);
    EXPECT_TRUE(store.DeleteSurvey(survey, Now));
    EXPECT_EQ(submit("2"), Submitted::Closed);
    EXPECT_FALSE(store.FindSurveyByAddress("address of Lunch"));
    const Id next = store.CreateSurvey(changed.account, "Lunch", "y", Now);
    SQLite::Database(DatabasePath(Directory()), SQLite::OPEN_READWRITE)
        .exec("UPDATE sqlite_sequence SET seq = 32767 WHERE name = 'survey'");
    EXPECT_THROW(store.CreateSurvey(changed.account, "One too many", "z", Now), Bounded);
    EXPECT_FALSE(store.UndeleteSurvey(survey));
    EXPECT_TRUE(store.DeleteSurvey(next, Now));
    EXPECT_TRUE(store.UndeleteSurvey(survey));
    EXPECT_EQ(store.CountResults(survey).waiting, 2);
}

TEST_F(Stored, VersionsDraftsAndDocumentsAreBoundedAndAnsweredVersionsStay) {
    Store store(Directory());
    survey = LiveSurvey(store);
    PublishBounds bounds;
    bounds.versions = 4;
    const auto publish = [&](const std::string& document, Time now) {
        return store.Publish(survey, document, true, now, bounds);
    };
    store.Submit(survey, 1, "1", "a", Now);
    publish("2", Now);
    store.KeepDraft("draft", {survey, 2, "half", Now});
    publish("3", Now);
    publish("4", Now);
    // All are young, and forms of theirs may be open.
    EXPECT_THROW(publish("5", Now + 86400), Bounded);
    EXPECT_EQ(store.FindSurvey(survey)->version, 4);
    EXPECT_EQ(publish("5", Now + 3 * 86400), 5);
    EXPECT_TRUE(store.FindVersion(survey, 1) && store.FindVersion(survey, 2) &&
                store.FindVersion(survey, 4));
    EXPECT_FALSE(store.FindVersion(survey, 3)); // the one that nobody needs
    store.Submit(survey, 4, "2", "a", Now);
    store.Submit(survey, 5, "3", "a", Now);
    EXPECT_THROW(publish("6", Now + 9 * 86400), Bounded);

    bounds.documentBytes = 20;
    store.KeepUpload(survey, std::string(12, 'x'), Now, bounds); // beside "first", "2", "4", "5"
    EXPECT_THROW(store.KeepUpload(survey, std::string(13, 'x'), Now, bounds), Bounded);
    EXPECT_EQ(store.FindUpload(survey)->size(), 12u);

    EXPECT_TRUE(store.KeepDraft("other", {survey, 5, "half", Now}, 2));
    EXPECT_FALSE(store.KeepDraft("one too many", {survey, 5, "half", Now}, 2));
    EXPECT_TRUE(store.KeepDraft("draft", {survey, 2, "more", Now}, 2));
    EXPECT_FALSE(store.FindDraft("one too many"));
}

// As the first delivered server has left it.
void MakeOfFirstSchema(const std::string& directory) {
    SQLite::Database old(DatabasePath(directory), SQLite::OPEN_READWRITE);
    old.exec("DROP INDEX submission_lost; ALTER TABLE submission DROP COLUMN lost;"
             "ALTER TABLE submission DROP COLUMN lost_letters;"
             "ALTER TABLE submission DROP COLUMN restored; ALTER TABLE survey DROP COLUMN restores;"
             "ALTER TABLE account DROP COLUMN stamp; PRAGMA user_version = 1");
}

TEST_F(Stored, OnlyTheServerBringsAnOlderDatabaseUpToDate) {
    {
        Store store(Directory());
        survey = LiveSurvey(store);
        store.Submit(survey, 1, "1", "a", Now);
    }
    MakeOfFirstSchema(Directory());
    EXPECT_THROW(Store(Directory(), Opening::Use), StoreFailure);
    EXPECT_TRUE(CheckDatabase(Directory()).empty());
    BackupDatabase(Directory(), directory.filePath("copy").toStdString());
    {
        Store store(Directory(), Opening::Serve);
        EXPECT_EQ(Answers(store.WaitingResults(survey)), Words{"a"});
        EXPECT_EQ(store.DropResults(survey, store.WaitingResults(survey)->All(), Now), 1);
        EXPECT_EQ(store.RestoreResults(survey, 0), 1);
    }
    EXPECT_NO_THROW(Store(Directory(), Opening::Use));
    EXPECT_EQ(directory.isValid() ? QDir(directory.path()).entryList({"*.schema-1-*"}).size() : 0,
              1);
    EXPECT_THROW(CheckDatabase(Directory() + "/elsewhere"), StoreFailure);
}

TEST_F(Stored, ABackupIsWholeWhileAnswersComeInAndCanBeRestored) {
    const std::string file = directory.filePath("copy").toStdString();
    const std::string left = directory.filePath("left").toStdString();
    std::int64_t sent = 0;
    {
        Store store(Directory());
        survey = LiveSurvey(store);
        std::atomic<bool> isEnough = false;
        std::thread sender([&] {
            for (int i = 0; !isEnough; ++i)
                store.Submit(survey, 1, std::to_string(i), "a", Now);
        });
        while (store.CountResults(survey).waiting < 20)
            std::this_thread::yield();
        BackupDatabase(Directory(), file);
        EXPECT_THROW(BackupDatabase(Directory(), file), StoreFailure); // never over another one
        isEnough = true;
        sender.join();
        EXPECT_THROW(store.Submit(survey, 99, "of no version", "a", Now), StoreFailure);
        sent = store.CountResults(survey).waiting;
        for (const char* part : {"", "-wal"}) // as a crash leaves them
            std::filesystem::copy_file(DatabasePath(Directory()) + part, left + part);
    }
    EXPECT_NE(RestoreDatabase(Directory(), left), "");
    EXPECT_EQ(Store(Directory()).CountResults(survey).waiting, sent);
    EXPECT_NE(RestoreDatabase(Directory(), file), "");
    Store store(Directory());
    EXPECT_TRUE(CheckDatabase(Directory()).empty());
    EXPECT_GE(store.CountResults(survey).waiting, 20);

    std::ofstream(file) << std::string(5000, 'x');
    EXPECT_THROW(RestoreDatabase(Directory(), file), StoreFailure);
    SQLite::Database later(directory.filePath("later").toStdString(),
                           SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    later.exec("CREATE TABLE x (a); PRAGMA application_id = 1347180627; PRAGMA user_version = 99");
    EXPECT_THROW(RestoreDatabase(Directory(), later.getFilename()), StoreFailure);
    EXPECT_GE(store.CountResults(survey).waiting, 20);
}
