/// The host's arrays and dictionaries as the library sees them: references, not copies.
///
/// Each keeps the host's object retained and asks it anew for every element, so the library sees what the
/// host sees, and a dictionary that an operation changes is the host's own. An object that cannot be changed
/// is replaced here by a changeable copy at the first change; the host's stays as it was. Calls from any
/// thread; each is one step for everyone who synchronizes on the host's object.
#pragma once

#import <Foundation/Foundation.h>

#include "umsservice/Value.h"

namespace umsplugin {

class HostArray final : public umsservice::ArrayStorage {
 public:
  explicit HostArray(NSArray* array) : array_([array retain]) {}
  ~HostArray() override;
  HostArray(const HostArray&) = delete;
  HostArray& operator=(const HostArray&) = delete;

  NSArray* object() const { return array_; }

  size_t count() const override;
  /// What `objectAtIndex:` answers, nil included.
  umsservice::Value at(size_t index) const override;
  void append(umsservice::Value value) override;
  void removeAt(size_t index) override;
  void assign(std::vector<umsservice::Value> values) override;
  std::vector<umsservice::Value> snapshot() const override;

 private:
  NSMutableArray* changeable();

  NSArray* array_;
};

class HostDictionary final : public umsservice::DictionaryStorage {
 public:
  explicit HostDictionary(NSDictionary* dictionary) : dictionary_([dictionary retain]) {}
  ~HostDictionary() override;
  HostDictionary(const HostDictionary&) = delete;
  HostDictionary& operator=(const HostDictionary&) = delete;

  NSDictionary* object() const { return dictionary_; }

  umsservice::Value get(std::string_view key) const override;
  void set(std::string_view key, umsservice::Value value) override;
  /// The keys that are texts, sorted.
  std::vector<std::string> keys() const override;

 private:
  NSDictionary* dictionary_;
};

/// An object that is no property-list value: passed through, never looked into.
class HostObject final : public umsservice::ForeignObject {
 public:
  explicit HostObject(id object) : object_([object retain]) {}
  ~HostObject() override;
  HostObject(const HostObject&) = delete;
  HostObject& operator=(const HostObject&) = delete;

  id object() const { return object_; }
  std::string description() const override;
  bool isEqual(const umsservice::ForeignObject& other) const override;

 private:
  const id object_;
};

}  // namespace umsplugin
