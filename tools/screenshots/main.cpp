// Makes the pictures of the help and of the documents: runs the program's own windows without a
// screen, does in them what a user would, and saves what they look like.
//
//   pollarix_screenshots <directory for the help's pictures> <directory for the documents'>
#include <QAbstractButton>
#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <cstdio>

#include "document/ApplicationState.h"
#include "platform/Application.h"
#include "platform/Chart.h"
#include "platform/ComboBox.h"
#include "platform/Grid.h"
#include "platform/Handlers.h"
#include "platform/ListBox.h"
#include "platform/RichTextBox.h"
#include "platform/TreeView.h"
#include "shell/MainBas.h"
#include "shell/frmMain.h"
#include "shell/frmTip.h"
#include "web/frmAddServer.h"

using namespace pollarix;

namespace {

constexpr QSize HelpSize(1024, 740); // of the main window in the help's pictures
constexpr int Settle = 60;           // milliseconds until a window looks as it will stay

// Answers every box with yes, and whoever asks for a file with the one there is.
class ObligingDialogs : public Dialogs {
  public:
    QString file;

    MsgAnswer MsgBox(const QString&, MsgIcon, MsgButtons buttons) override {
        return buttons == MsgButtons::Ok ? MsgAnswer::Ok : MsgAnswer::Yes;
    }
    FileDialogResult ShowOpen(const FileDialogRequest&) override { return {file, 0}; }
    FileDialogResult ShowSave(const FileDialogRequest&) override { return {file, 0}; }
    void ShowPrinter(QPrinter&) override {}
    bool ShowPageSetup(QPrinter&) override { return false; }
    void OpenFile(const QString&) override {}
    void OpenUrl(const QString&) override {}
    void SetDefaultParent(QWidget*) override {}
};

[[noreturn]] void GiveUp(const QString& why) {
    std::fprintf(stderr, "pollarix_screenshots: %s\n", qPrintable(why));
    std::exit(1);
}

class Photographer {
  public:
    Photographer(ApplicationState& state, frmMain& window, QString help, QString documents)
        : state_(state), window_(window), help_(std::move(help)), documents_(std::move(documents)) {
    }

    void Tutorial();
    void Tour();

  private:
    template <typename Control> Control& Find(const char* name, QWidget* in = nullptr) {
        auto* const control = (in ? in : &window_)->findChild<Control*>(name);
        if (!control)
            GiveUp(QString("no %1 in %2").arg(name, (in ? in : &window_)->objectName()));
        return *control;
    }
    void Menu(const char* name) {
        Find<QAction>(name).trigger();
        QTest::qWait(Settle);
    }
    void Press(const char* name, QWidget* in = nullptr) {
        QTest::mouseClick(&Find<QAbstractButton>(name, in), Qt::LeftButton);
    }
    void TypeQuestion(const QString& text) {
        auto& txtQ = Find<RichTextBox>("txtQ");
        txtQ.setFocus();
        QTest::keyClicks(&txtQ, text);
    }
    void TypeResponses(const char* box, const QStringList& texts) {
        auto& line = Find<QLineEdit>(box);
        for (const QString& text : texts) {
            QTest::keyClicks(&line, text);
            QTest::keyClick(&line, Qt::Key_Return);
        }
    }
    void ClickQuestion(const QString& begin) {
        auto& tree = Find<TreeView>("tvTreeView");
        for (int i = 1; i <= tree.Count(); ++i) {
            if (tree.Item(i).Text().startsWith(begin)) {
                tree.scrollToItem(&tree.Item(i));
                QTest::mouseClick(tree.viewport(), Qt::LeftButton, {},
                                  tree.visualItemRect(&tree.Item(i)).center());
                return;
            }
        }
        GiveUp("no question " + begin);
    }
    static void ClickCell(Grid& grid, int row, int col) {
        const QModelIndex cell = grid.model()->index(row - 1, col);
        grid.scrollTo(cell);
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(cell).center());
    }
    // Runs `inside` in the dialog that `open` opens and waits for.
    void InDialog(const std::function<void()>& open, const std::function<void(QWidget&)>& inside) {
        QTimer::singleShot(Settle, &window_, [inside] {
            QWidget* const dialog = QApplication::activeModalWidget();
            if (!dialog)
                GiveUp("a dialog did not open");
            inside(*dialog);
            dialog->close();
        });
        open();
        QTest::qWait(Settle);
    }
    void Resize(QSize size) {
        window_.showNormal();
        window_.resize(size);
        QTest::qWait(Settle);
    }

