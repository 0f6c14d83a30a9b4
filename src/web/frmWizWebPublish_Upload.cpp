#include "web/frmWizWebPublish_Upload.h"

#include <exception>

#include "platform/desktop/HourGlass.h"
#include "web/ServerList.h"
#include "web/SurveyXmlWriter.h"

namespace pollarix {

frmWizWebPublish_Upload::frmWizWebPublish_Upload(WizardRun& run, WebServices services,
                                                 PublishState& publish, QWidget* parent)
    : WizardProgressPage(run, "frmWizWebPublish_Upload", "Uploading Survey",
                         "Please wait while your survey is uploaded.", "Upload Progress:", parent),
      services_(services), publish_(publish) {}

void frmWizWebPublish_Upload::Timer1_Timer() {
    bool done = false;
    try {
        const HourGlass hourGlass;
        BeginProgress(9);
        done = Publish();
    } catch (const std::exception&) {
        // Any failure ends the run with its closing word alone.
    }
    // The handles of an upload that failed stay open until a later run or the program's end.
    if (!done)
        UP("Failed.");
}

bool frmWizWebPublish_Upload::Publish() {
    Dialogs& dialogs = services_.state.dialogs;
    modWebServer& server = services_.server;
    const auto found = GetServerEntry(publish_.PublishServerIndex, services_.state.settings);
    if (!found) {
        UP(NoServerEntry);
        MsgBox(dialogs, NoServerEntry, MsgIcon::Critical);
        return false;
    }
    const ServerEntry& entry = *found;
    UP("Creating local survey.");
    DoSaveXML(services_.state, services_.views);
    UP("Created local survey.");

    UP("Logging " + publish_.PublishUsername + " into " + entry.name + ".");
    const std::int16_t user =
        server.GetWebUserID(publish_.PublishUsername, publish_.PublishPassword, entry.url);
    if (user == -1) {
        const QString text = "Unable to login. Error " + server.LastServerError;
        MsgBox(dialogs, text, MsgIcon::Critical);
        UP(text);
        return false;
    }
    UP(publish_.PublishUsername + " logged into " + entry.name + ".");

    const std::optional<std::int16_t> survey = SurveyOnServer(user, entry.url);
    if (!survey)
        return false;
    const QString remoteName = QString("%1-%2.xml").arg(user).arg(*survey);
    if (!Upload(remoteName, entry))
        return false;

    UP(QString("Asking server to accept new ") + (publish_.PublishIsPublic ? "public" : "private") +
       " survey.");
    const QString url =
        server.MoveNewSurvey(remoteName, *survey, publish_.PublishIsPublic, user, entry.url);
    if (!url.isEmpty()) {
        UP("Server has published new survey at " + url + ".");
        UP("Success.");
        OfferNext();
    } else {
        UP("Error - server did not accept new survey. " + server.LastServerError);
    }
    publish_.PublishedURL = url;
    return true; // a refused survey ends here as well, with no closing word
}

std::optional<std::int16_t> frmWizWebPublish_Upload::SurveyOnServer(std::int16_t user,
                                                                    const QString& url) {
    Dialogs& dialogs = services_.state.dialogs;
    modWebServer& server = services_.server;
    const QString& name = publish_.PublishSurveyName;
    UP("Checking for status of " + name + ".");
    const std::int16_t known = server.GetSurveyID(name, user, url);
    if (known != -1) {
        const MsgAnswer answer =
            MsgBox(dialogs, "This survey already exists. Do you want to update it?",
                   MsgIcon::Question, MsgButtons::YesNo);
        if (answer != MsgAnswer::Yes) {
            UP("Cancelled survey update.");
            return std::nullopt;
        }
        UP("Updating existing survey " + name + ".");
        return known;
    }
    UP("Creating new survey " + name + ".");
    const std::int16_t created = server.CreateSurvey(user, name, url);
    if (created == -1) {
        MsgBox(dialogs, "Unable to create survey. Error " + server.LastServerError,
               MsgIcon::Critical);
        return std::nullopt;
    }
    return created;
}

bool frmWizWebPublish_Upload::Upload(const QString& remoteName, const ServerEntry& entry) {
    wininet& transfer = services_.transfer;
    // Without a session there is no upload and no word of it; the server is asked all the same.
    if (!transfer.Open()) {
        transfer.Close();
        return true;
    }
    if (!transfer.Connect(entry.ftpServer, entry.ftpUser, entry.ftpPassword)) {
        const QString text = "FTP Connection error " + transfer.FtpErrorText(transfer.LastError());
        MsgBox(services_.state.dialogs, text, MsgIcon::Critical);
        UP(text);
        return false;
    }
    if (!transfer.SetCurrentDirectory("incoming")) {
        UP("Error (FtpSetCurrentDirectory) " + QString::number(transfer.LastError()));
        return false;
    }
    if (!transfer.PutFile(SurveyXmlPath(services_.state), remoteName)) {
        UP("Error (FtpPutFile) " + QString::number(transfer.LastError()));
        return false;
    }
    UP("Survey successfully transfered.");
    transfer.Close();
    return true;
}

} // namespace pollarix
