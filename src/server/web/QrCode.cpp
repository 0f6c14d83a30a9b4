#include "server/web/QrCode.h"

#include <memory>

#include <qrencode.h>

#include "server/web/Html.h"

namespace pollarix::server {

std::string QrCodeSvg(const std::string& text) {
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M), &QRcode_free);
    if (!code)
        return "";
    constexpr int border = 4;
    const int size = code->width + 2 * border;
    Html svg(
        "<svg xmlns=\"http://www.w3.org/2000/svg\" shape-rendering=\"crispEdges\" viewBox=\"0 0 ");
    svg << size << " " << size << "\"><path fill=\"#fff\" d=\"M0 0h" << size << "v" << size
        << "H0z\"/><path fill=\"#000\" d=\"";
    for (int y = 0; y < code->width; ++y)
        for (int x = 0; x < code->width; ++x) {
            int length = 0;
            while (x + length < code->width && (code->data[y * code->width + x + length] & 1U))
                ++length;
            if (length > 0)
                svg << "M" << x + border << " " << y + border << "h" << length << "v1h-" << length
                    << "z";
            x += length;
        }
    return std::move(svg << "\"/></svg>\n").Markup();
}

} // namespace pollarix::server
