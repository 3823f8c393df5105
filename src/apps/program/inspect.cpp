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

/// By its content, or else by its name. Only the first bytes of a regular file are looked at.
bool isCard(const std::string& file) {
    constexpr std::string_view kBegin = "BEGIN:VCARD";
    std::string first(kBegin.size(), '\0');
    std::error_code unknown;
    if (std::filesystem::is_regular_file(file, unknown)) {
        std::ifstream(file, std::ios::binary).read(first.data(), kBegin.size());
    }
    const std::string_view ending =
        std::string_view(file).substr(file.size() - std::min<std::size_t>(file.size(), 4));
    return sameText(fromUtf8(first), fromUtf8(kBegin)) || sameText(fromUtf8(ending), u".vcf");
}

/// The ports of a look into files: no settings, no store.
class InspectorPorts {
public:
    explicit InspectorPorts(std::ostream& errors) {
        stream = &errors;
        app.ports.settings = &settings_;
        app.ports.clock = &clock_;
        app.ports.locale = &locale_;
        app.core.GlobalSilentMode = kTrue;
        app.core.failureListener = [](const Failure& failure, TextView, Place) {
            *stream << toUtf8(failure.File) << ": " << failure.Number << ": "
                    << toUtf8(failure.Description) << '\n';
        };
        RegDateTimeFormatGet();
    }

    InspectorPorts(const InspectorPorts&) = delete;
    InspectorPorts& operator=(const InspectorPorts&) = delete;

    ~InspectorPorts() { app = {}; }

private:
    inline static std::ostream* stream = nullptr;
    platform::TomlSettings settings_{{}, {}, platform::TomlSettings::Mode::readOnly};
    platform::SystemClock clock_;
    platform::PosixLocale locale_;
};

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
    return {{"number", failure->Number}, {"description", toUtf8(failure->Description)}};
}

Json documentOf(const std::string& file, const std::string& bytes, std::optional<Failure> failure,
                bool emit) {
    Table<Calendar> row;
    vCalCreateNewRecord(row);
    if (!failure && bytes.empty()) {
        failure = Failure(failure_number::kServerFailed, u"The object is empty");
    }
    if (!failure) {
        const auto unread = attempt([&] {
            failure = readCalendarObject(row, textOfBytes(bytes), fromUtf8(file), !isUtf8(bytes));
        });
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
            const Text text = calendarObject(row);
            static_cast<void>(bytesOfText(text)); // throws for what could not be sent
            object = toUtf8(text);
        });
        document["object"] = unsent ? Json() : Json(object);
    }
    return document;
}

} // namespace

int inspect(const std::vector<std::string>& files, bool emit, std::ostream& out,
            std::ostream& errors) {
    const InspectorPorts ports(errors);
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
    return allRead ? 0 : 1;
}

} // namespace tandolin::program
