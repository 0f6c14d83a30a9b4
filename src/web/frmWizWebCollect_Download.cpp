#include "web/frmWizWebCollect_Download.h"

#include <QElapsedTimer>
#include <QLocale>

#include <exception>

#include "platform/base/Handlers.h"
#include "platform/desktop/HourGlass.h"
#include "web/ResultsReader.h"
#include "web/ServerList.h"

namespace pollarix {

namespace {

// How often the import shows how far it is, and lets the window live.
constexpr qint64 ShowEveryMs = 50;

} // namespace

frmWizWebCollect_Download::frmWizWebCollect_Download(WizardRun& run, WebServices services,
                                                     CollectState& collect, QWidget* parent)
    : WizardProgressPage(run, "frmWizWebCollect_Download", "Downloading Results",
                         "Please wait while your survey results are downloaded.",
                         "Download Progress:", parent),
      services_(services), collect_(collect) {}

void frmWizWebCollect_Download::Timer1_Timer() {
    QString description;
    bool finished = false;
    try {
        finished = Collect();
    } catch (const std::exception&) {
        description = CaughtFailure().Description();
    }
    // After a failure that has been told there is none to describe: the word stands behind a blank.
    if (!finished)
        UP(description + " - Failed.");
}

bool frmWizWebCollect_Download::Collect() {
    Dialogs& dialogs = services_.state.dialogs;
    modWebServer& server = services_.server;
    const auto entry = GetServerEntry(collect_.CollectServerIndex, services_.state.settings);
    if (!entry) {
        UP(NoServerEntry);
        MsgBox(dialogs, NoServerEntry, MsgIcon::Critical);
        return false;
    }
    const HourGlass hourGlass;
    BeginProgress(4);
    const QString fileName =
        QString("%1-%2.txt").arg(collect_.CollectUserID).arg(collect_.CollectSurveyID);
    UP("Downloading survey results " + fileName + ".");
    // For the messages only; nothing fetches it.
    const QString address = entry->url + fileName;
    const QString localPath = services_.state.directories.InUser(fileName);
    if (!Fetch(fileName, entry->url, localPath)) {
        MsgBox(dialogs, "Unable to download results file." + address, MsgIcon::Critical);
        UP("Unable to download results file. Error " + address);
        return false;
    }
    UP("Downloaded results file.");

    UP("Importing results file " + fileName + ".");
    if (!Import(localPath))
        return false;
    UP("Imported results file.");

    const MsgAnswer answer =
        MsgBox(dialogs,
               "Survey results file has been imported. Do you want to delete the old copy "
               "so it is not imported again?",
               MsgIcon::Question, MsgButtons::YesNo);
    if (answer == MsgAnswer::Yes) {
        if (server.DeleteSurveyResultsFile(collect_.CollectUserID, collect_.CollectSurveyID,
                                           entry->url))
            UP("Deleted old results file on server.");
        else
            UP("Unable to delete old results file on server.");
    }
    UP("Finished.");
    OfferNext();
    return true;
}

bool frmWizWebCollect_Download::Import(const QString& localPath) {
    QElapsedTimer sinceShown;
    sinceShown.start();
    const bool imported = DoLoadXML(
        services_.state, localPath, [&](int respondents, std::int64_t bytes, std::int64_t size) {
            if (bytes == size || sinceShown.elapsed() >= ShowEveryMs) {
                const QLocale locale;
                ShowDetail(QString("%1 respondents, %2 % of the file. Cancel takes them back.")
                               .arg(locale.toString(respondents))
                               .arg(size > 0 ? bytes * 100 / size : 100));
                DoEvents();
                sinceShown.restart();
            }
            return !HasLeft();
        });
    ShowDetail({});
    return imported;
}

bool frmWizWebCollect_Download::Fetch(const QString& fileName, const QString& base,
                                      const QString& localPath) {
    return services_.server.GetSurveyResults(fileName, base, localPath);
}

} // namespace pollarix
