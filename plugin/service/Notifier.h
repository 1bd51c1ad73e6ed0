/// How the library's notifiers and the host's `OVUmsDeviceNotifier` objects find each other. Each notifier of
/// a service's run is made together with its object, and whoever holds one of the two has both.
#pragma once

#import "UMSServiceBundle/OVUmsDeviceNotifier.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsplugin {

/// The library's notifier in a host's object, which lives at least to the end of the pool; null for nil and
/// for another class.
umsservice::OVUmsDeviceNotifier* notifierIn(id object);

/// The object of a notifier; nil for a context that is none.
OVUmsDeviceNotifier* objectOf(umsservice::TransferContext* context);

}  // namespace umsplugin
