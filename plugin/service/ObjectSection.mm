#include "service/ObjectSection.h"

#include <objc/objc-sync.h>

#include "bridge/CallbackScope.h"
#include "bridge/Text.h"

namespace umsplugin {

ObjectSection::ObjectSection(id object)
    : object_(object),
      description_(inCallback([object] { return toText([object description]).value_or(""); })) {}

void ObjectSection::lock() {
  objc_sync_enter(object_);
}

void ObjectSection::unlock() {
  objc_sync_exit(object_);
}

void ObjectSection::forget() {
  std::lock_guard lock(use_);
  isThere_ = false;
}

}  // namespace umsplugin
