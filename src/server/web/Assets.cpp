#include "server/web/Assets.h"

#include <array>
#include <cstdint>

#include <AssetTexts.h> // made by the build

namespace pollarix::server {

namespace {

// FNV-1a; nobody has a reason to look for two of the same.
std::string PathOf(std::string_view text, std::string_view ending) {
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3U;
    std::string path = "/a/";
    for (int i = 0; i < 12; ++i, hash >>= 4U)
        path += "0123456789abcdef"[hash & 15U];
    return path.append(ending);
}

Response Lasting(std::string_view body, const char* type) {
    Response response;
    response.contentType = type;
    response.body = body;
    response.headers = {{"Cache-Control", "public, max-age=31536000, immutable"},
                        {"Cross-Origin-Resource-Policy", "same-origin"}};
    return response;
}

} // namespace

const std::string& StylePath() {
    static const std::string path = PathOf(StyleText, ".css");
    return path;
}

const std::string& ScriptPath() {
    static const std::string path = PathOf(ScriptText, ".js");
    return path;
}

Response AssetResponse(std::string_view file) {
    if (StylePath().substr(3) == file)
        return Lasting(StyleText, "text/css; charset=utf-8");
    if (ScriptPath().substr(3) == file)
        return Lasting(ScriptText, "text/javascript; charset=utf-8");
    return Response::Text(404, "There is nothing at this address.");
}

} // namespace pollarix::server
