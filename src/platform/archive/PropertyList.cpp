#include "platform/archive/PropertyList.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "base/FileDescriptor.h"
#include "platform/archive/BinaryPropertyList.h"
#include "platform/archive/XmlPropertyList.h"

namespace vantrel {

namespace {

Error fileError(int code, const std::filesystem::path& url) {
  return {"POSIX",
          code,
          url.string() + ": " + std::error_code(code, std::generic_category()).message(),
          {}};
}

}  // namespace

Expected<Data> dataWithContentsOfURL(const std::filesystem::path& url) {
  const auto file = openRegularFile(url.c_str());
  auto data = file ? readAll(file, PropertyList::kMaxBytes) : std::nullopt;
  if (!data) return tl::unexpected(fileError(errno, url));
  return std::move(*data);
}

Expected<PropertyList> PropertyList::propertyListWithData(std::span<const std::byte> data) {
  std::optional<PropertyList> list;
  if (data.size() <= kMaxBytes) {
    const std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    list = text.starts_with(kBinaryPropertyListMark) ? propertyListWithBinary(data)
                                                     : propertyListWithXml(data);
  }
  if (list) return std::move(*list);
  return tl::unexpected(Error{"PropertyList", 1, "The property list is damaged or too large.", {}});
}

Expected<PropertyList> PropertyList::propertyListWithContentsOfURL(
    const std::filesystem::path& url) {
  const auto data = dataWithContentsOfURL(url);
  if (!data) return tl::unexpected(data.error());
  auto list = propertyListWithData(*data);
  if (!list) list.error().localizedDescription.insert(0, url.string() + ": ");
  return list;
}

Data PropertyList::binaryData() const {
  return binaryWithPropertyList(*this);
}

PropertyList::Kind PropertyList::kind() const {
  constexpr std::array kKinds = {Kind::kNull, Kind::kBoolean, Kind::kInteger, Kind::kInteger,
                                 Kind::kReal, Kind::kReal,    Kind::kString,  Kind::kDate,
                                 Kind::kData, Kind::kUid,     Kind::kArray,   Kind::kDictionary};
  static_assert(kKinds.size() == std::variant_size_v<Value>);
  return kKinds[value_.index()];
}

std::optional<std::int64_t> PropertyList::asInteger() const {
  if (const auto* large = std::get_if<std::uint64_t>(&value_)) {
    return static_cast<std::int64_t>(*large);
  }
  return as<std::int64_t>();
}

std::optional<double> PropertyList::asReal() const {
  if (const auto* single = std::get_if<float>(&value_)) return double{*single};
  return as<double>();
}

std::optional<std::uint64_t> PropertyList::asUid() const {
  const auto* uid = std::get_if<Uid>(&value_);
  return uid ? std::optional(uid->number) : std::nullopt;
}

const PropertyList::Array& PropertyList::items() const& {
  static const Array empty;
  const auto* array = std::get_if<Array>(&value_);
  return array ? *array : empty;
}

const PropertyList::Dictionary& PropertyList::entries() const& {
  static const Dictionary empty;
  const auto* dictionary = std::get_if<Dictionary>(&value_);
  return dictionary ? *dictionary : empty;
}

const PropertyList& PropertyList::operator[](std::string_view key) const& {
  static const PropertyList nothing;
  const auto& all = entries();
  const auto found =
      std::find_if(all.rbegin(), all.rend(), [&](const auto& entry) { return entry.first == key; });
  return found == all.rend() ? nothing : found->second;
}

void PropertyList::set(std::string_view key, PropertyList value) {
  auto* all = std::get_if<Dictionary>(&value_);
  if (!all) return;
  const auto isIt = [&](const auto& entry) { return entry.first == key; };
  if (!value) {
    std::erase_if(*all, isIt);
  } else if (const auto found = std::find_if(all->rbegin(), all->rend(), isIt);
             found != all->rend()) {
    found->second = std::move(value);
  } else {
    all->emplace_back(key, std::move(value));
  }
}

void PropertyList::append(PropertyList value) {
  auto* array = std::get_if<Array>(&value_);
  if (array && value) array->push_back(std::move(value));
}

}  // namespace vantrel
