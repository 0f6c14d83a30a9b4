// Style and script of the pages, which never change while the server runs. Their addresses change
// with their content, so that browsers may keep them for ever.
#pragma once

#include <string>
#include <string_view>

#include "server/net/Http.h"

namespace pollarix::server {

const std::string& StylePath();  // "/a/<hash>.css"
const std::string& ScriptPath(); // "/a/<hash>.js"

// file: what stands behind "/a/". 404 for anything else.
Response AssetResponse(std::string_view file);

} // namespace pollarix::server
