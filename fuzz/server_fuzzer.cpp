// What the survey server reads from anybody: requests, the program's calls, forms, sessions of
// uploads, survey documents, answers as a form carries them along. The first byte chooses among
// them.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>
#include <string_view>

#include <sys/socket.h>

#include "exchange/CodePage.h"
#include "exchange/ResultsWriter.h"
#include "exchange/SentText.h"
#include "exchange/SurveyReader.h"
#include "server/ftp/FtpSession.h"
#include "server/net/Http.h"
#include "server/net/RequestReader.h"
#include "server/protocol/RawCall.h"
#include "server/survey/SentAnswers.h"
#include "server/survey/StoredAnswers.h"

using namespace pollarix;

namespace {

// Ends the process with the words unless the condition holds. The desktop program's means for
// fuzzers stay out of here: the server knows nothing of it.
void Require(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "Broken: %s\n", what);
    std::abort();
}

void ReadCall(std::string_view query) {
    const auto call = server::ReadCall(query);
    if (!call)
        return;
    for (const std::string& value : call->values) {
        Require(exchange::IsUtf8(value), "values are UTF-8");
        const std::string sent = exchange::AsSent(value);
        Require(exchange::AsSent(sent) == sent, "a second sending changes nothing");
    }
}

// In two parts, as a network may deliver it; what isn't a head yet comes again with the rest.
void ReadRequest(std::string_view bytes) {
    constexpr std::size_t mostHead = 2000;
    constexpr std::size_t mostBody = 1000;
    server::Request request;
    server::RequestReader reader(request, mostHead, mostBody);
    const std::size_t middle = bytes.empty() ? 0 : static_cast<unsigned char>(bytes[0]);
    for (const std::size_t end : {std::min(middle, bytes.size()), bytes.size()}) {
        std::string_view part = bytes.substr(0, end);
        boost::beast::error_code error;
        while (!error && !reader.is_done() && !part.empty()) {
            const std::size_t used = reader.put({part.data(), part.size()}, error);
            part.remove_prefix(used);
            bytes.remove_prefix(used);
            if (!reader.is_header_done() && !reader.TakesMoreHead(used, part.size()))
                return;
        }
        Require(request.body.size() <= mostBody, "a body has its bound");
        Require(request.path.empty() || request.path[0] == '/', "a path begins with a slash");
        if (reader.is_done() || (error && error != boost::beast::http::error::need_more))
            break;
    }
    if (reader.is_header_done())
        reader.IsAmbiguous();
}

void ReadForm(std::string_view body) {
    const auto fields = server::FormFields(body, 50);
    if (!fields)
        return;
    std::string again;
    for (const auto& [name, value] : *fields)
        again += (again.empty() ? "" : "&") + server::PercentEncoded(name) + '=' +
                 server::PercentEncoded(value);
    Require(server::FormFields(again, 50) == fields, "fields come back as they were");
}

// A client that sends all of it at once and goes.
void ReceiveUpload(std::string_view commands) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0)
        return;
    server::Socket client(ends[0]);
    server::Socket control(ends[1]);
    if (send(client.Get(), commands.data(), commands.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0)
        return;
    shutdown(client.Get(), SHUT_WR);
    const server::UploadTaker taker = {
        [](std::int64_t user, std::int64_t survey, const std::string&) {
            Require(user > 0 && survey > 0, "names are numbers");
            return std::string();
        },
        [](std::int64_t, std::int64_t, const std::string&, const std::string&) {
            return std::string();
        }};
    server::FtpBounds bounds;
    bounds.idleSeconds = 0; // all has been sent, and nobody reads the replies
    server::FtpSession(bounds, taker, std::move(control), -1).Run();
}

const exchange::Questionnaire& KnownQuestions() {
    static const exchange::Questionnaire questionnaire = {
        {{1, exchange::Kind::OpenEnded, "a", "1", 2, {}, {}},
         {2, exchange::Kind::Check, "b", "2", 0, {{21, "x"}, {22, "y"}, {23, "z"}}, {}},
         {3, exchange::Kind::Radio, "c", "3", 0, {{31, "x"}, {32, "y"}}, {}},
         {4, exchange::Kind::Text, "d", "", 0, {}, {}},
         {5, exchange::Kind::Matrix, "e", "4", 0, {{51, "x"}, {52, "y"}}, {{7, "-"}, {8, "+"}}}}};
    return questionnaire;
}

void Collect(const exchange::Questionnaire& questionnaire, const exchange::Answers& answers) {
    const std::string stored = server::StoredAnswers(questionnaire, answers);
    const auto read = server::ReadStoredAnswers(questionnaire, stored);
    Require(read && *read == answers, "what is stored can be read");
    exchange::LostLetters lost;
    const std::string file = exchange::ResultsOf(questionnaire, answers, lost);
    // No answer makes a respondent or a record of its own.
    const auto count = [&](std::string_view tag) {
        std::size_t found = 0;
        for (std::size_t at = file.find(tag); at != std::string::npos; at = file.find(tag, at + 1))
            ++found;
        return found;
    };
    Require(count("<userresponse>") == 1 && count("</userresponse>") == 1,
            "one respondent is one block");
    Require(count("<r>") == questionnaire.questions.size() && count("<r>") == count("</r>"),
            "each question has one record");
}

void ReadDocument(std::string_view bytes) {
    try {
        const exchange::Questionnaire questionnaire = exchange::ReadSurveyDocument(bytes);
        std::set<std::int32_t> ids;
        for (const exchange::Question& question : questionnaire.questions)
            Require(ids.insert(question.id).second, "each question has its own id");
        Require(!ids.empty(), "there is a question");
        Collect(questionnaire, exchange::NoAnswers(questionnaire));
    } catch (const exchange::DocumentFault& fault) {
        const std::string words = fault.what();
        Require(!words.empty() && words.size() < 200, "a fault is told in a few words");
    }
}

void ReadAnswers(std::string_view stored) {
    const auto answers = server::ReadStoredAnswers(KnownQuestions(), stored);
    if (!answers)
        return;
    Require(server::StoredAnswers(KnownQuestions(), *answers) == stored,
            "the same answers are the same bytes");
    Collect(KnownQuestions(), *answers);
}

void TakeAnswers(std::string_view body) {
    const auto fields = server::FormFields(body, 50);
    if (!fields)
        return;
    const server::SentAnswers sent = server::ReadSentAnswers(
        KnownQuestions(), {0, 5}, exchange::NoAnswers(KnownQuestions()), *fields);
    if (!sent.isForeign && sent.tooLong.empty())
        Collect(KnownQuestions(), sent.answers);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0]) {
    case 'c':
        ReadCall(input);
        break;
    case 'h':
        ReadRequest(input);
        break;
    case 'f':
        ReadForm(input);
        break;
    case 'u':
        ReceiveUpload(input);
        break;
    case 'd':
        ReadDocument(input);
        break;
    case 'a':
        ReadAnswers(input);
        break;
    case 's':
        TakeAnswers(input);
        break;
    default:
        break;
    }
    return 0;
}
