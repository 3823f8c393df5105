#include "formats/contact_compares.h"

#include <algorithm>
#include <iterator>

namespace tandolin {

namespace {

constexpr TextView kScheme = u"http://";

} // namespace

TextView URLwithouthttp(TextView text) {
    return text.find(kScheme) == TextView::npos ? text : text.substr(kScheme.size());
}

Text digitsOf(TextView number) {
    Text digits;
    std::ranges::copy_if(number, std::back_inserter(digits),
                         [](char16_t c) { return c >= u'0' && c <= u'9'; });
    return digits;
}

namespace codec {

bool CheckvCardString(TextView a, TextView b) {
    return upper(b) <= upper(a);
}

bool CheckURL(TextView a, TextView b) {
    if (CheckvCardString(a, b)) {
        return true;
    }
    const TextView plainA = URLwithouthttp(a);
    const TextView plainB = URLwithouthttp(b);
    const bool aHasScheme = plainA.size() != a.size();
    const bool bHasScheme = plainB.size() != b.size();
    if (aHasScheme == bHasScheme) {
        return false;
    }
    return aHasScheme ? CheckvCardString(b, plainA) : CheckvCardString(a, plainB);
}

bool ComparePhoneNumbers(TextView a, TextView b) {
    // `b` serves as the mode of a compare of `a` with "1"; only two modes exist.
    const auto mode = wholeNumber(b);
    const bool modeExists = mode == 0 || mode == 1;
    return (modeExists && a == u"1") || digitsOf(a) == digitsOf(b);
}

} // namespace codec

} // namespace tandolin
