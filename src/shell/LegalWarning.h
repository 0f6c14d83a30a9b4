// What the splash and the about box say of the licence, in the same words.
#pragma once

namespace pollarix {

inline constexpr const char* LegalWarning =
    "Pollarix is free software: you may pass it on and change it under the terms of the GNU "
    "General Public License, version 3 or any later version. It comes without any warranty, not "
    "even the implied ones of merchantability or fitness for a particular purpose.";

} // namespace pollarix
