#include "objectstore/sqlite/ModelCache.h"

#include <zlib.h>

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace vantrel {

namespace {

/// Negative: raw DEFLATE, without a header.
constexpr int kWindowBits = -15;
constexpr int kMemoryLevel = 8;
/// Far larger than any real model.
constexpr std::size_t kLargestModel = std::size_t{16} << 20;

Bytef* octets(const std::byte* bytes) {
  return reinterpret_cast<Bytef*>(const_cast<std::byte*>(bytes));
}

std::optional<Data> inflated(std::span<const std::byte> data) {
  z_stream stream = {};
  if (data.size() > kLargestModel || inflateInit2(&stream, kWindowBits) != Z_OK) {
    return std::nullopt;
  }
  stream.next_in = octets(data.data());
  stream.avail_in = static_cast<uInt>(data.size());
  Data result;
  int code = Z_OK;
  while (code == Z_OK && result.size() < kLargestModel) {
    const std::size_t before = result.size();
    result.resize(std::max<std::size_t>(before * 2, data.size() * 4 + 64));
    stream.next_out = octets(&result[before]);
    stream.avail_out = static_cast<uInt>(result.size() - before);
    code = inflate(&stream, Z_NO_FLUSH);
    result.resize(result.size() - stream.avail_out);
  }
  inflateEnd(&stream);
  return code == Z_STREAM_END ? std::optional(std::move(result)) : std::nullopt;
}

Data deflated(std::span<const std::byte> data) {
  z_stream stream = {};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kWindowBits, kMemoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK) {
    return {};
  }
  Data result(deflateBound(&stream, static_cast<uLong>(data.size())));
  stream.next_in = octets(data.data());
  stream.avail_in = static_cast<uInt>(data.size());
  stream.next_out = octets(result.data());
  stream.avail_out = static_cast<uInt>(result.size());
  const int code = deflate(&stream, Z_FINISH);
  result.resize(result.size() - stream.avail_out);
  deflateEnd(&stream);
  return code == Z_STREAM_END ? result : Data();
}

/// The objects of a keyed archive, to which others are added.
class ArchivedObjects {
 public:
  explicit ArchivedObjects(PropertyList::Array objects) : objects_(std::move(objects)) {}

  PropertyList add(PropertyList object) {
    objects_.push_back(std::move(object));
    return PropertyList::uid(objects_.size() - 1);
  }
  PropertyList addClass(std::initializer_list<const char*> names) {
    PropertyList description = PropertyList::dictionary();
    PropertyList hierarchy = PropertyList::array();
    for (const char* name : names) hierarchy.append(PropertyList::string(name));
    description.set("$classname", PropertyList::string(*names.begin()));
    description.set("$classes", std::move(hierarchy));
    return add(std::move(description));
  }
  PropertyList& at(std::uint64_t number) { return objects_[number]; }
  std::size_t count() const { return objects_.size(); }
  PropertyList list() && { return PropertyList::array(std::move(objects_)); }

 private:
  PropertyList::Array objects_;
};

/// Replaces the dictionary of entities by one of the class that the phone uses in stores: an array
/// of names, in a "search mapping", and one of entities. Null if `archive` is not a model's.
PropertyList withKnownKeys(PropertyList archive) {
  ArchivedObjects objects(archive["$objects"].items());
  const auto root = archive["$top"]["root"].asUid();
  if (!root || *root >= objects.count()) return {};
  const auto entities = objects.at(*root)["NSEntities"].asUid();
  if (!entities || *entities >= objects.count()) return {};
  const PropertyList names = objects.at(*entities)["NS.keys"];
  const PropertyList values = objects.at(*entities)["NS.objects"];

  const PropertyList arrayClass = objects.addClass({"NSArray", "NSObject"});
  const auto addArray = [&](const PropertyList& items) {
    PropertyList array = PropertyList::dictionary();
    array.set("NS.objects", items);
    array.set("$class", arrayClass);
    return objects.add(std::move(array));
  };
  PropertyList mapping = PropertyList::dictionary();
  mapping.set("$class", objects.addClass({"NSKnownKeysMappingStrategy1",
                                          "NSKnownKeysMappingStrategy", "NSObject"}));
  mapping.set("length", PropertyList::integer(static_cast<std::int64_t>(names.count())));
  mapping.set("keys", addArray(names));
  mapping.set("version", PropertyList::integer(1));

  PropertyList dictionary = PropertyList::dictionary();
  dictionary.set("values", addArray(values));
  dictionary.set("$class", objects.addClass({"NSKnownKeysDictionary1", "NSKnownKeysDictionary",
                                             "NSMutableDictionary", "NSDictionary", "NSObject"}));
  dictionary.set("searchMapping", objects.add(std::move(mapping)));
  dictionary.set("emptyToken",
                 objects.add(PropertyList::string("__empty_slot_token_4c24_98dc_ac1e_b773__")));
  dictionary.set("version", PropertyList::integer(1));
  objects.at(*entities) = std::move(dictionary);
  archive.set("$objects", std::move(objects).list());
  return archive;
}

}  // namespace

std::unique_ptr<ManagedObjectModel> modelFromCache(std::span<const std::byte> content) {
  const auto archive = inflated(content);
  if (!archive) return nullptr;
  auto model = ManagedObjectModel::modelWithData(*archive);
  return model ? std::make_unique<ManagedObjectModel>(std::move(*model)) : nullptr;
}

Data modelCacheContent(const ManagedObjectModel& model) {
  if (model.archiveUrl().empty()) return {};
  auto archive = PropertyList::propertyListWithContentsOfURL(model.archiveUrl());
  const PropertyList cached = archive ? withKnownKeys(std::move(*archive)) : PropertyList();
  return cached ? deflated(cached.binaryData()) : Data();
}

}  // namespace vantrel