    static void Write(const QPixmap& picture, const QString& path) {
        if (!picture.toImage().save(path, "PNG", 0))
            GiveUp("can't write " + path);
    }
    QPixmap Look(QWidget& widget, QRect part = {}) {
        ShowReadablePath();
        QTest::qWait(Settle);
        return part.isNull() ? widget.grab() : widget.grab(part);
    }
    void ForHelp(const char* name, QWidget& widget, QRect part = {}) {
        Write(Look(widget, part), QString("%1/%2.png").arg(help_, QLatin1String(name)));
    }
    void ForDocuments(const char* name, QSize size) {
        Resize(size);
        Write(Look(window_), QString("%1/%2.png").arg(documents_, QLatin1String(name)));
        Resize(HelpSize);
    }
    // A path that means something to a reader stands in the place of the temporary one.
    void ShowReadablePath() {
        auto& path = Find<QLabel>("StatusBar");
        if (!path.text().isEmpty())
            path.setText("/home/maria/surveys/" + QFileInfo(path.text()).fileName());
    }
    // As who wants to read the whole date drags the columns' edges.
    void WidenDates() {
        auto& list = Find<Grid>("gRespondents");
        const int more = 4900 - list.ColWidth(0);
        list.SetColWidth(0, list.ColWidth(0) + more);
        list.SetColWidth(1, list.ColWidth(1) - more);
    }
    // The part of the window where a panel is, with something around it.
    QRect Around(const char* panel) {
        QWidget& widget = Find<QWidget>(panel);
        return QRect(widget.mapTo(&window_, QPoint(0, 0)), widget.size())
            .adjusted(-8, 0, 8, 8)
            .intersected(window_.rect());
    }

    void AnswerPages(const std::vector<int>& answers, const char* words, bool photograph = false);

    ApplicationState& state_;
    frmMain& window_;
    QString help_;
    QString documents_;
};

// Goes through the pages of the tutorial's survey: the response of question 1, how often the person
// eats there; with 3, "Never", the jump leads to the last page.
void Photographer::AnswerPages(const std::vector<int>& answers, const char* words,
                               bool photograph) {
    InDialog([&] { Press("cmdCreateResponse"); },
             [&, answers](QWidget& entry) {
                 const auto next = [&] { Press("cmdDCAnswersNext", &entry); };
                 const auto choose = [&](int place, auto* kind) {
                     using Button = std::remove_pointer_t<decltype(kind)>;
                     int seen = 0;
                     for (Button* button : entry.findChildren<Button*>())
                         if (button->isVisible() && ++seen == place)
                             button->click();
                 };
                 choose(answers[0], static_cast<QRadioButton*>(nullptr));
                 next();
                 if (answers[0] != 3) {
                     choose(answers[1], static_cast<QAbstractButton*>(nullptr));
                     next();
                     auto& matrix = Find<Grid>("gMatrix", &entry);
                     ClickCell(matrix, 1, answers[2]);
                     ClickCell(matrix, 2, answers[3]);
                     if (photograph) {
                         entry.resize(780, 320);
                         ForHelp("tutorial-answers", entry);
                     }
                     next();
                 }
                 QTest::keyClicks(&Find<QWidget>("txtDCSimpleResponse", &entry), words);
                 next();
             });
}

void Photographer::Tutorial() {
    Resize(HelpSize);
    TypeQuestion("How often do you eat in our cafeteria?");
    ForHelp("tutorial-first-question", window_);

    Press("optQType(2)");
    TypeResponses("txtCheckResponse", {"Every day", "Once or twice a week", "Never"});
    ForHelp("tutorial-responses", window_, Around("picQProperties"));

    Menu("mnuDesignAddOpenEndedQuestion");
    TypeQuestion("What do you like about the cafeteria?");
    Press("optQType(1)");
    TypeResponses("txtCheckResponse", {"The food", "The prices", "The company"});
    ForHelp("responses", window_, Around("picCheck"));

    Menu("mnuDesignAddOpenEndedQuestion");
    TypeQuestion("How satisfied or dissatisfied are you with the following?");
    Press("optQType(4)");
    TypeResponses("txtMatrixResponse", {"The choice of dishes", "The opening hours"});
    auto& scales = Find<ComboBox>("cmbMatrixResponses");
    scales.SetListIndex(scales.findText("Very satisfied", Qt::MatchStartsWith));
    ForHelp("tutorial-matrix", window_, Around("picQProperties"));
    ForHelp("matrix", window_, Around("picMatrix"));
    InDialog([&] { Press("cmdMatrixDefine"); },
             [&](QWidget& scales) { ForHelp("scales", scales); });

    Menu("mnuDesignAddOpenEndedQuestion");
    TypeQuestion("What should we change?");

    ClickQuestion("1.");
    Find<ListBox>("lstCheckResponses").SetListIndex(2);
    InDialog([&] { Press("cmdRadioLogic"); },
             [&](QWidget& logic) {
                 Find<ComboBox>("cboList", &logic).SetListIndex(4);
                 ForHelp("tutorial-jump", logic);
                 ForHelp("jump", logic);
                 Press("cmdOK", &logic);
             });
    Menu("mnuFileSave");
    Menu("mnuViewDataCollection");
    AnswerPages({1, 1, 1, 2}, "More dishes without meat, please.", true);
    AnswerPages({3}, "Open in the evening.");
    AnswerPages({2, 1, 2, 2}, "The queue at noon is long.");
    AnswerPages({1, 3, 1, 4}, "Nothing. I like it as it is.");
    AnswerPages({2, 1, 2, 3}, "Fresh fruit every day.");
    // The same day at every run, so that pictures change only when the program does.
    state_.SurveyConnection.Run(
        "UPDATE respondent SET submitteddate = '2024-06-03 12:1' || id || ':40'");
    Menu("mnuViewDataCollection");
    WidenDates();
    ForHelp("tutorial-respondents", window_);
    Menu("mnuViewAnalyse");
    ClickCell(Find<Grid>("gSummaryReport"), 2, 1);
    ForHelp("tutorial-graph", window_);
}

