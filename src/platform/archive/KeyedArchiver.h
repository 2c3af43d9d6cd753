#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/archive/PropertyList.h"

namespace vantrel {

/// Writes objects as a keyed archive. Objects are added first and filled by key afterwards, so that
/// they may refer to each other in circles. One thread at a time.
class KeyedArchiver {
 public:
  /// An object of the archive; nil when made from nothing. Good as long as its archiver, which must
  /// not move.
  class Object {
   public:
    Object() = default;
    /// Scalars stand inline in the object, the others as references.
    void encodeDouble(double value, std::string_view key) const;
    void encodeFloat(float value, std::string_view key) const;
    void encodeInt32(std::int32_t value, std::string_view key) const;
    void encodeBool(bool value, std::string_view key) const;
    void encodeObject(Object object, std::string_view key) const;

   private:
    friend class KeyedArchiver;
    Object(KeyedArchiver* archiver, std::uint64_t uid) : archiver_(archiver), uid_(uid) {}
    void encode(const PropertyList& value, std::string_view key) const;

    KeyedArchiver* archiver_ = nullptr;
    std::uint64_t uid_ = 0;
  };
  using ClassNames = std::vector<std::string>;

  KeyedArchiver();
  KeyedArchiver(const KeyedArchiver&) = delete;
  KeyedArchiver& operator=(const KeyedArchiver&) = delete;

  /// A new object of a class, named with its ancestors: {"VTObserver", "PinLocation", "NSObject"}.
  Object addObject(const ClassNames& classNames);
  /// A text; equal texts are one object.
  Object addString(const std::string& text);
  /// A boxed number, a date or data.
  Object addValue(PropertyList value);
  /// An array, or with other class names a set.
  Object addArray(std::span<const Object> elements,
                  const ClassNames& classNames = {"NSArray", "NSObject"});
  Object addDictionary(std::span<const std::pair<Object, Object>> entries);

  /// The archive of an object and all that was added.
  Data archivedDataWithRootObject(Object root) const;

 private:
  std::uint64_t classUid(const ClassNames& classNames);

  std::vector<PropertyList> objects_;
  std::map<std::string, std::uint64_t> strings_;
  std::map<ClassNames, std::uint64_t> classes_;
};

}  // namespace vantrel
