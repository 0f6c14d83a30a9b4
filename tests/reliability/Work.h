// Work on surveys through the program's own classes, each piece of it one action that the file must
// hold whole or not at all, and what the files hold afterwards. The same actions in the same order
// always make the same files, but for the dates of the respondents.
#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <random>
#include <vector>

#include "document/SurveyDocument.h"
#include "support/FakeViews.h"
#include "support/QueuedDialogs.h"

namespace pollarix::test {

enum class Action {
    Save, // after questions were added, changed, moved and deleted
    SaveAs,
    Import,
    ImportMany,
    AddRespondent,
    TurnPage,
    DeleteRespondent,
    AddScale,
    WriteForm
};

struct Step {
    Action action;
    unsigned seed;
};

// What lies in the directory: digests of the two surveys and of the written form, "" for none.
struct Files {
    QByteArray first, second, form;
    bool operator==(const Files&) const = default;
};

class Work {
  public:
    static constexpr const char* First = "first.plxs";
    static constexpr const char* Second = "second.plxs";
    static constexpr const char* Form = "form.rtf";

    // A survey with a question of every kind and three respondents, and the files for imports.
    static void Prepare(const QString& directory);
    // What the files hold, read by opening them as the program does. A message, a file that the
    // database finds damaged, and a journal that stays behind fail the test.
    static Files Look(const QString& directory);

    // Opens the named survey of the directory, as one would after starting the program.
    Work(QString directory, const QString& name);
    ~Work();
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    void Do(const Step& step);
    // The survey's name, which Save As changes.
    QString Name() const;

  private:
    QString Path(const QString& name) const { return directory_ + '/' + name; }
    std::uint32_t Below(std::uint32_t limit) { return random_() % limit; }
    void Design();
    void AddQuestion(std::int32_t kind);
    void TurnPage();
    void InList(const char* button, int row);

    QString directory_;
    Settings settings_{directory_ + "/settings"};
    QueuedDialogs dialogs_;
    ApplicationState state_;
    FakeViews views_;
    SurveyDocument document_{state_, views_};
    std::mt19937 random_;
};

} // namespace pollarix::test
