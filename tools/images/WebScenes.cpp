// The pages of the two web wizards, walked through with a survey server on this machine.
#include "images/Scene.h"
#include "images/Studio.h"
#include "platform/controls/ListBox.h"
#include "support/FtpServer.h"
#include "support/SurveyServer.h"
#include "web/ServerList.h"

namespace pollarix::images {

namespace {

using test::ServerReply;

constexpr const char* SurveyAddress = "http://survey.kelvane.example/museum-visit";

// What a server answers to a login, a new survey and its results.
void Prepare(test::SurveyServer& server) {
    server.Answer("GetWebUserID", ServerReply::Success("12"));
    server.Answer("GetSurveyID", {.body = "Unknown survey"});
    server.Answer("CreateSurvey", ServerReply::Success("3"));
    server.Answer("MoveNewSurvey", ServerReply::Success(SurveyAddress));
    server.Answer("GetSurveyListForUser", ServerReply::Success("2,3"));
    server.Answer("GetSurveyName", ServerReply::Success("Opening hours"));
    server.Answer("GetSurveyName", ServerReply::Success("Museum visit"));
    server.Answer("GetSurveyResults", {.body = "Success<br><results>\r\n</results>\r\n"});
    server.Answer("DeleteSurveyResultsFile", ServerReply::Success("1"));
}

void AddMuseumServer(Studio& studio, const test::SurveyServer& server, const QString& ftp) {
    AddServer({"Museum", server.Url(), ftp, test::FtpServer::User(), test::FtpServer::Password()},
              studio.State().settings);
}

// Walks a wizard page by page with what a user enters, up to the page asked for.
QImage Page(Studio& studio, const QString& menu, std::vector<Step> pages, int page) {
    test::SurveyServer server;
    const test::FtpServer ftp;
    Prepare(server);
    AddMuseumServer(studio, server, ftp.Host());
    studio.StartWithSample(Small);
    // How many answers came, and whether they are to be deleted on the server.
    studio.Boxes().answers = {MsgAnswer::Ok, MsgAnswer::Yes};
    QImage picture;
    std::vector<Step> steps;
    for (int i = 1; i <= page; ++i) {
        const Step& step = pages[i - 1];
        steps.push_back({step.window, [&studio, &picture, step, last = i == page](QWidget& window) {
                             if (step.act)
                                 step.act(window);
                             if (last)
                                 picture = studio.PictureOf(window);
                             else
                                 studio.Click("cmdNext", &window);
                         }});
    }
    studio.Walk([&] { studio.Menu(menu); }, steps);
    return picture;
}

void Await(Studio& studio, const std::function<bool()>& done) {
    for (int i = 0; i < 500 && !done(); ++i)
        studio.Settle();
}

// Waits until the page's work is done.
void AwaitNext(Studio& studio, QWidget& page) {
    const auto& cmdNext = studio.Find<QWidget>("cmdNext", &page);
    Await(studio, [&] { return cmdNext.isEnabled(); });
}

std::vector<Step> PublishPages(Studio& studio) {
    return {
        {"frmWizWebPublish_Welcome", {}},
        {"frmWizWebPublish_ServerType",
         [&](QWidget& page) { studio.Choose("cboName", "Museum", &page); }},
        {"frmWizWebPublish_Login",
         [&](QWidget& page) {
             studio.Type("txtName", "museum", &page);
             studio.Type("txtPassword", "foghorn", &page);
         }},
        {"frmWizWebPublish_SurveyName",
         [&](QWidget& page) { studio.Type("txtName", "Museum visit", &page); }},
        {"frmWizWebPublish_Upload", [&](QWidget& page) { AwaitNext(studio, page); }},
        {"frmWizWebPublish_Complete", {}},
    };
}

std::vector<Step> CollectPages(Studio& studio) {
    return {
        {"frmWizWebCollect_Welcome", {}},
        {"frmWizWebCollect_ServerType",
         [&](QWidget& page) { studio.Choose("cboName", "Museum", &page); }},
        {"frmWizWebCollect_Login",
         [&](QWidget& page) {
             studio.Type("txtName", "museum", &page);
             studio.Type("txtPassword", "foghorn", &page);
         }},
        {"frmWizWebCollect_SelectSurvey",
         [&](QWidget& page) {
             auto& surveys = studio.Find<ListBox>("lstSurveys", &page);
             Await(studio, [&] { return surveys.ListCount() == 2; });
             studio.SelectEntry("lstSurveys", "Museum visit", &page);
         }},
        {"frmWizWebCollect_Download", [&](QWidget& page) { AwaitNext(studio, page); }},
        {"frmWizWebCollect_Complete", {}},
    };
}

QImage NewServer(Studio& studio) {
    studio.StartWithSample(Small);
    QImage picture;
    studio.Walk(
        [&] { studio.Menu("mnuDataPublishWeb"); },
        {{"frmWizWebPublish_Welcome", [&](QWidget& page) { studio.Click("cmdNext", &page); }},
         {"frmWizWebPublish_ServerType", [&](QWidget& page) { studio.Click("cmdAdd", &page); }},
         {"frmAddServer", [&](QWidget& form) {
              studio.Type("txtServerName", "Museum", &form);
              studio.Type("txtServerURL", "http://survey.museum.example/", &form);
              studio.Type("txtFTPServer", "ftp.museum.example", &form);
              studio.Type("txtFTPUsername", "survey", &form);
              studio.Type("txtFTPPassword", "foghorn", &form);
              picture = studio.PictureOf(form);
          }}});
    return picture;
}

} // namespace

std::vector<Scene> WebScenes() {
    const char* const publish[] = {"welcome", "server", "login", "name", "upload", "complete"};
    const char* const collect[] = {"welcome", "server", "login", "survey", "download", "complete"};
    std::vector<Scene> scenes;
    for (int page = 1; page <= 6; ++page) {
        scenes.push_back({QString("publish-") + publish[page - 1],
                          QString("Web publish wizard, page %1").arg(page), [page](Studio& studio) {
                              return Page(studio, "mnuDataPublishWeb", PublishPages(studio), page);
                          }});
        scenes.push_back({QString("collect-") + collect[page - 1],
                          QString("Web collection wizard, page %1").arg(page),
                          [page](Studio& studio) {
                              return Page(studio, "mnuDataCollectWeb", CollectPages(studio), page);
                          }});
    }
    scenes.push_back({"add-server", "Dialog that adds a survey server", NewServer});
    return scenes;
}

} // namespace pollarix::images
