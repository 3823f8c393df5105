#pragma once

// The phone's paths as names of its side (`StoreFiles`): with slashes, without the first.

#include "core/text.h"

#include <string>
#include <string_view>
#include <vector>

namespace tandolin {

/// "telecom/cal/17.vcs" for the phone's "\telecom\cal\17.vcs".
std::string nameOfPhonePath(TextView path);

/// The phone's path for such a name.
Text phonePathOf(std::string_view name);

/// The names of the files in which a phone counts its objects and tells about itself.
std::vector<std::string> phoneStatusFiles();

} // namespace tandolin
