#pragma once

#include "core/date.h"
#include "core/flag.h"
#include "core/text.h"

#include <cstdint>
#include <span>

namespace tandolin {

/// All persistent settings, under the names of their stored values. Where nothing is stored the
/// values come from `RegValGet`; the ones here are the same start values.
struct Settings {
    std::int16_t ActiveAPP = 0;
    std::int16_t WindowState = 0;
    std::int16_t Width = 0;
    std::int16_t Height = 0;
    std::int16_t Top = 0;
    std::int16_t Left = 0;
    std::int16_t Button_Width = 0;
    std::int16_t Autodel = 0;
    std::int16_t Sync = 0;
    Text Sprache;
    Date DelDate;
    std::int16_t ReadOnStart = 0;
    std::int16_t ReadOnStartvCard = 0;
    std::int16_t DelOption = 0;
    std::int16_t DelTermine = 0;
    std::int16_t DelAnzahl = 0;
    std::int16_t DelSerie = 0;
    std::int16_t SyncTyp = 2;
    std::int16_t SyncTermine = 32;
    std::int16_t SyncZeitraum = 3;
    std::int16_t SyncAlarmAnzahl = 0;
    Date SyncEintraegeab;
    std::int16_t SyncTageWochenMonate = 1;
    Text SyncEintraegevonbis;
    std::int16_t SyncnaechstenAnzahl = 1;
    std::int16_t SaveTyp = 1;
    Text FormFont;
    double FormFontSize = 8;
    std::int16_t FormFontIndex = -1;
    std::int16_t FormFontSizeIndex = 0;
    Text FolderParent;
    Text FolderName;
    Text FolderEntryID;
    Text FolderStoreID;
    std::int16_t freeMobileEntries = 0;
    std::int16_t DateRange = 6;
    Text HomeDir = u"c:";
    /// Number of the serial port, 1 to 16.
    std::int16_t Port = 1;
    /// Today plus `DateRange` days at 23:59:59; computed when the settings are read.
    Date GlobalRangeEnd;
    /// Stored for a period control; nothing reads it.
    std::int16_t GlobalPeriodeTage = 0;
};

/// Date and time formats of the run, derived from the user's locale. In the letters of the locale
/// port: d, m (month), y, h, n/m (minute) as the start values show.
struct DateTimeFormats {
    Text shortDate = u"dd.mm.yy";
    Text longTime = u"hh:mm:ss";
    Text shortTime = u"hh:mm";
    Text dateLongTime = u"dd.mm.yy hh:mm:ss";
    Text dateShortTime = u"dd.mm.yy hh:mm";
    Text dateSeparator = u".";
    Text timeSeparator = u":";
    int dateFormatLength = 0;
    Text zeroTime = u" 00:00:00";
    bool twentyFourHours = true;
    Text morning;
    Text evening;
    Text timeMarker;
    Text timeFormatName = u"Short Time";
    Text timeMarkerPosition;
    Text dateEntryMask = u"####/##/## ##:##:##";
};

/// The kind of a stored value, for checks from outside.
enum class SettingKind { number, text, date };

struct SettingName {
    TextView name;
    SettingKind kind;
};

/// The names of all values under the Settings key, "PORT" of the phone server's key and the notice
/// text excluded; in the order in which they are read. `HomeDir` is the last.
std::span<const SettingName> settingNames();

inline constexpr TextView kSettingsKey = u"Software\\Halvern\\HalvernTandolin\\Settings";
inline constexpr TextView kNoticeKey = u"Software\\Halvern\\HalvernTandolin\\HalvernTandolin";
inline constexpr TextView kPortKey = u"Software\\Halvern\\Pxd";

/// Fills the date and time formats from the locale; a query without an answer is reported and the
/// start values stay.
void RegDateTimeFormatGet();

/// The short date format in a usable form: see the rules beside its definition.
void DateFormatFix(Text& format);

/// The short time format of a long one: without its seconds.
Text BuildTimeNosSecFormat(TextView timeFormat);

/// Ensures the keys and writes the notice text; creates no defaults. False after a failure, which a
/// box has told.
bool RegValCreate();

/// Fills the settings. Has no trap: a failure goes to the caller. A missing `SyncEintraegevonbis`
/// is such a failure (13), for its fallback text is assigned to a number; so is a text where a
/// number belongs (13) and a number beyond 16 bits (6), with the value's name in the description.
/// The size of the screen is not known here: missing window sizes are 0, which the program with a
/// window replaces by its own shares of the screen.
void RegValGet();

/// Writes the settings in their fixed order and stops at the first value that fails, which a box
/// has told. With `withPort` the serial port is written too, under both roots. True on success.
/// The caller with a window puts that window's state and geometry into the settings before. While
/// no size is known (0 by 0: no window was ever shown) the stored geometry is left alone.
bool RegValSet(bool withPort);

/// Stores the four settings of the contact folder at once and no other: a choice that the user made
/// for good, though an unattended run keeps no setting. Throws what the store throws.
void RegFolderSet();

/// The frame of `SyncEintraegevonbis` as it is stored: "YYYY-MM-DD", a tab, "YYYY-MM-DD 23:59:59".
Text spanForSettings(Date from, Date to);

/// `date` as the run's short date; four-digit years are kept where the locale has them.
Text formatDate(Date date);

/// The time of day in the run's short time format (hours and minutes).
Text formatTime(Date time);

/// Date as the tables keep it for comparing: "dd.mm.yyyy", and behind a blank the time of day where
/// it is not midnight (seconds only where they are not 0). The same in every locale.
Text dateAsText(Date date);

/// Reads YYYY-MM-DD[ HH:MM[:SS]], dd.mm.yyyy[ HH:MM[:SS]] in every locale, then the locale's own
/// short date with the same tail. A two-digit year is the year nearest to `today`.
std::optional<Date> parseDate(TextView text, Date today);

/// A time of day as the tables hold it: what `formatTime` gives, and "HH:MM[:SS]". A bare number
/// from 0 to below 1 is the fraction of a day ("0" is midnight).
std::optional<Date> parseTime(TextView text);

/// The whole text as a number with an optional point and exponent ("8.5"), the same in every
/// locale.
std::optional<double> decimalNumber(TextView text);

} // namespace tandolin
