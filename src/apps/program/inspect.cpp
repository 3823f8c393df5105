#include "apps/program/inspect.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "platform/screen_terminal/signals.h"
#include "platform/settings_toml/toml_settings.h"
#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/posix_locale.h"
#include "platform/system_posix/system_clock.h"
#include "store/tables.h"
#include "sync/calendar_rules.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <ostream>

namespace tandolin::program {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLargestObject = 16U << 20U;

/// By its content, or else by its name. Only the first bytes are looked at.
bool isCard(const std::string& file) {
    constexpr std::string_view kBegin = "BEGIN:VCARD";
    std::string first(kBegin.size(), '\0');
    std::ifstream(file, std::ios::binary).read(first.data(), kBegin.size());
    const auto extension = std::filesystem::path(file).extension().string();
    return sameText(fromUtf8(first), fromUtf8(kBegin)) || sameText(fromUtf8(extension), u".vcf");
}

Json cell(const Row& row, const FieldSpec& field, std::size_t i) {
    if (row.isNull(i)) {
        return nullptr;
    }
    switch (field.type) {
    case CellType::boolean:
        return row.number(i) != 0;
    case CellType::date:
        if (field.name == u"EndTime") {
            return toUtf8(isoTime(Date{row.real(i)}));
        }
        return Date{row.real(i)} == Date{0} ? "0" : toUtf8(isoDateTime(Date{row.real(i)}));
    case CellType::text:
        return toUtf8(row.text(i));
    default:
        return row.number(i);
    }
}

Json fieldsOf(const Row& row) {
    Json fields = Json::object();
    for (std::size_t i = 0; i < Calendar::fields.size(); ++i) {
        fields[toUtf8(Calendar::fields[i].name)] = cell(row, Calendar::fields[i], i);
    }
    return fields;
}

Json errorOf(const std::optional<Failure>& failure) {
    if (!failure) {
        return nullptr;
    }
    Json error{{"number", failure->Number}, {"description", toUtf8(failure->Description)}};
    if (failure->Line > 0) {
        error["line"] = failure->Line;
    }
    return error;
}

Json documentOf(const std::string& file, const std::string& bytes, std::optional<Failure> failure,
                bool emit) {
    Table<Calendar> row;
    vCalCreateNewRecord(row);
    if (!failure) {
        const auto unread =
            attempt([&] { failure = readCalendarObject(row, textOfBytes(bytes), fromUtf8(file)); });
        failure = unread ? unread : failure;
    }
    Json document{{"file", file},
                  {"ok", !failure.has_value()},
                  {"error", errorOf(failure)},
                  {"fields", fieldsOf(row.row())}};
    if (emit && !failure) {
        std::string object;
        const auto unsent = attempt([&] {
            vcalTextCheck(row);
            object = toUtf8(calendarObject(row));
        });
        document["object"] = unsent ? Json() : Json(object);
    }
    return document;
}

} // namespace

int inspect(const std::vector<std::string>& files, bool emit, std::ostream& out,
            std::ostream& errors) {
    platform::PosixLocale locale;
    platform::TomlSettings noSettings({}, {}, platform::TomlSettings::Mode::readOnly);
    platform::SystemClock clock;
    app.ports.settings = &noSettings;
    app.ports.clock = &clock;
    app.ports.locale = &locale;
    app.core.GlobalSilentMode = kTrue;
    RegDateTimeFormatGet();
    if (const auto card = std::ranges::find_if(files, isCard); card != files.end()) {
        errors << *card << " is a card; cards are not available in this version\n";
        return 2;
    }
    bool allRead = true;
    for (const std::string& file : files) {
        if (platform::interruptCount() > 0 || platform::terminated()) {
            return 5;
        }
        std::string bytes;
        const auto failure =
            attempt([&] { bytes = platform::readWholeFile(file, kLargestObject); });
        const Json document = documentOf(file, bytes, failure, emit);
        allRead = allRead && document["ok"] == true;
        out << document.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
    }
    app = {};
    return allRead ? 0 : 1;
}

} // namespace tandolin::program
