#include "store/grid_columns.h"

#include "core/state.h"
#include "core/trap.h"
#include "store/tables.h"

#include <algorithm>

namespace tandolin {

namespace {

constexpr TextView kModule = u"TDLADODB";
constexpr int kCheckBoxWidth = 320;
constexpr int kLeastRest = 800;

// Pictures by their number in the calendar grid.
constexpr int kOrganizerImage = 1;
constexpr int kMobileImage = 2;
constexpr int kAlarmImage = 12;
constexpr std::array<TextView, 12> kCalendarImages{
    u"TDLReadOrganizer", u"Mobile",    u"Memo",   u"Meeting",
    u"Anniversary",      u"Phonecall", u"Once",   u"Daily",
    u"Weekly",           u"Monthly",   u"yearly", u"Alarm"};
constexpr std::array<TextView, 2> kContactImages{u"TDLReadOrganizer", u"Mobile"};

constexpr StringId kWeekly{759};
constexpr std::array<ValueItem, 4> kEntryKinds{{{u"", ids::kMemo, 3},
                                                {u"1", ids::kMeeting, 4},
                                                {u"2", ids::kBirthday, 5},
                                                {u"3", ids::kPhoneCall, 6}}};
constexpr std::array<ValueItem, 5> kSeriesKinds{
    {{u"", {527}, 7}, {u"D", {528}, 8}, {u"W", kWeekly, 9}, {u"M", {841}, 10}, {u"Y", {842}, 11}}};

GridColumn checkBox(std::size_t field, int headerImage, StringId tip, bool visible = true) {
    return {.field = field,
            .caption = {},
            .headerImage = headerImage,
            .tip = tr(tip),
            .width = {.twips = kCheckBoxWidth, .sample = {}},
            .visible = visible,
            .content = CellContent::checkBox,
            .format = {},
            .values = {}};
}

GridColumn wordColumn(std::size_t field, StringId caption, StringId tip, ColumnWidth width) {
    return {.field = field,
            .caption = tr(caption),
            .tip = tr(tip),
            .width = std::move(width),
            .format = {},
            .values = {}};
}

GridColumn listColumn(std::size_t field, StringId caption, StringId tip, ColumnWidth width,
                      std::span<const ValueItem> values) {
    GridColumn column = wordColumn(field, caption, tip, std::move(width));
    column.content = CellContent::valueList;
    column.values = values;
    return column;
}

ColumnWidth fixed(int twips) {
    return {.twips = twips, .sample = {}};
}

ColumnWidth asWideAs(Text sample, int more) {
    return {.twips = more, .sample = std::move(sample)};
}

ColumnWidth rest() {
    return {.sample = {}, .rest = true};
}

GridColumn dateColumn() {
    // 12 December 2000: two digits for day and month.
    constexpr Date kWideDate{36872};
    GridColumn column =
        wordColumn(cal::StartDate.index(), {484}, {485}, asWideAs(formatDate(kWideDate), 200));
    column.content = CellContent::date;
    column.format = app.formats.shortDate;
    return column;
}

GridLayout calendarLayout() {
    constexpr Date kHalfPastMidnight{0.5 / 24};
    GridLayout layout;
    layout.markColour = 0x808000;
    layout.images = kCalendarImages;
    layout.columns = {
        checkBox(cal::PIM.index(), kOrganizerImage, {540},
                 static_cast<bool>(app.organizer.OrganizerPresent)),
        checkBox(cal::Mobile.index(), kMobileImage, {931}),
        checkBox(cal::Alarm.index(), kAlarmImage, {508}),
        dateColumn(),
        wordColumn(cal::StartTime.index(), {486}, {487},
                   asWideAs(formatTime(kHalfPastMidnight), 100)),
        listColumn(cal::Typ.index(), {488}, {489}, asWideAs(tr(ids::kMeeting), 400), kEntryKinds),
        wordColumn(cal::Text.index(), {492}, {493}, rest()),
        listColumn(cal::Serie.index(), {490}, {491}, asWideAs(tr(kWeekly), 150), kSeriesKinds)};
    layout.sortedBy = {4, 5};
    layout.margin = 150;
    layout.hiddenCount = true;
    layout.label = tr({932});
    layout.numbers = {2000, 200};
    layout.flags = {true, true};
    layout.caption = tr({509});
    return layout;
}

GridLayout contactLayout() {
    const bool contactsOpen = app.organizer.GlobalContactFolder && app.organizer.OrganizerPresent;
    GridLayout layout;
    layout.markColour = 0xFF0000;
    layout.images = kContactImages;
    layout.columns = {checkBox(con::PIM.index(), kOrganizerImage, {506}, contactsOpen),
                      checkBox(con::Mobile.index(), kMobileImage, {933}),
                      wordColumn(con::LastName.index(), ids::kName, {495}, rest()),
                      wordColumn(con::FirstName.index(), {496}, {497}, fixed(1000)),
                      wordColumn(con::Company.index(), {513}, {514}, fixed(1000)),
                      wordColumn(con::Phone.index(), ids::kPhoneNumber, {499}, fixed(1600)),
                      wordColumn(con::Street.index(), {500}, {501}, fixed(1600)),
                      wordColumn(con::ZipCode.index(), {502}, {503}, fixed(800)),
                      wordColumn(con::City.index(), {504}, {505}, fixed(1000)),
                      wordColumn(con::Categories.index(), {511}, {935}, fixed(400))};
    layout.columns.back().content = CellContent::checkBox;
    layout.sortedBy = {3};
    layout.margin = 200;
    return layout;
}

} // namespace

GridLayout gridLayout(Grid grid) {
    return grid == Grid::GridEXCal ? calendarLayout() : contactLayout();
}

int restWidth(const GridLayout& layout, std::span<const int> widths, int gridTwips) {
    int left = gridTwips - layout.margin;
    for (std::size_t i = 0; i < layout.columns.size(); ++i) {
        const GridColumn& column = layout.columns[i];
        if (!column.width.rest && (column.visible || layout.hiddenCount)) {
            left -= widths[i];
        }
    }
    return std::max(left, kLeastRest);
}

void SetvCalColCaption() {
    trapped({kModule, u"SetvCalColCaption"},
            [] { app.ports.screen.window->columnCaptions(Grid::GridEXCal); });
}

void vCardSetColCaption() {
    trapped({kModule, u"vCardSetColCaption"},
            [] { app.ports.screen.window->columnCaptions(Grid::GridEXCard); });
}

void SetGridCaptions() {
    SetvCalColCaption();
    vCardSetColCaption();
}

} // namespace tandolin
