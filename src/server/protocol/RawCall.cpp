#include "server/protocol/RawCall.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "exchange/SentText.h"
#include "server/store/Records.h"

namespace pollarix::server {

namespace {

struct Function {
    std::string_view name;
    int values;
    // Where the first value is typed by a person and the second is a number, the last mark between
    // them counts: whatever was typed before it is the value.
    bool isTypedFirst;
};

constexpr std::array<Function, 8> Functions = {{{"GetWebUserID", 2, false},
                                                {"GetSurveyID", 2, true},
                                                {"CreateSurvey", 2, false},
                                                {"MoveNewSurvey", 4, false},
                                                {"GetSurveyListForUser", 1, false},
                                                {"GetSurveyName", 1, false},
                                                {"GetSurveyResults", 1, false},
                                                {"DeleteSurveyResultsFile", 2, false}}};

std::string Mark(int value) {
    return "&param" + std::to_string(value) + '=';
}

} // namespace

std::optional<RawCall> ReadCall(std::string_view query) {
    // The date comes last; a value that has the same mark in it came before.
    query = query.substr(0, query.rfind("&refreshme="));
    constexpr std::string_view start = "func=";
    if (!query.starts_with(start))
        return std::nullopt;
    query.remove_prefix(start.size());
    const std::string first = Mark(1);
    const std::size_t nameEnd = query.find(first);
    if (nameEnd == std::string_view::npos)
        return std::nullopt;
    const std::string_view name = query.substr(0, nameEnd);
    const auto* function = std::find_if(Functions.begin(), Functions.end(),
                                        [&](const Function& known) { return known.name == name; });
    if (function == Functions.end())
        return std::nullopt;
    query.remove_prefix(nameEnd + first.size());
    RawCall call{std::string(name), {}};
    for (int value = 2; value <= function->values; ++value) {
        const std::string mark = Mark(value);
        const std::size_t end = function->isTypedFirst ? query.rfind(mark) : query.find(mark);
        if (end == std::string_view::npos)
            return std::nullopt;
        call.values.push_back(exchange::TextOfSent(query.substr(0, end)));
        query.remove_prefix(end + mark.size());
    }
    call.values.push_back(exchange::TextOfSent(query));
    return call;
}

std::optional<std::int64_t> NumberOf(std::string_view text) {
    std::int64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [read, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || read != end || number < 1 || number > LargestId)
        return std::nullopt;
    return number;
}

} // namespace pollarix::server
