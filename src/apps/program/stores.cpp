#include "apps/program/stores.h"

#include "platform/organizer_folder/folder_files.h"
#include "platform/organizer_folder/folder_organizer.h"
#include "platform/phone_directory/directory_phone_files.h"
#include "platform/phone_directory/phone_directory.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string_view>
#include <vector>

namespace tandolin::program {

namespace {

/// "kind:target?key=value&key=value".
struct Uri {
    std::string kind;
    std::string target;
    std::map<std::string, std::string> keys;
};

Uri split(const std::string& text) {
    Uri uri;
    const auto colon = text.find(':');
    uri.kind = text.substr(0, colon);
    if (colon == std::string::npos) {
        return uri;
    }
    const auto question = text.find('?', colon);
    uri.target =
        text.substr(colon + 1, question == std::string::npos ? question : question - colon - 1);
    for (auto at = question; at != std::string::npos;) {
        const auto end = text.find('&', at + 1);
        const std::string pair = text.substr(at + 1, end == std::string::npos ? end : end - at - 1);
        const auto equals = pair.find('=');
        uri.keys[pair.substr(0, equals)] =
            equals == std::string::npos ? "" : pair.substr(equals + 1);
        at = end;
    }
    return uri;
}

std::optional<std::string> unknownKey(const Uri& uri, const std::vector<std::string_view>& known) {
    for (const auto& [key, value] : uri.keys) {
        if (std::find(known.begin(), known.end(), key) == known.end()) {
            return "unknown key \"" + key + "\" in " + uri.kind + ":" + uri.target;
        }
    }
    return std::nullopt;
}

std::string notBuilt(const std::string& uri) {
    return uri + " is not available in this version; nothing was read or written";
}

template <class Side>
std::function<std::unique_ptr<Side>()> absent(const char16_t* reason) {
    return
        [reason]() -> std::unique_ptr<Side> { throw Failure(failure_number::kNotFound, reason); };
}

/// The URI with its target as an absolute path.
std::string absoluteUri(const std::string& text, const Uri& uri) {
    const std::string path =
        std::filesystem::absolute(uri.target).lexically_normal().generic_string();
    return uri.kind + ':' + path + text.substr(uri.kind.size() + 1 + uri.target.size());
}

void usePhone(Stores& stores, const std::string& text, bool dryRun) {
    const Uri uri = split(text);
    if (uri.kind.starts_with("obex+")) {
        stores.problem = notBuilt(text);
    } else if (uri.kind != "dir" || uri.target.empty()) {
        stores.problem = "--phone " + text + ": a phone is named as dir:PATH";
    } else if (!(stores.problem = unknownKey(uri, {}))) {
        stores.makePhone = [path = uri.target, dryRun] {
            return std::make_unique<platform::DirectoryPhone>(path, dryRun);
        };
        stores.phoneFiles = [path = uri.target](PhoneServer& phone) {
            return std::make_unique<platform::DirectoryPhoneFiles>(path, phone);
        };
        stores.phone = absoluteUri(text, uri);
    }
}

void useOrganizer(Stores& stores, const std::string& text, bool dryRun, const Clock& clock,
                  ChangeObserver* changes) {
    const Uri uri = split(text);
    if (text == "none") {
        stores.makeOrganizer = absent<Organizer>(u"The run was asked to go without an organizer");
    } else if (uri.kind == "eds") {
        stores.problem = notBuilt(text);
    } else if (uri.kind != "folder" || uri.target.empty()) {
        stores.problem = "--organizer " + text + ": an organizer is named as folder:PATH, or none";
    } else if (!(stores.problem = unknownKey(uri, {"calendar", "contacts"}))) {
        platform::FolderOrganizerOptions options;
        options.root = uri.target;
        options.dryRun = dryRun;
        options.changes = changes;
        if (uri.keys.contains("calendar")) {
            options.calendarDir = uri.keys.at("calendar");
        }
        if (uri.keys.contains("contacts")) {
            options.contactsDir = uri.keys.at("contacts");
        }
        stores.makeOrganizer = [options, &clock] {
            return std::make_unique<platform::FolderOrganizer>(options, clock);
        };
        stores.organizerFiles = [options] {
            return std::make_unique<platform::FolderFiles>(options);
        };
        stores.organizer = absoluteUri(text, uri);
    }
}

} // namespace

Stores openStores(const std::optional<std::string>& phoneUri,
                  const std::optional<std::string>& organizerUri, bool dryRun, const Clock& clock,
                  ChangeObserver* changes) {
    Stores stores;
    stores.makePhone = absent<PhoneServer>(
        u"No phone is named: use --phone dir:PATH, or phone in [connection] of the settings");
    stores.makeOrganizer = absent<Organizer>(
        u"No organizer is named: use --organizer folder:PATH, or organizer in [connection] of the "
        u"settings");
    if (phoneUri) {
        usePhone(stores, *phoneUri, dryRun);
    }
    if (organizerUri && !stores.problem) {
        useOrganizer(stores, *organizerUri, dryRun, clock, changes);
    }
    return stores;
}

} // namespace tandolin::program
