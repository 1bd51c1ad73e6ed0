/// How the library's notifiers and the host's `OVUmsDeviceNotifier` objects find each other.
#pragma once

#import "UMSServiceBundle/OVUmsDeviceNotifier.h"
#include "umsservice/OVUmsDeviceNotifier.h"

namespace umsplugin {

/// The library's notifier in a host's object; null for nil, for another class, and for one that was given
/// back.
umsservice::OVUmsDeviceNotifier* notifierIn(id object);

/// An object for the notifier of a run that lives on after it; nil when the context is none. Give it back
/// when the call that it was made for has ended.
OVUmsDeviceNotifier* borrowedNotifier(umsservice::TransferContext* context);
/// Ends the loan and releases the object.
void giveBackNotifier(OVUmsDeviceNotifier* notifier);

}  // namespace umsplugin
