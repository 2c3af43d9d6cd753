#include "platform/archive/KeyedArchiver.h"

namespace vantrel {

namespace {

constexpr std::int64_t kVersion = 100000;

}  // namespace

void KeyedArchiver::Object::encode(const PropertyList& value, std::string_view key) const {
  if (archiver_) archiver_->objects_[uid_].set(key, value);
}

void KeyedArchiver::Object::encodeDouble(double value, std::string_view key) const {
  encode(PropertyList::real(value), key);
}

void KeyedArchiver::Object::encodeFloat(float value, std::string_view key) const {
  encode(PropertyList::realOfSinglePrecision(value), key);
}

void KeyedArchiver::Object::encodeInt32(std::int32_t value, std::string_view key) const {
  encode(PropertyList::integer(value), key);
}

void KeyedArchiver::Object::encodeBool(bool value, std::string_view key) const {
  encode(PropertyList::boolean(value), key);
}

void KeyedArchiver::Object::encodeObject(Object object, std::string_view key) const {
  encode(PropertyList::uid(object.uid_), key);
}

KeyedArchiver::KeyedArchiver() {
  objects_.push_back(PropertyList::string("$null"));
}

KeyedArchiver::Object KeyedArchiver::addValue(PropertyList value) {
  objects_.push_back(std::move(value));
  return Object(this, objects_.size() - 1);
}

std::uint64_t KeyedArchiver::classUid(const ClassNames& classNames) {
  auto& uid = classes_[classNames];
  if (uid != 0) return uid;
  auto record = PropertyList::dictionary();
  auto names = PropertyList::array();
  for (const auto& name : classNames) names.append(PropertyList::string(name));
  record.set("$classname", PropertyList::string(classNames.empty() ? "" : classNames.front()));
  record.set("$classes", names);
  uid = addValue(std::move(record)).uid_;
  return uid;
}

KeyedArchiver::Object KeyedArchiver::addObject(const ClassNames& classNames) {
  const auto object = addValue(PropertyList::dictionary());
  object.encode(PropertyList::uid(classUid(classNames)), "$class");
  return object;
}

KeyedArchiver::Object KeyedArchiver::addString(const std::string& text) {
  auto& uid = strings_[text];
  if (uid == 0) uid = addValue(PropertyList::string(text)).uid_;
  return Object(this, uid);
}

KeyedArchiver::Object KeyedArchiver::addArray(std::span<const Object> elements,
                                              const ClassNames& classNames) {
  const auto object = addObject(classNames);
  auto references = PropertyList::array();
  for (const auto& element : elements) references.append(PropertyList::uid(element.uid_));
  object.encode(references, "NS.objects");
  return object;
}

KeyedArchiver::Object KeyedArchiver::addDictionary(
    std::span<const std::pair<Object, Object>> entries) {
  std::vector<Object> values;
  auto keys = PropertyList::array();
  for (const auto& [key, value] : entries) {
    keys.append(PropertyList::uid(key.uid_));
    values.push_back(value);
  }
  const auto object = addArray(values, {"NSDictionary", "NSObject"});
  object.encode(keys, "NS.keys");
  return object;
}

Data KeyedArchiver::archivedDataWithRootObject(Object root) const {
  auto top = PropertyList::dictionary();
  top.set("root", PropertyList::uid(root.uid_));
  auto archive = PropertyList::dictionary();
  archive.set("$version", PropertyList::integer(kVersion));
  archive.set("$archiver", PropertyList::string("NSKeyedArchiver"));
  archive.set("$top", top);
  archive.set("$objects", PropertyList::array(objects_));
  return archive.binaryData();
}

}  // namespace vantrel
