#pragma once

#include "readings/Value.h"

#include <map>
#include <string>

namespace orv {

/// For each device key of a reply four hexadecimal digits that stand for it in what others store. The same key has the
/// same ones on each day and each machine, but a million and more addresses of one maker share them, so that they tell
/// nobody's. Of keys that come together and share them the second is numbered: "3f2a-2".
std::map<std::string, std::string> deviceStandIns(const Dictionary& bluetooth);

} // namespace orv
