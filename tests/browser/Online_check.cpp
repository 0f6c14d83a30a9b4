// The whole way: ./serve.sh starts the server, the program's wizards publish the sample survey, it
// is answered in Chromium at three widths with and without script, and the wizards collect what was
// answered into the survey, where it has to be what was clicked and typed.
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

#include "support/Loopback.h"
#include "web/WebCollectWizard.h"
#include "web/WebPublishWizard.h"
#include "web/WebWizard.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

// ./serve.sh on a directory of its own: on the addresses of the program's built-in server, or on
// others where somebody else has these.
class Served {
  public:
    Served() {
        isBuiltIn = ConnectToLoopback(8421) < 0 && ConnectToLoopback(8422) < 0;
        QFile settings(directory_.filePath("settings"));
        EXPECT_TRUE(settings.open(QIODevice::WriteOnly));
        if (!isBuiltIn)
            settings.write("http = 127.0.0.1:0\nftp = 127.0.0.1:0\n");
        settings.close();
        QProcess adding;
        adding.start(SourceFile("serve.sh"), With({"user", "add", "anna"}));
        adding.write("Sesame-93\n");
        adding.closeWriteChannel();
        EXPECT_TRUE(adding.waitForFinished(600000) && adding.exitCode() == 0)
            << adding.readAll().toStdString() << adding.readAllStandardError().toStdString();
        process_.setStandardErrorFile(directory_.filePath("log"));
        process_.start(SourceFile("serve.sh"), With({}));
        QString line;
        while (line != "Ready." && (process_.canReadLine() || process_.waitForReadyRead(60000))) {
            line = QString::fromUtf8(process_.readLine()).trimmed();
            if (line.startsWith("Survey server: "))
                url = line.section(' ', 2);
            if (line.startsWith("FTP server"))
                ftp = line.section(' ', -1);
        }
        EXPECT_EQ(line, "Ready.");
    }
    ~Served() {
        process_.terminate();
        EXPECT_TRUE(process_.waitForFinished());
    }
    Served(const Served&) = delete;
    Served& operator=(const Served&) = delete;

    bool isBuiltIn = false;
    QString url;
    QString ftp;

  private:
    QStringList With(const QStringList& command) const {
        return QStringList{"--data", directory_.filePath("data"), "--config",
                           directory_.filePath("settings")} +
               command;
    }

    QTemporaryDir directory_;
    QProcess process_;
};

class Online : public WebWizard {
  protected:
    Online() {
        if (!served.isBuiltIn)
            AddServer({"Here", served.url, served.ftp, "", ""}, program.settings);
        path = program.Path("museum.plxs");
        EXPECT_TRUE(QFile::copy(DataFile("samples/museum-visit.plxs"), path));
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
        SurveyDocument document(program.state, views);
        document.DoClose();
        document.DoOpen(path, true, 1);
    }

    QString Publish() {
        QString url;
        Press("frmWizWebPublish_Welcome");
        Press("frmWizWebPublish_ServerType");
        On("frmWizWebPublish_Login", LogIn);
        On("frmWizWebPublish_SurveyName", [](QDialog& page) {
            Type(page, "txtName", "Museum visit");
            Click(page, "cmdNext");
        });
        On("frmWizWebPublish_Upload", [&](QDialog& page) {
            const QStringList messages = Messages(page);
            EXPECT_EQ(messages.last(), "Success.") << messages.join('/').toStdString();
            url = messages[messages.size() - 2].section(' ', -1).chopped(1);
            Click(page, "cmdCancel");
        });
        WebPublishWizard wizard(services);
        Run([&] { wizard.mnuDataPublishWeb_Click(nullptr); });
        return url;
    }

    void Collect() {
        Press("frmWizWebCollect_Welcome");
        Press("frmWizWebCollect_ServerType");
        On("frmWizWebCollect_Login", LogIn);
        Press("frmWizWebCollect_SelectSurvey");
        On("frmWizWebCollect_Download", [](QDialog& page) {
            EXPECT_TRUE(Messages(page).contains("Deleted old results file on server."))
                << Messages(page).join('/').toStdString();
            Click(page, "cmdCancel");
        });
        dialogs.answers = {MsgAnswer::Yes};
        WebCollectWizard wizard(services);
        Run([&] { wizard.mnuDataCollectWeb_Click(nullptr); });
    }

    // What the browser gave as answers, a list for each respondent: the question's id, the words of
    // the response, what was typed, the words of the scale's point.
    static QList<QStringList> AnsweredInBrowser(const QString& form) {
        QProcess node;
        node.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        node.start("node", {SourceFile("tests/browser/answer.mjs"), form});
        EXPECT_TRUE(node.waitForFinished(300000) && node.exitCode() == 0);
        QList<QStringList> all;
        for (const QJsonValue& respondent :
             QJsonDocument::fromJson(node.readAllStandardOutput()).array()) {
            QStringList answers;
            for (const QJsonValue& answer : respondent.toArray())
                answers << answer.toString();
            answers.sort();
            all << answers;
        }
        return all;
    }

    // The same out of the survey's file, behind that respondent.
    QList<QStringList> Collected(int after) const {
        QList<QStringList> all;
        int last = after;
        for (const QString& row :
             SqlRows(path,
                     "SELECT a.RespondentID, a.QuestionID, coalesce(r.name, ''), "
                     "coalesce(a.SimpleResponse, ''), coalesce(m.name, '') "
                     "FROM respondent_responses a JOIN question q ON q.id = a.QuestionID "
                     "LEFT JOIN response r ON r.id = a.ResponseID AND q.qtype <> 0 "
                     "LEFT JOIN responsematrix m ON m.id = a.ResponseMatrixID "
                     "ORDER BY a.RespondentID, a.id",
                     5)) {
            const int respondent = row.section('|', 0, 0).toInt();
            if (respondent <= after)
                continue;
            if (respondent != last)
                all << QStringList();
            last = respondent;
            all.last() << row.section('|', 1);
        }
        for (QStringList& answers : all)
            answers.sort();
        return all;
    }

    Served served;

  private:
    static void LogIn(QDialog& page) {
        Type(page, "txtName", "anna");
        Type(page, "txtPassword", "Sesame-93");
        Click(page, "cmdNext");
    }
};

} // namespace

TEST_F(Online, TheSampleSurveyIsPublishedAnsweredInTheBrowserAndCollected) {
    const int before = SqlRows(path, "SELECT max(id) FROM respondent", 1).value(0).toInt();
    ASSERT_GT(before, 0);
    const QString form = Publish();
    ASSERT_TRUE(form.startsWith(served.url + "s/")) << form.toStdString();
    const QList<QStringList> answered = AnsweredInBrowser(form);
    ASSERT_EQ(answered.size(), 6); // three widths, with and without script
    Collect();
    const QList<QStringList> collected = Collected(before);
    ASSERT_EQ(collected.size(), answered.size());
    for (int i = 0; i < answered.size(); ++i) {
        EXPECT_GT(answered[i].size(), 10);
        EXPECT_EQ(collected[i], answered[i])
            << answered[i].join('\n').toStdString() << "\nand not\n"
            << collected[i].join('\n').toStdString();
    }
}
