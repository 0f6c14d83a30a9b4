#include "shell/MainBas.h"

#include <QFileInfo>
#include <QLocale>

#include "document/ApplicationState.h"
#include "platform/Application.h"
#include "platform/Handlers.h"
#include "platform/QtDialogs.h"
#include "shell/frmMain.h"
#include "shell/frmTip.h"

namespace pollarix {

namespace {

// A run-time failure that nothing caught. What was stored is safe: it is in the file named.
void ReportFailure(ApplicationState& state, const Failure& failure) {
    QString text = failure.Description() + "\n\n" + "Error " + QString::number(failure.Number()) +
                   " (" + failure.Source() + ")";
    if (failure.Source() == "SQLite" && !state.CurrentFilename.isEmpty())
        text += "\n" + state.CurrentFilename;
    state.dialogs.MsgBox(text, MsgIcon::Critical);
}

void FirstRun(ApplicationState& state, HelpFile& help) {
    if (state.dialogs.MsgBox("We've noticed that this is the first time you have launched "
                             "Pollarix. You may find it useful to follow the getting started "
                             "tutorial. Would you like to view it now?",
                             MsgIcon::Question, MsgButtons::YesNoCancel) == MsgAnswer::Yes)
        help.ShowTopic(HelpFile::Tutorial);
}

} // namespace

void StartUp(ApplicationState& state, frmMain& window, const QString& commandLine) {
    window.Form_Load(commandLine);
    window.show();
    // A file named on the command line gains the blank question at its end as well.
    window.AddBlankOpenEndedQuestion();
    if (ShowTipsAtStartup(state))
        frmTip(state, &window).exec();
    const QString firstRun =
        state.settings.GetSetting(SettingsApplication, "Config", "FirstRun", "True");
    state.settings.SaveSetting(SettingsApplication, "Config", "FirstRun", "False");
    if (firstRun == "True")
        FirstRun(state, window.Help());
}

int Main(int& argc, char** argv) {
    Application application(argc, argv);
    QtDialogs dialogs;
    Settings settings(Settings::DefaultDirectory());
    ApplicationState state(Directories::OfThisProgram(), settings, dialogs);
    SetFailureReporter([&state](const Failure& failure) { ReportFailure(state, failure); });

    int code = 0;
    {
        frmMain window(state);
        RunHandler([&] { StartUp(state, window, Application::arguments().mid(1).join(' ')); });
        code = Application::exec();
    }
    SetFailureReporter({});
    return code;
}

} // namespace pollarix
