// The rich text reader. Whatever the bytes: both readings agree, and what was read is written in a
// form that reads back the same.
#include <cstring>

#include "FuzzProgram.h"
#include "platform/richtext/RichText.h"

using namespace pollarix;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QString source;
    // No UTF-8 begins so: the rest is taken as UTF-16, in which half a pair can stand alone.
    if (size > 0 && data[0] == 0xFF) {
        source.resize(static_cast<qsizetype>((size - 1) / 2));
        std::memcpy(source.data(), data + 1, static_cast<std::size_t>(source.size()) * 2);
    } else {
        source =
            QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    }
    const RichText read = ReadRichText(source);
    fuzz::Require(!read.paragraphs.empty(), "a text has a paragraph");
    fuzz::Require(PlainTextOf(source) == read.PlainText(), "both readings agree");
    const QString written = WriteRichText(read);
    const RichText again = ReadRichText(written);
    fuzz::Require(again.PlainText().size() <= read.PlainText().size(), "writing adds no text");
    fuzz::Require(again == read, "what was read is written whole");
    fuzz::Require(WriteRichText(again) == written, "the written form is stable");
    return 0;
}
