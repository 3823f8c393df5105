#include "sync/store_flush.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

template <class Store>
bool flushed(Store* store, Place place) {
    return trapped(place, false, [store](bool& done) {
        if (store != nullptr) {
            store->flush();
        }
        done = true;
    });
}

} // namespace

bool flushStores(Place place) {
    const bool phone = flushed(app.phone.PXDServer.get(), place);
    const bool organizer = flushed(app.organizer.MOL.get(), place);
    return phone && organizer;
}

} // namespace tandolin
