#include "core/phone_names.h"

#include <algorithm>

namespace tandolin {

std::string nameOfPhonePath(TextView path) {
    std::string name = toUtf8(path);
    std::ranges::replace(name, '\\', '/');
    return name.starts_with('/') ? name.substr(1) : name;
}

Text phonePathOf(std::string_view name) {
    Text path = u"\\" + fromUtf8(name);
    std::ranges::replace(path, u'/', u'\\');
    return path;
}

std::vector<std::string> phoneStatusFiles() {
    return {"telecom/devinfo.txt", "telecom/cal/info.log", "telecom/pb/info.log"};
}

} // namespace tandolin
