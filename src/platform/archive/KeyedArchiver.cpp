#include "platform/archive/KeyedArchiver.h"

namespace vantrel {

void KeyedArchiver::Object::encode(const PropertyList& value, std::string_view key) const {
  archiver_->objects_[uid_].set(key, value);
}

KeyedArchiver::Object KeyedArchiver::addValue(PropertyList value) {
  objects_.push_back(std::move(value));
  return Object(this, objects_.size() - 1);
}

KeyedArchiver::Object KeyedArchiver::addObject(const ClassNames& classNames) {
  const auto object = addValue(PropertyList::dictionary());
  const auto [known, isNew] = classes_.try_emplace(classNames);
  if (isNew) {
    auto names = PropertyList::array();
    for (const auto& name : classNames) names.append(PropertyList::string(name));
    known->second = addValue(PropertyList::dictionary());
    known->second.encode(names.items().front(), "$classname");
    known->second.encode(names, "$classes");
  }
  object.encodeObject(known->second, "$class");
  return object;
}

Data KeyedArchiver::archivedDataWithRootObject(Object root) const {
  constexpr std::int64_t kVersion = 100000;
  auto top = PropertyList::dictionary();
  top.set("root", root.reference());
  auto archive = PropertyList::dictionary();
  archive.set("$version", PropertyList::integer(kVersion));
  archive.set("$archiver", PropertyList::string("NSKeyedArchiver"));
  archive.set("$top", top);
  archive.set("$objects", PropertyList::array(objects_));
  return archive.binaryData();
}

}  // namespace vantrel
