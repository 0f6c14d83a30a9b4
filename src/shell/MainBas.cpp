#include "shell/MainBas.h"

#include <QFileInfo>

#include "document/ApplicationState.h"
#include "platform/base/Handlers.h"
#include "platform/desktop/Application.h"
#include "platform/desktop/QtDialogs.h"
#include "shell/frmMain.h"
#include "shell/frmTip.h"

namespace pollarix {

namespace {

// SQLite's number for a file that may not be written; the higher bits tell more of why.
constexpr int ReadOnlyDatabase = 8;

// A full path, also of a file that was named from the directory one is in.
QString CommandLine() {
    const QString path = Application::arguments().mid(1).join(' ');
    return path.isEmpty() ? path : QFileInfo(path).absoluteFilePath();
}

void FirstRun(ApplicationState& state, HelpFile& help) {
    if (state.dialogs.MsgBox("We've noticed that this is the first time you have launched "
                             "Pollarix. You may find it useful to follow the getting started "
                             "tutorial. Would you like to view it now?",
                             MsgIcon::Question, MsgButtons::YesNoCancel) == MsgAnswer::Yes)
        help.ShowTopic(HelpFile::Tutorial);
}

int Run(QtDialogs& dialogs) {
    Settings settings(Settings::DefaultDirectory());
    ApplicationState state(Directories::OfThisProgram(), settings, dialogs);
    SetFailureReporter([&state](const Failure& failure) {
        state.dialogs.MsgBox(FailureText(failure, state.CurrentFilename()), MsgIcon::Critical);
    });

    int code = 0;
    {
        frmMain window(state);
        StartUp(state, window, CommandLine());
        code = Application::exec();
    }
    SetFailureReporter({});
    return code;
}

} // namespace

void StartUp(ApplicationState& state, frmMain& window, const QString& commandLine) {
    window.Form_Load(commandLine);
    window.show();
    RunHandler([&] {
        // A file named on the command line gains the blank question at its end as well.
        window.AddBlankOpenEndedQuestion();
        window.OfferRecovery();
        window.RemoveLeftSurveys();
        if (ShowTipsAtStartup(state))
            frmTip(state, &window).exec();
        const QString firstRun =
            state.settings.GetSetting(SettingsApplication, "Config", "FirstRun", "True");
        state.settings.SaveSetting(SettingsApplication, "Config", "FirstRun", "False");
        if (firstRun == "True")
            FirstRun(state, window.Help());
    });
}

QString FailureText(const Failure& failure, const QString& surveyFile) {
    QString text = failure.Description();
    if (failure.Source() == "SQLite" && !surveyFile.isEmpty()) {
        text += "\n" + surveyFile;
        if (!QFileInfo::exists(surveyFile))
            text += "\nThe file is no longer there. File, Save As... saves what is open here.";
        else if ((failure.Number() & 0xff) == ReadOnlyDatabase)
            text += "\nThis file can only be read. File, Save As... makes a copy to work on.";
    }
    return text +
           QString("\n\nError %1 (%2)\n\nThe program goes on with all that you have entered.")
               .arg(failure.Number())
               .arg(failure.Source());
}

int Main(int& argc, char** argv) {
    Application application(argc, argv);
    QtDialogs dialogs;
    try {
        return Run(dialogs);
    } catch (const Failure& failure) {
        // Neither the user's directory nor the settings' can be made: there is nowhere to work in.
        dialogs.MsgBox("Pollarix can't start. " + failure.Description(), MsgIcon::Critical);
        return 1;
    }
}

} // namespace pollarix
