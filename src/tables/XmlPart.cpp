#include "tables/XmlPart.h"

#include <expat.h>

#include <cstring>
#include <exception>
#include <memory>

namespace pollarix::tables {

namespace {

constexpr char NameSpaceEnd = '|';
constexpr XML_Index LongestTag = 1 << 20; // bytes

std::string_view Local(const char* name) {
    const char* const end = std::strrchr(name, NameSpaceEnd);
    return end ? end + 1 : name;
}

// The parser calls back into this; no exception may pass through it.
struct Run {
    XML_Parser parser;
    XmlHandler& handler;
    std::exception_ptr failure{};
    bool stopped = false;
    bool hasType = false;

    template <typename Action> void Do(const Action& action) noexcept {
        if (stopped)
            return;
        try {
            stopped = !action();
        } catch (...) {
            failure = std::current_exception(); // thrown on by ReadXml
            stopped = true;
        }
        if (stopped)
            XML_StopParser(parser, XML_FALSE);
    }
};

void XMLCALL OnStart(void* data, const char* name, const char** attributes) {
    auto& run = *static_cast<Run*>(data);
    run.Do([&] { return run.handler.Start(Local(name), XmlAttributes(attributes)); });
}
void XMLCALL OnEnd(void* data, const char* name) {
    auto& run = *static_cast<Run*>(data);
    run.Do([&] { return run.handler.End(Local(name)); });
}
void XMLCALL OnText(void* data, const char* text, int length) {
    auto& run = *static_cast<Run*>(data);
    run.Do([&] { return run.handler.Text({text, static_cast<std::size_t>(length)}); });
}
// Workbooks have none; with one come entities, and with these texts that grow without end.
void XMLCALL OnType(void* data, const char*, const char*, const char*, int) {
    auto& run = *static_cast<Run*>(data);
    run.hasType = true;
    run.Do([] { return false; });
}

} // namespace

std::string_view XmlAttributes::Of(std::string_view name) const {
    for (const char** pair = pairs_; *pair; pair += 2)
        if (Local(*pair) == name)
            return pair[1];
    return {};
}

void ReadXml(const ZipFile& file, const QString& part, std::int64_t most, XmlHandler& handler) {
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
        XML_ParserCreateNS(nullptr, NameSpaceEnd), XML_ParserFree);
    if (!parser)
        throw std::bad_alloc();
    Run run{parser.get(), handler};
    XML_SetUserData(parser.get(), &run);
    XML_SetElementHandler(parser.get(), OnStart, OnEnd);
    XML_SetCharacterDataHandler(parser.get(), OnText);
    XML_SetStartDoctypeDeclHandler(parser.get(), OnType);
    const auto check = [&](XML_Status status) {
        if (run.failure)
            std::rethrow_exception(run.failure);
        if (run.hasType)
            file.Refuse("its part " + part + " has a document type, which no workbook has");
        if (status != XML_STATUS_OK && !run.stopped)
            file.Refuse(QString("is damaged: %1, line %2: %3")
                            .arg(part)
                            .arg(XML_GetCurrentLineNumber(parser.get()))
                            .arg(XML_ErrorString(XML_GetErrorCode(parser.get()))));
    };
    XML_Index fed = 0;
    file.Read(part, most, [&](QByteArrayView block, double read) {
        handler.Progress(read);
        fed += block.size();
        check(XML_Parse(parser.get(), block.data(), static_cast<int>(block.size()), XML_FALSE));
        if (!run.stopped && fed - XML_GetCurrentByteIndex(parser.get()) > LongestTag)
            file.Refuse("its part " + part + " has a tag that is longer than any table needs");
        return !run.stopped;
    });
    if (!run.stopped)
        check(XML_Parse(parser.get(), "", 0, XML_TRUE));
}

} // namespace pollarix::tables
