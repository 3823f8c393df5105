// The phone's status files, "info.log" and "devinfo.txt", as the program reads them and as the
// phone in a directory keeps them. What that phone writes must say what it was told to say.

#include "core/state.h"
#include "core/trap.h"
#include "phone/phone_info.h"
#include "platform/phone_directory/info_log.h"
#include "scratch_folder.h"

using namespace tandolin;
using fuzzing::require;

namespace {

constexpr std::size_t kTotal = 4;
constexpr int kLastUsed = 7;

/// A phone that has nothing but one status file.
struct OneFile : PhoneServer {
    std::string bytes;

    void PXDDelete(TextView) override {}

    std::vector<Text> PXDList(TextView, int) override { return {}; }

    PXDStream PXDRead(TextView) override { return CreateStream(bytes, {}, {}, {}); }

    void PXDWrite(TextView, const PXDStream&, int) override {}

    bool restoreDeleted(TextView) override { return false; }

    void flush() override {}
};

/// The counters that the program takes from these bytes; nothing when it finds no lines.
std::optional<PhoneState> evaluated(const std::string& bytes, TextView selector) {
    auto file = std::make_unique<OneFile>();
    file->bytes = bytes;
    std::unique_ptr<PhoneServer> server = std::move(file);
    PXDInfoTable table;
    if (!getMobilePXDInfo(server, u"\\telecom\\", u"info.log", table)) {
        return std::nullopt;
    }
    PhoneState state;
    PXDInfoAuswertung(table, state, state.vCalMaxRecords, state.vCalTotalRecords,
                      state.LastUsedIndex, selector);
    return state;
}

void checkKeptFile(const std::string& bytes) {
    std::optional<platform::InfoLog> log;
    if (attempt([&] { log.emplace(bytes); })) {
        return;
    }
    const std::string written = log->text(kTotal, kLastUsed);
    const platform::InfoLog again(written);
    require(again.maximumRecords() == log->maximumRecords());
    require(again.lastUsedIndex() == kLastUsed);
    require(again.text(kTotal, kLastUsed) == written);
    require(evaluated(written, u"1").has_value());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    app = {};
    app.core.GlobalSilentMode = kTrue;
    const std::string bytes(data, data + size);
    for (const TextView selector : {u"", u"0", u"1"}) {
        evaluated(bytes, selector);
    }
    checkKeptFile(bytes);
    return 0;
}
