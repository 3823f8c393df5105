#include "platform/backup_folder/phone_files.h"

#include "core/phone_names.h"

namespace tandolin::platform {

std::vector<std::string> PhoneFiles::entries(EntryKinds kinds) {
    std::vector<std::string> names;
    const auto list = [&](bool wanted, const char* folder, TextView pattern) {
        if (!wanted) {
            return;
        }
        for (const Text& name : server_.PXDList(phonePathOf(folder) + Text(pattern), 0)) {
            names.push_back(folder + toUtf8(name));
        }
    };
    list(kinds.calendar, "telecom/cal/", u"*.vcs");
    list(kinds.contacts, "telecom/pb/", u"*.vcf");
    return names;
}

std::optional<std::string> PhoneFiles::read(const std::string& name) {
    if (known_) {
        if (const auto known = known_->find(name); known != known_->end()) {
            return known->second;
        }
    }
    PXDStream stream = server_.PXDRead(phonePathOf(name));
    return stream.found ? std::optional(std::move(stream.bytes)) : std::nullopt;
}

void PhoneFiles::write(const std::string& name, std::string_view bytes) {
    PXDStream stream;
    stream.bytes = bytes;
    server_.PXDWrite(phonePathOf(name), stream, kPutBackFlag);
}

void PhoneFiles::remove(const std::string& name) {
    server_.PXDDelete(phonePathOf(name));
}

std::vector<std::string> PhoneFiles::statusFiles() {
    return phoneStatusFiles();
}

} // namespace tandolin::platform
