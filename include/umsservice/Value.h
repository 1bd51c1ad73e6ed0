/// The property-list values that cross every door of the library: arguments, dictionaries of notifications,
/// content lists, disk information.
///
/// `Value` is a value type; `Array` and `Dictionary` are references: copies of a handle show the same
/// container, as a host of the desktop frameworks expects of a mutable array that it was given.
/// Each call on a container is atomic; a sequence of calls is not. See `Environment.h` for who uses them.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "umsservice/Export.h"

namespace umsservice {

/// Text that may be absent. Absent ("nil") and empty are different answers throughout the library.
using MaybeString = std::optional<std::string>;

/// Uninterpreted bytes, for example a cover picture.
using Data = std::vector<std::byte>;

class UMS_EXPORT Array;
class UMS_EXPORT ArrayStorage;
class UMS_EXPORT Dictionary;
class UMS_EXPORT DictionaryStorage;
class UMS_EXPORT Value;

/// The object that stands for "no value" inside a container, where nil cannot be stored by a host.
struct Null {
  bool operator==(const Null&) const = default;
};

/// An object of the host's frameworks that is no property-list value, for example a date or an image. The
/// library passes it on untouched; in a document or a log line it stands by its description.
class UMS_EXPORT ForeignObject {
 public:
  virtual ~ForeignObject() = default;
  virtual std::string description() const = 0;
  /// Asked about another one of the same host.
  virtual bool isEqual(const ForeignObject& other) const = 0;
  /// The amount, for a number that no kind of `Value` holds as the host shows it (a single-precision or a
  /// decimal one): it counts as a number then. Nil for every other object.
  virtual Value number() const;
};

/// One property-list value. Nil is the default.
class UMS_EXPORT Value {
 public:
  /// What a value holds (`Absent` is nil, a name that the desktop's headers have taken); numbers keep the
  /// width and the signedness that they were made with.
  enum class Kind {
    Absent,
    Null,
    Boolean,
    Int32,
    UInt32,
    Int64,
    UInt64,
    Real,
    String,
    Data,
    Array,
    Dictionary,
    Foreign
  };

  Value() = default;
  Value(std::nullptr_t) {}
  Value(Null null) : held_(null) {}
  Value(bool flag) : held_(flag) {}
  Value(double real) : held_(real) {}
  /// A null pointer gives nil.
  Value(const char* text) {
    if (text) held_ = std::string(text);
  }
  Value(std::string_view text) : held_(std::string(text)) {}
  Value(std::string text) : held_(std::move(text)) {}
  /// Absent text gives nil.
  Value(MaybeString text);
  Value(Data bytes) : held_(std::make_shared<const Data>(std::move(bytes))) {}
  Value(const Array& array);
  Value(const Dictionary& dictionary);
  Value(Dictionary&& dictionary);
  /// A null pointer gives nil.
  Value(std::shared_ptr<ForeignObject> object) {
    if (object) held_ = std::move(object);
  }
  /// Integers of up to 32 bits become 32-bit numbers, wider ones 64-bit numbers, of the same signedness.
  template <std::integral T>
  Value(T number) : held_(widened(number)) {}

  Kind kind() const { return static_cast<Kind>(held_.index()); }
  bool isNil() const { return kind() == Kind::Absent; }
  /// Numbers of the host's that stand by themselves count too (see `ForeignObject::number`).
  bool isNumber() const;

  /// The text of a string value; absent for every other kind.
  MaybeString string() const&;
  MaybeString string() &&;
  /// The text of a string value without a copy, or null; valid as long as this value.
  const std::string* stringIfAny() const { return std::get_if<std::string>(&held_); }
  /// The array or dictionary held (the same container, not a copy); absent for every other kind.
  std::optional<Array> array() const;
  std::optional<Dictionary> dictionary() const&;
  std::optional<Dictionary> dictionary() &&;
  /// The bytes of a data value, or null; shared, never changed.
  std::shared_ptr<const Data> data() const;
  /// The host's object held, or null.
  std::shared_ptr<ForeignObject> foreignObject() const;

  /// Numbers are cut to the width asked for, as a C conversion does; reals saturate. Strings are read as
  /// white space, sign and decimal digits, and saturate (below 0, an unsigned width takes the signed number's
  /// bits). Every other kind is 0.
  int32_t intValue() const;
  uint32_t unsignedIntValue() const;
  int64_t longLongValue() const;
  uint64_t unsignedLongLongValue() const;
  double doubleValue() const;
  /// True for a number that is not 0, and for text that begins (after white space, a sign and zeros) with
  /// one of "YyTt" or a digit from 1 to 9.
  bool boolValue() const;

  /// Deep equality; numbers are equal when their amounts are, whatever their widths.
  bool isEqual(const Value& other) const;

  /// The value in words, for log lines; nil gives "(null)".
  std::string description() const;

 private:
  using Held = std::variant<std::monostate, Null, bool, int32_t, uint32_t, int64_t, uint64_t, double,
                            std::string, std::shared_ptr<const Data>, std::shared_ptr<ArrayStorage>,
                            std::shared_ptr<DictionaryStorage>, std::shared_ptr<ForeignObject>>;

  template <std::integral T>
  static Held widened(T number) {
    if constexpr (std::signed_integral<T>) {
      if constexpr (sizeof(T) <= 4) return static_cast<int32_t>(number);
      return static_cast<int64_t>(number);
    } else {
      if constexpr (sizeof(T) <= 4) return static_cast<uint32_t>(number);
      return static_cast<uint64_t>(number);
    }
  }

