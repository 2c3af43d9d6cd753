#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Writes objects as a keyed archive. Objects are added first and filled afterwards, so that they
/// can refer to each other in cycles. For example,
///
///     KeyedArchiver archiver;
///     const auto pin = archiver.addObject({"Pin", "NSObject"});
///     pin.encodeDouble(41.39, "latitude");
///     pin.encodeObject(archiver.addValue(PropertyList::string("Home")), "name");
///     archiver.archivedDataWithRootObject(pin);
///
/// writes this property list, where UID(n) is a reference to element n of $objects:
///
///     {"$version": 100000, "$archiver": "NSKeyedArchiver", "$top": {"root": UID(1)},
///      "$objects": ["$null", {"$class": UID(2), "latitude": 41.39, "name": UID(3)},
///                   {"$classname": "Pin", "$classes": ["Pin", "NSObject"]}, "Home"]}
///
/// Not thread-safe.
class KeyedArchiver {
 public:
  /// An object in the archive, by default nil. Valid while its archiver exists.
  class Object {
   public:
    Object() = default;
    void encodeDouble(double value, std::string_view key) const {
      encode(PropertyList::real(value), key);
    }
    void encodeFloat(float value, std::string_view key) const {
      encode(PropertyList::realOfSinglePrecision(value), key);
    }
    void encodeInt32(std::int32_t value, std::string_view key) const {
      encode(PropertyList::integer(value), key);
    }
    void encodeBool(bool value, std::string_view key) const {
      encode(PropertyList::boolean(value), key);
    }
    void encodeObject(Object object, std::string_view key) const {
      encode(object.reference(), key);
    }
    /// Sets `key` of an object that `addObject` returned. Scalars are stored inline.
    void encode(const PropertyList& value, std::string_view key) const;
    PropertyList reference() const { return PropertyList::uid(uid_); }

   private:
    friend class KeyedArchiver;
    Object(KeyedArchiver* archiver, std::uint64_t uid) : archiver_(archiver), uid_(uid) {}

    KeyedArchiver* archiver_ = nullptr;
    std::uint64_t uid_ = 0;
  };
  using ClassNames = std::vector<std::string>;

  KeyedArchiver() : objects_{PropertyList::string("$null")} {}
  KeyedArchiver(KeyedArchiver&&) = delete;

  /// Adds an object of a class, given with its ancestors: {"VTObserver", "PinLocation",
  /// "NSObject"}.
  Object addObject(const ClassNames& classNames);
  /// Adds a string, a number, a date or data.
  Object addValue(PropertyList value);

  /// Returns the archive of all added objects.
  Data archivedDataWithRootObject(Object root) const;

 private:
  std::vector<PropertyList> objects_;
  std::map<ClassNames, Object> classes_;
};

}  // namespace vantrel
