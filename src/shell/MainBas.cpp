#include "shell/MainBas.h"

#include <QFileInfo>
#include <QLocale>

#include "document/ApplicationState.h"
#include "platform/Application.h"
#include "platform/Handlers.h"
#include "platform/QtDialogs.h"
#include "shell/frmMain.h"

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

} // namespace

int Main(int& argc, char** argv) {
    Application application(argc, argv);
    QtDialogs dialogs;
    Settings settings(Settings::DefaultDirectory());
    ApplicationState state(Directories::OfThisProgram(), settings, dialogs);
    SetFailureReporter([&state](const Failure& failure) { ReportFailure(state, failure); });

    int code = 0;
    {
        frmMain window(state);
        RunHandler([&] {
            window.Form_Load(Application::arguments().mid(1).join(' '));
            window.show();
            // A file named on the command line gains the blank question at its end as well.
            window.AddBlankOpenEndedQuestion();
        });
        code = Application::exec();
    }
    SetFailureReporter({});
    return code;
}

} // namespace pollarix
