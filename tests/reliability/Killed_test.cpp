// The program is killed in the middle of its work, at random moments and before each change that it
// makes to a file. Afterwards every action is there whole or not at all, and none that was finished
// is lost.
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <iostream>
#include <thread>
#include <utility>

#include "reliability/SystemCalls.h"
#include "reliability/Work.h"

using namespace pollarix;
using namespace pollarix::test;

namespace pollarix::test {

std::ostream& operator<<(std::ostream& out, const Files& files) {
    return out << "first " << files.first.constData() << ", second " << files.second.constData()
               << ", form " << files.form.constData();
}

} // namespace pollarix::test

namespace {

using std::chrono::milliseconds;

// Memory that outlives a killed child: how many steps it has finished.
class SharedCount {
  public:
    SharedCount()
        : count_(static_cast<volatile int*>(mmap(nullptr, sizeof(int), PROT_READ | PROT_WRITE,
                                                 MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    ~SharedCount() { munmap(const_cast<int*>(count_), sizeof(int)); }
    SharedCount(const SharedCount&) = delete;
    SharedCount& operator=(const SharedCount&) = delete;
    int Value() const { return *count_; }
    void Set(int value) { *count_ = value; }

  private:
    volatile int* count_;
};

// Runs the work in a process of its own, a copy of this one.
pid_t Begin(const std::function<void()>& work) {
    const pid_t child = fork();
    if (child != 0)
        return child;
    work();
    std::cout.flush();
    _exit(testing::Test::HasFailure() ? 1 : 0);
}

// True if the process was killed; one that came to its end must have found nothing wrong.
bool WasKilled(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
        return true;
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    return false;
}

void CopyFiles(const QString& from, const QString& to) {
    QDir(to).removeRecursively();
    QDir().mkpath(to);
    for (const QString& name : QDir(from).entryList(QDir::Files))
        ASSERT_TRUE(QFile::copy(from + '/' + name, to + '/' + name));
}

std::string NameOf(Action action) {
    constexpr const char* names[] = {"Save",          "SaveAs",   "Import",           "ImportMany",
                                     "AddRespondent", "TurnPage", "DeleteRespondent", "AddScale",
                                     "WriteForm"};
    return names[static_cast<int>(action)];
}

int NumberFrom(const char* variable, int otherwise) {
    const char* text = std::getenv(variable);
    return text ? std::atoi(text) : otherwise;
}

class KilledAtAnyMoment : public testing::Test {
  protected:
    // In memory, where there is such a disk: nothing is lost from it by a kill, and no time by
    // flushing.
    QTemporaryDir temporary{
        (QFileInfo("/dev/shm").isWritable() ? QString("/dev/shm") : QDir::tempPath()) +
        "/pollarix-XXXXXX"};
    const QString start = temporary.filePath("start");
    const QString directory = temporary.filePath("killed");

    void SetUp() override {
        QDir().mkpath(start);
        Work::Prepare(start);
    }

    // The steps done without a kill: what the files hold before the first and after each, and the
    // survey that is open then.
    struct Expected {
        std::vector<Files> files;
        std::vector<QString> open;
    };
    Expected Run(const std::vector<Step>& steps) const {
        const QString undisturbed = temporary.filePath("undisturbed");
        CopyFiles(start, undisturbed);
        Expected expected{{Work::Look(undisturbed)}, {Work::First}};
        for (const Step& step : steps) {
            {
                Work work(undisturbed, expected.open.back());
                work.Do(step);
                expected.open.push_back(work.Name());
            }
            expected.files.push_back(Work::Look(undisturbed));
        }
        return expected;
    }
};

class BeforeEachChange : public KilledAtAnyMoment, public testing::WithParamInterface<Action> {};

} // namespace

TEST_P(BeforeEachChange, TheActionIsThereWholeOrNotAtAll) {
    const Step step{GetParam(), 7};
    const Expected expected = Run({step});
    ASSERT_FALSE(expected.files[0] == expected.files[1]);
    bool killed = true;
    int changes = 0;
    while (killed && !HasFailure()) {
        CopyFiles(start, directory);
        ++changes;
        killed = WasKilled(Begin([&] {
            Work work(directory, Work::First);
            SystemCalls::killAt = changes;
            work.Do(step);
            SystemCalls::killAt = 0;
        }));
        const Files found = Work::Look(directory);
        EXPECT_TRUE(found == expected.files[1] || (killed && found == expected.files[0]))
            << "killed before change " << changes << "\nfound  " << found << "\nbefore "
            << expected.files[0] << "\nafter  " << expected.files[1];
    }
    EXPECT_GT(changes, 5);
    std::cout << changes - 1 << " kills" << std::endl;
}

INSTANTIATE_TEST_SUITE_P(, BeforeEachChange,
                         testing::Values(Action::Save, Action::SaveAs, Action::Import,
                                         Action::AddRespondent, Action::TurnPage,
                                         Action::DeleteRespondent, Action::AddScale,
                                         Action::WriteForm),
                         [](const auto& info) { return NameOf(info.param); });

// What the killed program left beside a survey is not taken for a part of the one that replaces it.
TEST_F(KilledAtAnyMoment, ASurveyThatWasCutOffIsReplacedBySaveAs) {
    const std::vector<Step> steps = {{Action::SaveAs, 1}, {Action::SaveAs, 2}};
    const Expected expected = Run(steps);
    const QString halfway = temporary.filePath("halfway");
    CopyFiles(start, halfway);
    { Work(halfway, Work::First).Do(steps[0]); }
    bool killed = true;
    int kills = 0;
    for (int changes = 1; killed && !HasFailure(); ++changes) {
        CopyFiles(halfway, directory);
        killed = WasKilled(Begin([&] {
            Work work(directory, Work::First);
            SystemCalls::killAt = changes;
            work.Do({Action::Save, 3});
            SystemCalls::killAt = 0;
        }));
        { Work(directory, Work::Second).Do(steps[1]); }
        EXPECT_EQ(Work::Look(directory), expected.files[2]) << "killed before change " << changes;
        kills += killed ? 1 : 0;
    }
    std::cout << kills << " kills" << std::endl;
}

TEST_F(KilledAtAnyMoment, EveryActionOfALoopIsThereWholeOrNotAtAll) {
    const int wanted = NumberFrom("POLLARIX_KILLS", 40);
    const auto seed = static_cast<unsigned>(
        NumberFrom("POLLARIX_SEED", static_cast<int>(std::random_device()() >> 1)));
    std::cout << "POLLARIX_SEED=" << seed << std::endl;
    std::mt19937 random(seed);
    SharedCount finished;
    int kills = 0;
    int insideAnAction = 0;
    int kept = 0;
    qsizetype copies = 0;
    for (int round = 0; kills < wanted && !HasFailure(); ++round) {
        std::vector<Step> steps;
        for (int i = 0; i < 40; ++i)
            steps.push_back({static_cast<Action>(random() % 9), static_cast<unsigned>(random())});
        // One large import a round, for the sake of time.
        bool large = false;
        std::erase_if(steps, [&](const Step& step) {
            return step.action == Action::ImportMany && std::exchange(large, true);
        });
        const Expected expected = Run(steps);
        CopyFiles(start, directory);
        std::size_t done = 0;
        unsigned longest = 60;
        while (done < steps.size() && kills < wanted && !HasFailure()) {
            finished.Set(static_cast<int>(done));
            const pid_t child = Begin([&] {
                Work work(directory, expected.open[done]);
                for (std::size_t i = done; i < steps.size(); ++i) {
                    work.Do(steps[i]);
                    finished.Set(static_cast<int>(i) + 1);
                }
            });
            std::this_thread::sleep_for(std::chrono::microseconds(random() % (longest * 1000)));
            kill(child, SIGKILL);
            kills += WasKilled(child) ? 1 : 0;
            const auto counted = static_cast<std::size_t>(finished.Value());
            const Files found = Work::Look(directory);
            // The one under way may have been written to its end without having been counted.
            const bool whole = counted < steps.size() && found == expected.files[counted + 1] &&
                               !(found == expected.files[counted]);
            EXPECT_TRUE(whole || found == expected.files[counted])
                << "round " << round << ", step " << counted << ", action "
                << NameOf(steps[std::min(counted, steps.size() - 1)].action) << "\nfound  " << found
                << "\nbefore " << expected.files[counted];
            longest = counted == done ? longest * 2 : 60; // a long action must end at last
            insideAnAction += counted < steps.size() ? 1 : 0;
            kept += whole ? 1 : 0;
            done = counted + (whole ? 1 : 0);
        }
        // Of Save As, and of the form.
        copies += QDir(directory).entryList({"*-*.tmp", "form.rtf.*"}, QDir::Files).size();
    }
    std::cout << kills << " kills, " << insideAnAction << " before the last action had ended, "
              << kept << " of these actions found whole; " << copies
              << " unfinished copies left behind\n";
    EXPECT_EQ(kills, wanted);
}
