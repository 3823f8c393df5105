#include "core/error_reporting.h"

#include "core/state.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tandolin {

namespace {

constexpr TextView kLineBreak = u"\r\n";

constexpr std::array<std::int32_t, 13> kServerReported{
    -2147467259, -2147287038, -2147286928, -2147188735, -2147180543, -2147180542, -2147180540,
    -2147176447, -2147024882, -2147024870, -2147024816, -2147024785, -2147023844};

constexpr std::array<std::int32_t, 2> kCountedOrganizerFailures{-1734082275, -1526464227};

constexpr std::array<std::int32_t, 10> kOrganizersOwn{
    -1906048753, -1871445745, -1802239729, -1733033713, -1111228145,
    -1042022129, -1006370545, -937164529,  -833355505,  -764149489};

template <class Numbers>
bool isOneOf(const Numbers& numbers, std::int32_t number) {
    return std::ranges::find(numbers, number) != numbers.end();
}

// Texts of the set that have no other use than these sentences.
constexpr StringId kServerReportedText{723};
constexpr StringId kTimedOutText{724};
constexpr StringId kCardFullCause{721};
constexpr StringId kAccessDeniedText{726};
constexpr StringId kProcessFailedText{722};

} // namespace

Text failureSentence(std::int32_t number, TextView module) {
    const auto lines = [](auto... ids) {
        Text text;
        ((text += (text.empty() ? TextView{} : kLineBreak), text += tr(ids)), ...);
        return text;
    };
    if (number == failure_number::kOrganizer || isOneOf(kCountedOrganizerFailures, number)) {
        return lines(ids::kOrganizerFailed, ids::kOrganizerFailedCause, ids::kOrganizerFolders);
    }
    if (isOneOf(kOrganizersOwn, number)) {
        return lines(ids::kOrganizerFailed, ids::kOrganizerFailedCause);
    }
    if (isOneOf(kServerReported, number)) {
        return lines(kServerReportedText, ids::kPhoneBusyCause);
    }
    switch (number) {
    case failure_number::kServerGone:
        return lines(ids::kLinkFailed, ids::kLinkFailedCause, ids::kLinkFailedHelp);
    case failure_number::kCallRejected:
        return lines(kTimedOutText, ids::kPhoneBusyCause);
    case failure_number::kAccessDenied:
        return module == u"PXD" ? lines(ids::kPhoneRefused, kCardFullCause)
                                : lines(kAccessDeniedText);
    case failure_number::kNotFound:
        return lines(ids::kPhoneSilent, ids::kPhoneSilentCause);
    default:
        break;
    }
    if (number <= -2001 && number != std::numeric_limits<std::int32_t>::min()) {
        return lines(kProcessFailedText);
    }
    return {};
}

void ReportError(Failure& failure, Place place, TextView extraText) {
    if (failure.Number == 0) {
        failure.Clear();
        return;
    }
    ++app.run.failures;
    Text message = failureSentence(failure.Number, place.module);
    if (failure.Number == failure_number::kServerGone) {
        app.phone.PXDServer.reset();
    }
    if (isOneOf(kCountedOrganizerFailures, failure.Number)) {
        ++app.core.GlobalPIMErrorCount;
    }
    if (failure.Number == failure_number::kDiskFull) {
        app.run.diskFull = true;
    }
    if (!extraText.empty()) {
        message += kLineBreak;
        message += extraText;
    }
    const bool muted = app.core.GlobalSilentMode || app.core.GlobalPIMErrorCount != 0 ||
                       failure.Description.find(u'~') != Text::npos;
    if (!muted && app.ports.screen.boxes != nullptr) {
        Text text = tr(ids::kDescription) + message;
        text += kLineBreak;
        text += kLineBreak;
        text += tr(ids::kNumber) + decimal(failure.Number);
        text += kLineBreak;
        text += failure.Description;
        text += kLineBreak;
        app.ports.screen.boxes->ask(tr(ids::kProgramTitle), text, Icon::exclamation, Buttons::ok);
        app.ports.screen.window->focusMain();
    }
    for (const ProgramErrorHook hook : {app.core.programErrorHook, app.core.failureListener}) {
        if (hook != nullptr) {
            hook(failure, message, place);
        }
    }
    failure.Clear();
}

} // namespace tandolin
