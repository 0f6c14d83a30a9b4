// All that the server keeps of one account, as one JSON document for its holder to take along.
#pragma once

#include <string>
#include <string_view>

#include "server/net/Http.h"
#include "server/store/Store.h"
#include "server/survey/Questionnaires.h"

namespace pollarix::server {

// A JSON string with its quotes. What is no UTF-8 becomes U+FFFD.
std::string JsonText(std::string_view text);

// Piece by piece: the account, its surveys, deleted ones as well, each with all its versions and
// all its answers. The two have to live until it is read.
BodySource OwnData(Store& store, Questionnaires& questionnaires, const Account& account);

} // namespace pollarix::server
