#include <QFileInfo>

#include "labelled/Codebook.h"
#include "labelled/LabelledFile.h"
#include "platform/base/Failure.h"
#include "platform/files/Files.h"

namespace pollarix::labelled {

namespace {

constexpr qsizetype BlockSize = 1 << 16;

QByteArray Number(double value) {
    return QByteArray::number(value, 'g', 15);
}

// A string of R in plain ASCII, so that the script reads the same wherever it runs.
QByteArray Quoted(const QString& text) {
    QByteArray quoted = "\"";
    for (const char32_t letter : text.toUcs4()) {
        if (letter == '\\' || letter == '"')
            (quoted += '\\') += static_cast<char>(letter);
        else if (letter >= 0x20 && letter < 0x7F)
            quoted += static_cast<char>(letter);
        else
            quoted += "\\U" + QByteArray::number(letter, 16).rightJustified(8, '0');
    }
    return quoted + '"';
}

QByteArray CsvText(const QString& text) {
    QByteArray utf8 = text.toUtf8();
    return '"' + utf8.replace("\"", "\"\"") + '"';
}

// Numbers as they are, texts always in quotes, so that one that reads "NA" is no missing value. The
// two kinds of missing values are told apart by the numbers that the codebook gives them.
QByteArray CsvCell(const Column& column, const Cell& cell) {
    switch (cell.kind) {
    case Cell::Kind::Text:
        return CsvText(cell.text);
    case Cell::Kind::Number:
        return Number(cell.number);
    default:
        if (!column.HasMissing())
            return column.IsNumeric() ? "" : "\"\"";
        return QByteArray::number(cell.kind == Cell::Kind::NotAsked ? column.notAsked
                                                                    : column.leftEmpty);
    }
}

// What the script does with one column, once `answers` was read. Labels are set as attributes in
// the way that haven and labelled do, so no package is needed to run it.
QByteArray ScriptOf(const Column& column) {
    const QByteArray name = "answers$" + column.name.toLatin1();
    QByteArray script;
    if (column.kind == Column::Kind::Date)
        script += name + " <- as.POSIXct(" + name + ", origin = \"1970-01-01\", tz = \"UTC\")\n";
    if (column.HasMissing()) {
        const QByteArray empty = QByteArray::number(column.leftEmpty);
        const QByteArray notAsked = QByteArray::number(column.notAsked);
        // Tests of what is missing and why work before and after this line.
        script += "missing$" + column.name.toLatin1() + " <- ifelse(" + name + " == " + notAsked +
                  ", " + Quoted(NotAskedLabel) + ", ifelse(" + name + " == " + empty + ", " +
                  Quoted(LeftEmptyLabel) + ", NA))\n";
        script += name + "[" + name + " %in% c(" + empty + ", " + notAsked + ")] <- NA\n";
    }
    if (column.kind == Column::Kind::Codes && !column.values.empty()) {
        QByteArray values;
        QByteArray labels;
        for (const auto& [value, label] : column.values) {
            values += (values.isEmpty() ? "" : ", ") + QByteArray::number(value);
            labels += (labels.isEmpty() ? "" : ", ") + Quoted(label);
        }
        script += "labels <- c(" + values + ")\nnames(labels) <- c(" + labels + ")\n";
        script += "attr(" + name + ", \"labels\") <- labels\n";
        script +=
            "factors$" + column.name.toLatin1() + " <- factor(" + name +
            ", levels = labels, labels = make.unique(names(labels), sep = \" \"), ordered = " +
            (column.level == statistics::Level::Ordinal ? "TRUE" : "FALSE") + ")\n";
    }
    return script + "attr(" + name + ", \"label\") <- " + Quoted(column.label) + "\n";
}

QByteArray Script(const Codebook& codebook, const QString& data) {
    QByteArray script =
        "# Reads the answers of a survey and labels them. Gives three data frames of the same "
        "respondents:\n"
        "#   answers  the numbers, with the questions and the meaning of the numbers as labels\n"
        "#   factors  the answers to choice questions as factors\n"
        "#   missing  why there is no answer: \"No answer\" or \"Not asked\"\n"
        "# Run it in the directory in which it lies, or as source(\"...\", chdir = TRUE).\n";
    script += "answers <- read.csv(" + Quoted(data) +
              ", encoding = \"UTF-8\", stringsAsFactors = FALSE, na.strings = character(0), "
              "colClasses = c(";
    for (std::size_t i = 0; i < codebook.columns.size(); ++i)
        script += (i ? ", \"" : "\"") +
                  QByteArray(codebook.columns[i].IsNumeric() ? "numeric" : "character") + '"';
    script += "))\nfactors <- data.frame(id = answers$id)\nmissing <- factors\n";
    for (const Column& column : codebook.columns)
        script += ScriptOf(column);
    return script + "rm(labels)\n";
}

QByteArray Html(const QString& text) {
    return text.toHtmlEscaped().toUtf8();
}

constexpr const char* PageHead = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Codebook</title>
<style>
body { font-family: sans-serif; max-width: 60em; margin: 2em auto; padding: 0 1em; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: 0.4em; border-bottom: 1px solid #999; }
ul { list-style: none; margin: 0; padding: 0; }
</style>
</head>
<body>
<h1>Codebook</h1>
)";

} // namespace

void WriteR(Connection& survey, const QString& path, const Sample& sample, const LoadStep& step) {
    const QFileInfo script(path);
    const QString data =
        (script.suffix().compare("R", Qt::CaseInsensitive) == 0 ? script.completeBaseName()
                                                                : script.fileName()) +
        "-answers.csv";
    const QString dataPath = script.path() + '/' + data;
    // Asked about was the script alone.
    if (QFileInfo::exists(dataPath) &&
        (!script.exists() || QFileInfo(dataPath) == QFileInfo(survey.Path())))
        throw Failure(failure::PathOrFileAccess,
                      dataPath + " is there already, and would be replaced. Please choose another "
                                 "name, or remove it.");
    WholeFile labels(path); // first, as it may not be writable
    const Codebook codebook(survey, sample.IsWeighted());
    const std::int64_t total = survey.Count("SELECT count(*) FROM respondent");
    WholeFile answers(dataPath);
    QByteArray text;
    for (const Column& column : codebook.columns)
        text += (text.isEmpty() ? "" : ",") + column.name.toLatin1();
    text += '\n';
    for (Rows rows(survey, codebook, sample); rows.Next();) {
        if (step)
            step(rows.Done(), total);
        for (std::size_t i = 0; i < codebook.columns.size(); ++i)
            text += (i ? "," : "") + CsvCell(codebook.columns[i], rows.Cells()[i]);
        text += '\n';
        if (text.size() > BlockSize) {
            answers.Write(text);
            text.resize(0);
        }
    }
    answers.Write(text);
    answers.Finish();
    labels.Write(Script(codebook, data));
    labels.Finish();
}

void WriteCodebook(Connection& survey, const QString& path, const Sample& sample, const LoadStep&) {
    const Codebook codebook(survey, sample.IsWeighted());
    QByteArray page = PageHead;
    page += "<p>" +
            QByteArray::number(
                static_cast<qlonglong>(survey.Count("SELECT count(*) FROM respondent"))) +
            " respondents.</p>\n<table>\n<thead><tr><th scope=\"col\">Variable</th>"
            "<th scope=\"col\">Question</th><th scope=\"col\">Level</th>"
            "<th scope=\"col\">Values</th></tr></thead>\n<tbody>\n";
    for (const Column& column : codebook.columns) {
        page += "<tr><th scope=\"row\">" + column.name.toLatin1() + "</th><td>" +
                Html(column.label) + "</td><td>" + column.LevelName() + "</td><td>";
        if (column.HasMissing()) {
            page += "<ul>";
            for (const auto& [value, label] : column.values)
                page += "<li>" + QByteArray::number(value) + " = " + Html(label) + "</li>";
            page += "<li>" + QByteArray::number(column.leftEmpty) + " = " + LeftEmptyLabel +
                    "</li><li>" + QByteArray::number(column.notAsked) + " = " + NotAskedLabel +
                    "</li></ul>";
        }
        page += "</td></tr>\n";
    }
    WriteWholeFile(path, page + "</tbody>\n</table>\n</body>\n</html>\n");
}

} // namespace pollarix::labelled
