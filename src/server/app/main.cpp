// The program pollarix-server.
#include <iostream>
#include <vector>

#include <sys/stat.h>

#include "server/app/Commands.h"
#include "server/app/Serve.h"

using namespace pollarix::server;

namespace {

constexpr int UsageCode = 2;

struct CommandLine {
    std::string data;
    std::string config;
    std::vector<std::string> words;
};

CommandLine Read(int count, char** arguments) {
    CommandLine line;
    for (int i = 1; i < count; ++i) {
        const std::string word = arguments[i];
        if (!line.words.empty() || !word.starts_with("--") || word == "--help") {
            line.words.push_back(word);
            continue;
        }
        std::string* const option = word == "--data"     ? &line.data
                                    : word == "--config" ? &line.config
                                                         : nullptr;
        if (!option)
            throw BadUsage("There is no option " + word);
        if (++i == count)
            throw BadUsage(word + " needs a value");
        *option = arguments[i];
    }
    if (line.words.empty())
        line.words.emplace_back("serve");
    return line;
}

} // namespace

int main(int count, char** arguments) {
    // What the server writes is nobody else's to read.
    umask(077);
    try {
        const CommandLine line = Read(count, arguments);
        if (line.words[0] == "help" || line.words[0] == "--help") {
            std::cout << Usage;
            return 0;
        }
        Settings settings = line.config.empty() ? Settings() : ReadSettings(line.config);
        if (!line.data.empty())
            settings.data = line.data;
        if (line.words[0] != "serve")
            return RunCommand(settings, line.words);
        if (line.words.size() > 1)
            throw BadUsage("\"serve\" takes nothing behind it");
        Serve(settings);
        return 0;
    } catch (const BadUsage& failure) {
        std::cerr << failure.what() << "\n\n" << Usage;
        return UsageCode;
    } catch (const std::exception& failure) {
        std::cerr << "pollarix-server: " << failure.what() << '\n';
        return 1;
    }
}
