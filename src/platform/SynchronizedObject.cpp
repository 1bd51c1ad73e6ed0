#include "umsservice/SynchronizedObject.h"

#include <mutex>

namespace umsservice {
namespace {

class PlainObject final : public SynchronizedObject {
 public:
  void lock() override { section_.lock(); }
  void unlock() override { section_.unlock(); }
  std::string description() const override { return {}; }

 private:
  std::recursive_mutex section_;
};

}  // namespace

std::shared_ptr<SynchronizedObject> makeSynchronizedObject() {
  return std::make_shared<PlainObject>();
}

}  // namespace umsservice
