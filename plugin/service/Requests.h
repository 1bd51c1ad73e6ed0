/// A host's request record as the library's.
#pragma once

#import "UMSServiceBundle/ServiceInfo.h"
#include "umsservice/ServiceInfo.h"

namespace umsplugin {

/// Refers to the host's `contents`, copies the texts.
umsservice::_serviceinfo toServiceInfo(const ::_serviceinfo& serviceInfo);

}  // namespace umsplugin
