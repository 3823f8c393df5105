#include "core/ports/phone_server.h"

#include "core/failure.h"

namespace tandolin {

std::string CreateArray(PXDStream stream) {
    if (!stream.found) {
        throw Failure(failure_number::kNotFound, u"The phone has no such file");
    }
    return std::move(stream.bytes);
}

} // namespace tandolin
