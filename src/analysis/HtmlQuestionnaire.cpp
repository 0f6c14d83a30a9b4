#include "analysis/HtmlQuestionnaire.h"

#include <QCryptographicHash>

#include "analysis/BlankSurvey.h"
#include "platform/files/Files.h"
#include "tables/AnswerKeys.h"

#include <AssetTexts.h> // made by the build

namespace pollarix {

using statistics::SurveyQuestion;
using statistics::Variable;

namespace {

QByteArray Html(const QString& text) {
    return text.toHtmlEscaped().toUtf8();
}

// What the page's own rules let run: this style, this script, and nothing from anywhere.
QByteArray HashOf(const char* text) {
    return "'sha256-" + QCryptographicHash::hash(text, QCryptographicHash::Sha256).toBase64() + "'";
}

QByteArray Head(const QString& title) {
    return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src " +
           HashOf(QuestionnaireStyle) + "; script-src " + HashOf(QuestionnaireScript) +
           "; form-action 'none'; base-uri 'none'\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
           Html(title) + "</title>\n<style>" + QuestionnaireStyle +
           "</style>\n</head>\n<body>\n<main>\n<h1 dir=\"auto\">" + Html(title) +
           "</h1>\n<noscript><p>This page needs script to follow the survey and to save your "
           "answers. Without it, please print the page and answer on paper.</p></noscript>\n"
           "<p id=\"place\" role=\"status\" hidden></p>\n";
}

QByteArray Foot() {
    return QByteArray("<section id=\"end\" hidden>\n<h2 tabindex=\"-1\">Thank you.</h2>\n"
                      "<p>Your answers have not left this page yet. Save them as a file, and give "
                      "it to whoever gave you this page.</p>\n"
                      "<p id=\"told\" role=\"status\"></p>\n</section>\n"
                      "<nav id=\"turn\" aria-label=\"Pages\" hidden>\n"
                      "<button type=\"button\" id=\"previous\">Previous</button>\n"
                      "<button type=\"button\" id=\"next\">Next</button>\n"
                      "<button type=\"button\" id=\"save\" hidden>Save answers</button>\n"
                      "</nav>\n</main>\n<script>") +
           QuestionnaireScript + "</script>\n</body>\n</html>\n";
}

class Page {
  public:
    Page(WholeFile& file, const BlankSurvey& survey) : file_(file), survey_(survey) {}

    void WriteQuestion(std::size_t place) {
        const SurveyQuestion& question = survey_.variables.questions[place];
        const QByteArray id = "q" + QByteArray::number(place);
        const QByteArray heading = "<h2 tabindex=\"-1\" dir=\"auto\" id=\"" + id + "\">" +
                                   Html(survey_.NumberOf(place) + survey_.texts[place]) + "</h2>";
        QByteArray html = "<section class=\"page\">\n";
        if (question.qtype == kind::OpenEnded) {
            html += heading + "\n<textarea rows=\"5\" dir=\"auto\" aria-labelledby=\"" + id +
                    "\" data-key=\"" + tables::IdKey(question.id).toLatin1() + "\"></textarea>\n";
        } else if (question.variableCount == 0) {
            html += heading + '\n';
        } else {
            html += "<fieldset>\n<legend>" + heading + "</legend>\n<div>\n";
            const Variable& first = survey_.variables.variables[question.firstVariable];
            if (question.qtype == kind::Radio)
                html += Single(question, first, id);
            else
                for (std::size_t item = 0; item < question.variableCount; ++item)
                    html += question.qtype == kind::Check ? Tick(question, item)
                                                          : Row(question, item, id);
            html += "</div>\n</fieldset>\n";
        }
        file_.Write(html + "</section>\n");
    }

  private:
    static QByteArray Choice(const char* type, const QByteArray& attributes, const QString& name) {
        return QByteArray("<label class=\"choice\"><input type=\"") + type + "\" " + attributes +
               "><span dir=\"auto\">" + Html(name) + "</span></label>\n";
    }
    static QByteArray Attributes(const QString& key, const QString& value) {
        return "data-key=\"" + key.toLatin1() + "\" value=\"" + value.toLatin1() + '"';
    }

    static QByteArray Single(const SurveyQuestion& question, const Variable& variable,
                             const QByteArray& group) {
        const auto ids = tables::IdsOf(question.responses, variable.categories.size());
        QByteArray html;
        for (std::size_t code = 0; code < ids.size(); ++code) {
            QByteArray attributes =
                "name=\"" + group + "\" " +
                Attributes(tables::IdKey(question.id), tables::IdKey(ids[code]));
            if (question.jumps[code] != SurveyQuestion::NoJump)
                attributes += " data-jump=\"" + QByteArray::number(question.jumps[code]) + '"';
            html += Choice("radio", attributes, variable.categories[code]);
        }
        return html;
    }

    QByteArray Tick(const SurveyQuestion& question, std::size_t item) const {
        const auto ids = tables::IdsOf(question.responses, question.variableCount);
        return Choice("checkbox", Attributes(tables::IdKey(question.id, ids[item]), "1"),
                      ItemOf(question, item).item);
    }

    QByteArray Row(const SurveyQuestion& question, std::size_t item,
                   const QByteArray& group) const {
        const Variable& variable = ItemOf(question, item);
        const auto rows = tables::IdsOf(question.responses, question.variableCount);
        const auto points = tables::IdsOf(question.points[item], variable.categories.size());
        QByteArray html = "<fieldset>\n<legend dir=\"auto\">" + Html(variable.item) +
                          "</legend>\n<div class=\"points\">\n";
        for (std::size_t code = 0; code < points.size(); ++code)
            html += Choice(
                "radio",
                "name=\"" + group + '-' + QByteArray::number(item) + "\" " +
                    Attributes(tables::IdKey(question.id, rows[item]), tables::IdKey(points[code])),
                variable.categories[code]);
        return html + "</div>\n</fieldset>\n";
    }

    const Variable& ItemOf(const SurveyQuestion& question, std::size_t item) const {
        return survey_.variables.variables[question.firstVariable + item];
    }

    WholeFile& file_;
    const BlankSurvey& survey_;
};

} // namespace

void HtmlQuestionnaire::Write(Connection& survey, const QString& path, const ProgressStep& step) {
    WholeFile file(path);
    const BlankSurvey blank(survey);
    file.Write(Head(blank.title));
    Page page(file, blank);
    const auto count = static_cast<std::int64_t>(blank.texts.size());
    for (std::int64_t i = 0; i < count; ++i) {
        step(i + 1, count);
        page.WriteQuestion(static_cast<std::size_t>(i));
    }
    file.Write(Foot());
    file.Finish();
}

} // namespace pollarix