  Held held_;
};

inline Value ForeignObject::number() const {
  return Value();
}

/// What an `Array` refers to. A host may supply its own, for example over an array of its frameworks;
/// every call must be safe from any thread.
class UMS_EXPORT ArrayStorage {
 public:
  virtual ~ArrayStorage() = default;
  virtual size_t count() const = 0;
  /// Nil for an element that is nil, and for an index at or past the end.
  virtual Value at(size_t index) const = 0;
  virtual void append(Value value) = 0;
  /// Changes the elements, and is true, when `change` is. One step for storages that say so, as the library's
  /// own does: nothing that another thread does is lost. `change` runs inside it and calls nobody.
  virtual bool edit(const std::function<bool(std::vector<Value>&)>& change) {
    std::vector<Value> changed = snapshot();
    if (!change(changed)) return false;
    assign(std::move(changed));
    return true;
  }
  /// The array in words where the host has its own for it.
  virtual MaybeString description() const { return std::nullopt; }
  /// An index at or past the end does nothing.
  virtual void removeAt(size_t index) = 0;
  /// Replaces all elements in one step: no reader sees an array in between.
  virtual void assign(std::vector<Value> values) = 0;
  virtual std::vector<Value> snapshot() const = 0;
  /// The same, never changed afterwards and shared where the storage can: nothing is copied then.
  virtual std::shared_ptr<const std::vector<Value>> elements() const {
    return std::make_shared<const std::vector<Value>>(snapshot());
  }
};

/// A reference to a mutable, ordered list of values; indexes are 0-based.
class UMS_EXPORT Array {
 public:
  /// A new, empty array.
  Array();
  Array(std::initializer_list<Value> values);
  explicit Array(std::vector<Value> values);
  explicit Array(std::shared_ptr<ArrayStorage> storage) : storage_(std::move(storage)) {}

  size_t count() const { return storage_->count(); }
  bool empty() const { return count() == 0; }
  Value at(size_t index) const { return storage_->at(index); }
  void append(Value value) { storage_->append(std::move(value)); }
  /// Changes the elements in one step (see `ArrayStorage`).
  bool edit(const std::function<bool(std::vector<Value>&)>& change) { return storage_->edit(change); }
  void removeAt(size_t index) { storage_->removeAt(index); }
  void assign(std::vector<Value> values) { storage_->assign(std::move(values)); }
  /// The elements as they are now.
  std::vector<Value> snapshot() const { return storage_->snapshot(); }
  /// The elements as they are now, to be read only; cheaper than `snapshot` for a long array.
  std::shared_ptr<const std::vector<Value>> elements() const { return storage_->elements(); }
  /// A new array with the same elements.
  Array mutableCopy() const { return Array(snapshot()); }
  /// True when both refer to the same container.
  bool isSame(const Array& other) const { return storage_ == other.storage_; }
  const std::shared_ptr<ArrayStorage>& storage() const { return storage_; }

 private:
  std::shared_ptr<ArrayStorage> storage_;
};

/// What a `Dictionary` refers to; the same contract as `ArrayStorage`.
class UMS_EXPORT DictionaryStorage {
 public:
  virtual ~DictionaryStorage() = default;
  /// Nil for a key that is not there.
  virtual Value get(std::string_view key) const = 0;
  /// A nil value removes the key.
  virtual void set(std::string_view key, Value value) = 0;
  /// In a stable order.
  virtual std::vector<std::string> keys() const = 0;
  /// A copy of the host's own kind, with whatever the host keeps in it beside text keys. Null lets the
  /// library copy the entries.
  virtual std::shared_ptr<DictionaryStorage> mutableCopy() const { return nullptr; }
  /// The dictionary in words where the host has its own for it.
  virtual MaybeString description() const { return std::nullopt; }
};

/// A reference to a mutable table from text keys to values.
class UMS_EXPORT Dictionary {
 public:
  /// A new, empty dictionary.
  Dictionary();
  /// Of several entries with one key the last counts; nil values are left out.
  Dictionary(std::initializer_list<std::pair<std::string, Value>> entries);
  /// The same out of entries that are given away. Made fastest when they are in the order of their keys.
  explicit Dictionary(std::vector<std::pair<std::string, Value>> entries);
  explicit Dictionary(std::shared_ptr<DictionaryStorage> storage) : storage_(std::move(storage)) {}

  Value get(std::string_view key) const { return storage_->get(key); }
  void set(std::string_view key, Value value) { storage_->set(key, std::move(value)); }
  void remove(std::string_view key) { storage_->set(key, Value()); }
  bool contains(std::string_view key) const { return !get(key).isNil(); }
  std::vector<std::string> keys() const { return storage_->keys(); }
  size_t count() const { return keys().size(); }
  /// The text under a key; absent when the key is missing or holds something else.
  MaybeString string(std::string_view key) const { return get(key).string(); }
  /// A new dictionary with the same entries (the values are not copied).
  Dictionary mutableCopy() const;
  /// Same keys with equal values.
  bool isEqualToDictionary(const Dictionary& other) const;
  /// True when both refer to the same container.
  bool isSame(const Dictionary& other) const { return storage_ == other.storage_; }
  const std::shared_ptr<DictionaryStorage>& storage() const { return storage_; }

 private:
  friend class Value;
  std::shared_ptr<DictionaryStorage> storage_;
};

using MaybeArray = std::optional<Array>;
using MaybeDictionary = std::optional<Dictionary>;

}  // namespace umsservice
