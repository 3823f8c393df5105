#include "platform/backup_folder/manifest.h"

#include "core/failure.h"
#include "platform/system_posix/atomic_file.h"

#include <nlohmann/json.hpp>

namespace tandolin::platform {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kFormat = 1;
constexpr unsigned kPrivate = 0600;
constexpr std::size_t kLargest = std::size_t{1} << 20U;
constexpr const char* kFile = "manifest.json";

Json countsOf(const ChangeCounts& counts) {
    return {
        {"created", counts.created}, {"replaced", counts.replaced}, {"removed", counts.removed}};
}

ChangeCounts countsIn(const Json& json) {
    return {json.at("created"), json.at("replaced"), json.at("removed")};
}

Json documentOf(const Manifest& manifest) {
    Json kinds = Json::array();
    if (manifest.kinds.calendar) {
        kinds.push_back("calendar");
    }
    if (manifest.kinds.contacts) {
        kinds.push_back("contacts");
    }
    return {{"format", kFormat},
            {"time", manifest.time},
            {"command", manifest.command},
            {"mode", manifest.mode},
            {"kinds", kinds},
            {"phone", manifest.phone},
            {"organizer", manifest.organizer},
            {"restored", manifest.restored},
            {"finished", manifest.finished},
            {"exit", manifest.exit},
            {"changes",
             {{"phone", countsOf(manifest.phoneChanges)},
              {"organizer", countsOf(manifest.organizerChanges)}}}};
}

Manifest manifestIn(const Json& json) {
    if (json.at("format") != kFormat) {
        throw Failure(failure_number::kFileFailed,
                      u"the copy was made by another version of this program");
    }
    Manifest manifest;
    manifest.time = json.at("time");
    manifest.command = json.at("command");
    manifest.mode = json.at("mode");
    for (const Json& kind : json.at("kinds")) {
        manifest.kinds.calendar = manifest.kinds.calendar || kind == "calendar";
        manifest.kinds.contacts = manifest.kinds.contacts || kind == "contacts";
    }
    manifest.phone = json.at("phone");
    manifest.organizer = json.at("organizer");
    manifest.restored = json.at("restored");
    manifest.finished = json.at("finished");
    manifest.exit = json.at("exit");
    manifest.phoneChanges = countsIn(json.at("changes").at("phone"));
    manifest.organizerChanges = countsIn(json.at("changes").at("organizer"));
    return manifest;
}

} // namespace

void writeManifest(const std::filesystem::path& directory, const Manifest& manifest) {
    const std::string text =
        documentOf(manifest).dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
    replaceFile(directory / kFile, text, kPrivate, Flush::now);
}

Manifest readManifest(const std::filesystem::path& directory) {
    const std::string text = readWholeFile(directory / kFile, kLargest);
    try {
        return manifestIn(Json::parse(text));
    } catch (const Json::exception&) {
        throw damagedCopy(u"manifest.json does not hold what a run writes there");
    }
}

Failure damagedCopy(TextView why) {
    return {failure_number::kFileFailed, u"the copy is damaged: " + Text(why)};
}

} // namespace tandolin::platform