// A look around in the sample survey.
void Photographer::Tour() {
    Resize(HelpSize);
    Menu("mnuFileOpen");
    ClickQuestion("4.");
    ForHelp("design", window_);
    ForDocuments("design-1024x768", {1024, 768});
    ForDocuments("design-1920x1080", {1920, 1080});

    auto& library = Find<TreeView>("tvTreeLibrary");
    library.Item(1).SetExpanded(true);
    for (int i = 2; i <= library.Count(); ++i) {
        if (library.Item(i).Text() == "Events") {
            library.Item(i).SetExpanded(true);
            library.scrollToItem(&library.Item(i), QAbstractItemView::PositionAtTop);
            library.Item(i + 3).SetSelected();
        }
    }
    ForHelp("library", window_, Around("picLibraryView"));

    Menu("mnuViewDataCollection");
    WidenDates();
    ForHelp("collection", window_);
    ForDocuments("data-collection", {1024, 768});
    InDialog([&] { Press("cmdEditResponse"); },
             [&](QWidget& entry) {
                 Press("cmdDCAnswersNext", &entry);
                 entry.resize(560, 320);
                 ForHelp("entering", entry);
             });

    for (const auto& [item, picture] : {std::pair("mnuDataPublishWeb", "publishing"),
                                        std::pair("mnuDataCollectWeb", "collecting")})
        InDialog([&] { Menu(item); }, [&](QWidget& page) { ForHelp(picture, page); });

    Menu("mnuViewAnalyse");
    auto& summary = Find<Grid>("gSummaryReport");
    for (int row = 1; row < summary.Rows(); ++row) {
        if (summary.TextMatrix(row, 1).contains("permanent collection")) {
            ClickCell(summary, row, 1);
            break;
        }
    }
    ForHelp("analysis", window_);
    ForDocuments("analyze", {1024, 768});
    Find<ComboBox>("cboGraphStyle").SetListIndex(1);
    auto& chart = Find<Chart>("c");
    ForHelp("graph", window_, QRect(chart.mapTo(&window_, QPoint(0, 0)), chart.size()));
}

void MakePictures(const QString& help, const QString& documents) {
    QTemporaryDir directory;
    ObligingDialogs dialogs;
    dialogs.file = directory.filePath("cafeteria.plxs");
    Settings settings(directory.filePath("settings"));
    ApplicationState state(Directories{Directories::OfThisProgram().program, directory.path()},
                           settings, dialogs);
    settings.SaveSetting(TipsApplication(), "Options", "Show Tips at Startup", "0");
    SetFailureReporter([](const Failure& failure) { GiveUp(failure.Description()); });

    const auto withWindow = [&](const std::function<void(Photographer&)>& work) {
        QTimer::singleShot(0, [] {
            if (QWidget* const splash = QApplication::activeModalWidget())
                splash->close();
        });
        frmMain window(state);
        StartUp(state, window, {});
        Photographer photographer(state, window, help, documents);
        work(photographer);
    };
    withWindow([](Photographer& photographer) { photographer.Tutorial(); });
    state.SurveyConnection.Close();
    state.LibraryConnection.Close();

    dialogs.file = directory.filePath("museum-visit.plxs");
    if (!QFile::copy(state.directories.InProgram("samples/museum-visit.plxs"), dialogs.file))
        GiveUp("the sample survey is missing");
    withWindow([](Photographer& photographer) { photographer.Tour(); });

    frmTip tip(state, nullptr);
    tip.show();
    QTest::qWait(Settle);
    tip.grab().save(help + "/tip.png");
    frmAddServer server(settings, dialogs, nullptr);
    server.show();
    QTest::qWait(Settle);
    server.grab().save(help + "/add-server.png");
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    Application application(argc, argv);
    if (argc != 3)
        GiveUp("wants two directories");
    // The same look on whatever desktop it is run.
    QApplication::setStyle(QStyleFactory::create("Fusion"));
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication::setFont(QFont("DejaVu Sans", 10));
    QDir().mkpath(argv[1]);
    QDir().mkpath(argv[2]);
    MakePictures(argv[1], argv[2]);
}
