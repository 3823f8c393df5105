#include "core/failure.h"

#include <new>

namespace tandolin {

Failure overflowFailure() {
    return {failure_number::kOverflow, u"Overflow"};
}

Failure typeMismatch(TextView text) {
    constexpr std::size_t kShown = 60;
    Text words = u"Type mismatch: \"";
    words += text.substr(0, kShown);
    words += text.size() > kShown ? u"...\"" : u"\"";
    return {failure_number::kTypeMismatch, std::move(words)};
}

Failure currentFailure() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const std::bad_alloc&) {
        return {failure_number::kOutOfMemory, u"Out of memory"};
    } catch (const std::exception& other) {
        return {failure_number::kInternal, fromUtf8(other.what())};
    } catch (...) {
        return {failure_number::kInternal, u"Internal error"};
    }
}

} // namespace tandolin
