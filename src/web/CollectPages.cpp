#include "web/CollectPages.h"

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "platform/Failure.h"
#include "platform/Files.h"
#include "platform/HourGlass.h"
#include "platform/ListBox.h"
#include "platform/Windows1252.h"
#include "web/ResultsReader.h"
#include "web/ServerList.h"

namespace pollarix {

namespace {

constexpr const char* NoServer = "Error - unable to retrieve server information.";

} // namespace

frmWizWebCollect_Login::frmWizWebCollect_Login(WizardRun& run, WebServices services,
                                               CollectState& collect, QWidget* parent)
    : WizardPage(run, "frmWizWebCollect_Login", "Enter your login details",
                 "Enter your Username and Password to log into the server. ", 3, parent),
      services_(services), collect_(collect) {
    txtName_ = new QLineEdit(collect.CollectUsername, this);
    txtName_->setObjectName("txtName");
    txtPassword_ = new QLineEdit(collect.CollectPassword, this);
    txtPassword_->setObjectName("txtPassword");
    txtPassword_->setEchoMode(QLineEdit::Password);
    Body().addSpacing(12);
    AddLabelled("Label3", "Username:", txtName_);
    AddLabelled("Label1", "Password:", txtPassword_);
    Body().addStretch();
    txtName_->setFocus();
}

void frmWizWebCollect_Login::cmdNext_Click() {
    Dialogs& dialogs = services_.state.dialogs;
    if (txtName_->text().isEmpty() || txtPassword_->text().isEmpty()) {
        // The words speak of a button that this page does not have, and stay so.
        Refuse(dialogs,
               "No username/password has been entered. Please enter your username and password, or "
               "press Create New Account to continue.",
               txtName_);
        return;
    }
    std::int16_t user = -1;
    {
        const HourGlass hourGlass;
        collect_.CollectUsername = txtName_->text();
        collect_.CollectPassword = txtPassword_->text();
        const auto entry = GetServerEntry(collect_.CollectServerIndex, services_.state.settings);
        if (!entry) {
            Refuse(dialogs, NoServer, nullptr);
            return;
        }
        user = services_.server.GetWebUserID(collect_.CollectUsername, collect_.CollectPassword,
                                             entry->url);
        collect_.CollectUserID = QString::number(user);
    }
    if (user != -1)
        StepOn();
    else
        Refuse(dialogs, "Unable to login. Error " + services_.server.LastServerError, nullptr);
}

frmWizWebCollect_SelectSurvey::frmWizWebCollect_SelectSurvey(WizardRun& run, WebServices services,
                                                             CollectState& collect, QWidget* parent)
    : WizardTimerPage(run, "frmWizWebCollect_SelectSurvey", "Select the Survey",
                      "Select the survey you would like to retrieve data for. ", 4, parent),
      services_(services), collect_(collect) {
    lstSurveys_ = new ListBox(this);
    lstSurveys_->setObjectName("lstSurveys");
    Body().addSpacing(8);
    AddLabelled("Label3", "Available Surveys:", lstSurveys_);
    cmdNext_->setEnabled(false); // until a survey is listed
}

void frmWizWebCollect_SelectSurvey::Timer1_Timer() {
    Timer1_->stop();
    cmdNext_->setEnabled(false);
    const HourGlass hourGlass;
    const auto entry = GetServerEntry(collect_.CollectServerIndex, services_.state.settings);
    if (!entry) {
        services_.state.dialogs.MsgBox(NoServer, MsgIcon::Critical);
        return;
    }
    const QString ids = services_.server.GetSurveyListForUser(collect_.CollectUserID, entry->url);
    if (!ids.isEmpty()) {
        for (const QString& id : ids.split(',')) {
            const QString name = services_.server.GetSurveyName(id, entry->url);
            if (name.isEmpty())
                continue;
            lstSurveys_->AddItem(name);
            lstSurveys_->SetItemData(lstSurveys_->NewIndex(), ToNumber32(id));
        }
    }
    if (lstSurveys_->ListCount() > 0) {
        lstSurveys_->SetListIndex(0);
        cmdNext_->setEnabled(true);
        cmdNext_->setFocus();
    }
}

void frmWizWebCollect_SelectSurvey::cmdNext_Click() {
    const int selected = lstSurveys_->ListIndex();
    if (selected == -1) {
        Refuse(services_.state.dialogs,
               "No Survey has been selected. Please select a survey to continue.", nullptr);
        return;
    }
    collect_.CollectSurveyID = Narrow16(lstSurveys_->ItemData(selected));
    StepOn();
}

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
    } catch (const Failure& failure) {
        description = failure.Description();
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
        UP(NoServer);
        dialogs.MsgBox(NoServer, MsgIcon::Critical);
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
    const QString results = server.GetSurveyResults(fileName, entry->url);
    if (results.isEmpty()) {
        dialogs.MsgBox("Unable to download results file." + address, MsgIcon::Critical);
        UP("Unable to download results file. Error " + address);
        return false;
    }
    WriteWholeFile(localPath, ToWindows1252(results));
    UP("Downloaded results file.");

    UP("Importing results file " + fileName + ".");
    DoLoadXML(services_.state, localPath);
    UP("Imported results file.");

    const MsgAnswer answer =
        dialogs.MsgBox("Survey results file has been imported. Do you want to delete the old copy "
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

} // namespace pollarix
