/// The host's arrays and dictionaries as the library sees them: references, not copies.
///
/// Each keeps the host's object retained and asks it anew for every element, so the library sees what the
/// host sees, and a dictionary that an operation changes is the host's own. An object that cannot be changed,
/// or that raises at the attempt, is replaced here by a changeable copy at the first change; the host's stays
/// as it was. Calls from any thread; each is one step among those of the library.
#pragma once

#import <Foundation/Foundation.h>

#include <mutex>

#include "umsservice/Value.h"

namespace umsplugin {

/// The object behind a container, and how it is exchanged for a changeable copy.
class HostCollection {
 public:
  HostCollection(id object, Class changeable) : object_([object retain]), changeable_(changeable) {}
  ~HostCollection();
  HostCollection(const HostCollection&) = delete;
  HostCollection& operator=(const HostCollection&) = delete;

  /// The present one, autoreleased.
  id object() const;
  /// Runs `change` on the object, or else on its copy, while holding the section of that object.
  void change(const std::function<void(id)>& change);

 private:
  id exchanged(id before);

  mutable std::mutex mutex_;  ///< for the pointer only
  id object_;
  const Class changeable_;
};

class HostArray final : public umsservice::ArrayStorage {
 public:
  explicit HostArray(NSArray* array) : array_(array, [NSMutableArray class]) {}

  /// Autoreleased.
  NSArray* object() const { return array_.object(); }

  size_t count() const override;
  /// What `objectAtIndex:` answers, nil included.
  umsservice::Value at(size_t index) const override;
  void append(umsservice::Value value) override;
  bool edit(const std::function<bool(std::vector<umsservice::Value>&)>& change) override;
  umsservice::MaybeString description() const override;
  void removeAt(size_t index) override;
  void assign(std::vector<umsservice::Value> values) override;
  std::vector<umsservice::Value> snapshot() const override;

 private:
  HostCollection array_;
};

class HostDictionary final : public umsservice::DictionaryStorage {
 public:
  explicit HostDictionary(NSDictionary* dictionary) : dictionary_(dictionary, [NSMutableDictionary class]) {}

  /// Autoreleased.
  NSDictionary* object() const { return dictionary_.object(); }

  umsservice::Value get(std::string_view key) const override;
  void set(std::string_view key, umsservice::Value value) override;
  /// The keys that are texts, sorted.
  std::vector<std::string> keys() const override;
  /// With the keys that are no texts.
  std::shared_ptr<umsservice::DictionaryStorage> mutableCopy() const override;
  umsservice::MaybeString description() const override;

 private:
  HostCollection dictionary_;
};

/// An object that is no property-list value, or a number that only the platform can write: passed through,
/// never looked into.
class HostObject final : public umsservice::ForeignObject {
 public:
  explicit HostObject(id object) : object_([object retain]) {}
  ~HostObject() override;
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  id object() const { return object_; }
  std::string description() const override;
  bool isEqual(const umsservice::ForeignObject& other) const override;
  umsservice::Value number() const override;

 private:
  const id object_;
};

}  // namespace umsplugin
