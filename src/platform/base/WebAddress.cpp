#include "platform/base/WebAddress.h"

#include "platform/base/ShownText.h"

namespace pollarix {

QUrl WebAddressOf(const QString& text) {
    const QUrl address(text.trimmed());
    const bool isWeb = address.scheme() == "http" || address.scheme() == "https";
    return address.isValid() && isWeb && !address.host().isEmpty() && !HasControls(text) ? address
                                                                                         : QUrl();
}

} // namespace pollarix
