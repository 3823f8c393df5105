#pragma once

#include "core/text.h"

namespace tandolin {

/// Resource libraries with the translated texts. A handle of 0 means failure.
class LanguageLibrary {
public:
    virtual ~LanguageLibrary() = default;
    /// Opens the library at the path; 0 when it cannot be loaded, `lastError` then says why.
    virtual int open(TextView path) = 0;
    [[nodiscard]] virtual int lastError() const = 0;
    /// The text of an id; empty when the library has none.
    virtual Text string(int handle, int id) = 0;
    /// Releases a library; the handle 0 is allowed and does nothing.
    virtual void free(int handle) = 0;
};

} // namespace tandolin
