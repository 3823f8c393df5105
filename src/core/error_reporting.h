#pragma once

#include "core/failure.h"
#include "core/text.h"

#include <functional>

namespace tandolin {

/// Module and procedure names of a trap; they reach the log as they stand.
struct Place {
    TextView module;
    TextView proc;
};

/// Takes a reported failure. `message` is the sentence for the user, empty when the number has
/// none.
using ProgramErrorHook = void (*)(const Failure& failure, TextView message, Place place);

/// The error reporter, end of every trap. Turns the number into a sentence, shows it unless the run
/// is silent (or the description holds "~", or the organizer has failed before in this run), hands
/// it to the log and clears the failure. A failure 462 releases the phone server object.
/// A failure with the number 0 is only cleared. It has no trap of its own.
void ReportError(Failure& failure, Place place, TextView extraText = {});

/// The sentence of a failure number, lines joined by CR LF; empty when it has none.
/// The sentence for a refused access differs between the module "PXD" and all others.
Text failureSentence(std::int32_t number, TextView module);

} // namespace tandolin
