// Rich text: reader, plain text and writer in MB/s of rich text (one byte a character), the
// editor's two costs (the text taken at each key release, a question shown), and a report as it
// grows.
#include <QTemporaryDir>
#include <QTest>

#include <benchmark/benchmark.h>

#include "platform/controls/RichTextBox.h"
#include "platform/richtext/RichText.h"

using namespace pollarix;

namespace {

enum Kind { PlainKind, FormattedKind, ScriptsKind };

// Paragraphs of about a hundred characters: without formats, with one every other word, or in
// scripts of which no character has a byte of its own.
RichText Sample(Kind kind, int paragraphs) {
    const QString words =
        kind == ScriptsKind ? QString::fromUtf8("Ποιο χρώμα 日本語の質問 سؤال اليوم какой цвет 😀 ")
                            : "Which of these colours do you like best, and why is that so? ";
    RichText text;
    text.paragraphs.clear();
    for (int number = 0; number < paragraphs; ++number) {
        Paragraph paragraph{{}, number % 5 == 4};
        if (kind != FormattedKind) {
            paragraph.runs.push_back({words + words, {}});
        } else {
            const QStringList parts = words.split(' ');
            for (qsizetype part = 0; part < parts.size(); ++part) {
                RunFormat format;
                format.bold = part % 2 == 1;
                format.italic = part % 4 == 3;
                format.fontSize = part % 8 == 5 ? 14 : 0;
                if (part % 8 == 7)
                    format.colour = QColor(0, 0, 128);
                paragraph.runs.push_back({parts[part] + ' ', format});
            }
        }
        text.paragraphs.push_back(paragraph);
    }
    return text;
}

QString Rtf(benchmark::State& state, int paragraphs = 10000) {
    return WriteRichText(Sample(static_cast<Kind>(state.range(0)), paragraphs));
}

void Count(benchmark::State& state, qsizetype size) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * size);
    constexpr const char* names[] = {"plain", "formatted", "scripts"};
    state.SetLabel(names[state.range(0)]);
}

void Read(benchmark::State& state) {
    const QString rtf = Rtf(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadRichText(rtf));
    Count(state, rtf.size());
}

void PlainText(benchmark::State& state) {
    const QString rtf = Rtf(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(PlainTextOf(rtf));
    Count(state, rtf.size());
}

void Write(benchmark::State& state) {
    const RichText text = Sample(static_cast<Kind>(state.range(0)), 10000);
    qsizetype size = 0;
    for (auto _ : state)
        size = WriteRichText(text).size();
    Count(state, size);
}

void TextRtfOfBox(benchmark::State& state) {
    RichTextBox box;
    box.SetTextRTF(Rtf(state, 100));
    state.counters["characters"] = static_cast<double>(box.Text().size());
    for (auto _ : state)
        benchmark::DoNotOptimize(box.TextRTF());
    Count(state, box.TextRTF().size());
}

// A key in a visible box of 10,000 characters, with the text taken at its release.
void KeyInBox(benchmark::State& state) {
    RichTextBox box;
    box.resize(500, 200);
    box.SetTextRTF(Rtf(state, 100));
    QString taken;
    box.KeyUp = [&](QKeyEvent&) { taken = box.TextRTF(); };
    box.show();
    QCoreApplication::processEvents();
    for (auto _ : state) {
        QTest::keyClick(&box, Qt::Key_X);
        QCoreApplication::processEvents();
    }
    Count(state, taken.size());
}

// One question after the other in a visible box, all of it selected each time.
void ShowQuestion(benchmark::State& state) {
    RichTextBox box;
    box.resize(500, 200);
    box.show();
    const QString rtf = Rtf(state, 2);
    for (auto _ : state) {
        box.SetTextRTF(rtf);
        box.SetSelStart(0);
        box.SetSelLength(static_cast<int>(box.Text().size()));
    }
    Count(state, rtf.size());
}

void GrowReport(benchmark::State& state) {
    QTemporaryDir directory;
    const QString path = directory.filePath("Report.rtf");
    int64_t lines = 0;
    for (auto _ : state) {
        RichTextFileWriter writer(path);
        for (int line = 0; line < 100000; ++line, ++lines) {
            writer.SetSelBold(true);
            writer.Append(u"1. Which of these colours do you like best?\r\n");
            writer.SetSelBold(false);
            writer.Append(u"\tThe blue one\r\n");
        }
        writer.Save();
    }
    state.SetItemsProcessed(2 * lines);
}

BENCHMARK(Read)->DenseRange(PlainKind, ScriptsKind)->Unit(benchmark::kMillisecond);
BENCHMARK(PlainText)->DenseRange(PlainKind, ScriptsKind)->Unit(benchmark::kMillisecond);
BENCHMARK(Write)->DenseRange(PlainKind, ScriptsKind)->Unit(benchmark::kMillisecond);
BENCHMARK(TextRtfOfBox)->DenseRange(PlainKind, ScriptsKind)->Unit(benchmark::kMicrosecond);
BENCHMARK(KeyInBox)->DenseRange(PlainKind, ScriptsKind)->Unit(benchmark::kMicrosecond);
BENCHMARK(ShowQuestion)->DenseRange(PlainKind, ScriptsKind)->Unit(benchmark::kMicrosecond);
BENCHMARK(GrowReport)->Unit(benchmark::kMillisecond);

} // namespace
