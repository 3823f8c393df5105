#pragma once

#include "core/text.h"

namespace tandolin {

/// The text without its scheme "http://". Wanted: a scheme further in costs as many characters at
/// the front.
TextView URLwithouthttp(TextView text);

/// The digits of a number, in their order.
Text digitsOf(TextView number);

// Compares of contacts in two strengths bear the same names. These are the codec's, which let more
// pass than what is equal; none of them may decide what becomes of an entry. Those that do are in
// sync/contact_rules.h.
namespace codec {

/// Equal without regard to case, or `b` sorts before `a`.
bool CheckvCardString(TextView a, TextView b);

/// The same address, the scheme of one side left out.
bool CheckURL(TextView a, TextView b);

/// The same digits. Wanted: "1" and a `b` of 0 or 1 are the same number too.
bool ComparePhoneNumbers(TextView a, TextView b);

} // namespace codec

} // namespace tandolin
