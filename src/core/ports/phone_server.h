#pragma once

#include "core/date.h"
#include "core/text.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tandolin {

/// A stream as the phone server hands it out: the bytes of one file, with its three times. Opening
/// an absent file is not a failure; `found` is false and turning the stream to bytes reports it.
struct PXDStream {
    std::string bytes;
    Date created;
    Date modified;
    Date accessed;
    bool found = true;
};

/// `PXDWrite`: the object goes back to a place that it had before, which may lie above the numbers
/// that the phone gives to new ones. A phone that decides by itself ignores it.
inline constexpr int kPutBackFlag = 1;

/// The phone's data exchange server: a small file system with IrMC paths ("\telecom\cal\17.vcs").
/// Every operation reports by throwing a Failure whose number is one of 0x80070002 (absent),
/// 0x80070005 (refused, or full), 0x80004005 (failed), 0x80010001 (timed out), 462 (link gone).
/// One thread, one request at a time.
class PhoneServer {
public:
    virtual ~PhoneServer() = default;

    /// Removes an object. Removing an absent one succeeds.
    virtual void PXDDelete(TextView path) = 0;

    /// The names (without directory) of the files that match the pattern at the path's end
    /// ("*.vcs", case ignored), in ascending order of their number. No match is an empty list.
    /// Pure reading; `flags` is always 0.
    virtual std::vector<Text> PXDList(TextView pathWithPattern, int flags) = 0;

    /// Opens a file for reading.
    virtual PXDStream PXDRead(TextView path) = 0;

    /// Stores the stream under the path, replacing atomically; the name "new.vcf" asks the phone to
    /// choose the lowest free number, which it tells as LAST-USED-INDEX. `flags` is 0, or
    /// kPutBackFlag when a run is undone.
    virtual void PXDWrite(TextView path, const PXDStream& stream, int flags) = 0;

    /// Puts the bytes of an object back that this run deleted and did not write again since.
    /// Best effort: true when they are stored again.
    virtual bool restoreDeleted(TextView path) = 0;

    /// Called once at the end of a run: what was written is on disk afterwards. Throws like a
    /// write.
    virtual void flush() = 0;
};

/// The server library's free function: bytes and one moment for all three times.
inline PXDStream CreateStream(std::string bytes, Date created, Date modified, Date accessed) {
    return {std::move(bytes), created, modified, accessed, true};
}

/// The server library's free function: the bytes of a stream; an absent file is 0x80070002.
std::string CreateArray(PXDStream stream);

} // namespace tandolin
