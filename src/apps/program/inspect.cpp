#include "apps/program/inspect.h"

#include "core/state.h"
#include "core/trap.h"
#include "formats/ansi.h"
#include "formats/calendar_codec.h"
#include "formats/contact_codec.h"
#include "platform/screen_terminal/signals.h"
#include "platform/settings_toml/toml_settings.h"
#include "platform/system_posix/atomic_file.h"
#include "platform/system_posix/posix_locale.h"
#include "platform/system_posix/system_clock.h"
#include "store/tables.h"
#include "sync/calendar_rules.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ostream>

namespace tandolin::program {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kLargestObject = 16U << 20U;

/// By its content, or else by its name.
bool isCard(const std::string& file, std::string_view bytes) {
    constexpr TextView kBegin = u"BEGIN:VCARD";
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    bytes.remove_prefix(bytes.starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
    const std::string_view ending =
        std::string_view(file).substr(file.size() - std::min<std::size_t>(file.size(), 4));
    return sameText(fromUtf8(bytes.substr(0, kBegin.size())), kBegin) ||
           sameText(fromUtf8(ending), u".vcf");
}

/// Where this look writes what is no document.
std::ostream* messages = nullptr;

/// The ports of a look into files: no settings, no store.
class InspectorPorts {
public:
    explicit InspectorPorts(std::ostream& errors) {
        messages = &errors;
        app.ports.settings = &settings_;
        app.ports.clock = &clock_;
        app.ports.locale = &locale_;
        app.core.GlobalSilentMode = kTrue;
        app.core.failureListener = [](const Failure& failure, TextView, Place) {
            *messages << toUtf8(failure.File) << ": " << failure.Number << ": "
                      << toUtf8(failure.Description) << '\n';
        };
        RegDateTimeFormatGet();
    }

    InspectorPorts(const InspectorPorts&) = delete;
    InspectorPorts& operator=(const InspectorPorts&) = delete;

    ~InspectorPorts() { app = {}; }

private:
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

Json fieldsOf(const TableCore& table) {
    Json fields = Json::object();
    for (std::size_t i = 0; i < table.fields().size(); ++i) {
        fields[toUtf8(table.fields()[i].name)] = cell(table.row(), table.fields()[i], i);
    }
    return fields;
}

Json errorOf(const std::optional<Failure>& failure) {
    if (!failure) {
        return nullptr;
    }
    return {{"number", failure->Number}, {"description", toUtf8(failure->Description)}};
}

// What the two kinds of object need: a new row, its reader, and the way out of a row that was cut
// to what the phone holds.

void newRow(Table<Calendar>& row) {
    vCalCreateNewRecord(row);
}

void newRow(Table<Contact>& row) {
    vCardCreateNewRecord(row);
}

std::optional<Failure> readObject(Table<Calendar>& row, const std::string& file,
                                  const std::string& bytes) {
    return readCalendarObject(row, textOfBytes(bytes), fromUtf8(file), !isUtf8(bytes));
}

std::optional<Failure> readObject(Table<Contact>& row, const std::string& file,
                                  const std::string& bytes) {
    return readContactObject(
        row, textOfBytes(bytes), fromUtf8(file), !isUtf8(bytes),
        [](TextView version) { *messages << toUtf8(versionConflict(version)) << '\n'; });
}

Text objectOf(Table<Calendar>& row) {
    vcalTextCheck(row);
    return calendarObject(row);
}

Text objectOf(Table<Contact>& row) {
    vCardLenControl(row);
    return contactObject(row);
}

template <class L>
Json documentOf(const std::string& file, const std::string& bytes, std::optional<Failure> failure,
                bool emit) {
    Table<L> row;
    newRow(row);
    if (!failure && bytes.empty()) {
        failure = Failure(failure_number::kServerFailed, u"The object is empty");
    }
    if (!failure) {
        const auto unread = attempt([&] { failure = readObject(row, file, bytes); });
        failure = unread ? unread : failure;
    }
    Json document{{"file", file},
                  {"ok", !failure.has_value()},
                  {"error", errorOf(failure)},
                  {"fields", fieldsOf(row)}};
    if (emit && !failure) {
        std::string object;
        const auto unsent = attempt([&] {
            const Text text = objectOf(row);
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
    bool allRead = true;
    for (const std::string& file : files) {
        if (platform::interruptCount() > 0 || platform::terminated()) {
            return 5;
        }
        std::string bytes;
        const auto failure =
            attempt([&] { bytes = platform::readWholeFile(file, kLargestObject); });
        const Json document = isCard(file, bytes)
                                  ? documentOf<Contact>(file, bytes, failure, emit)
                                  : documentOf<Calendar>(file, bytes, failure, emit);
        allRead = allRead && document["ok"] == true;
        out << document.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
    }
    return allRead ? 0 : 1;
}

} // namespace tandolin::program
