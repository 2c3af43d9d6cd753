#include "ModelSource.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <optional>
#include <sstream>

namespace vantrel {

namespace {

constexpr std::pair<std::string_view, AttributeType> kTypes[] = {
    {"integer16", AttributeType::kInteger16},
    {"integer32", AttributeType::kInteger32},
    {"integer64", AttributeType::kInteger64},
    {"boolean", AttributeType::kBoolean},
    {"decimal", AttributeType::kDecimal},
    {"double", AttributeType::kDouble},
    {"float", AttributeType::kFloat},
    {"date", AttributeType::kDate},
    {"string", AttributeType::kString},
    {"uri", AttributeType::kUri},
    {"uuid", AttributeType::kUuid},
    {"binary", AttributeType::kBinary},
    {"transformable", AttributeType::kTransformable}};

constexpr std::pair<std::string_view, DeleteRule> kDeleteRules[] = {
    {"none", DeleteRule::kNoAction},
    {"nullify", DeleteRule::kNullify},
    {"cascade", DeleteRule::kCascade},
    {"deny", DeleteRule::kDeny}};

template <typename Table>
auto lookUp(const Table& table, std::string_view name) {
  const auto* found = std::find_if(std::begin(table), std::end(table),
                                   [&](const auto& entry) { return entry.first == name; });
  return found == std::end(table) ? std::nullopt : std::optional(found->second);
}

template <typename Number>
Value number(const std::string& text) {
  Number value{};
  const auto* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value);
  return error == std::errc() && rest == end ? Value(value) : Value();
}

/// Absent if the type cannot have a default or `text` is invalid.
Value defaultValue(const std::string& text, AttributeType type) {
  switch (type) {
    case AttributeType::kString:
      return text;
    case AttributeType::kBoolean:
      if (text == "true") return std::int64_t{1};
      return text == "false" ? Value(std::int64_t{0}) : Value();
    case AttributeType::kInteger16:
    case AttributeType::kInteger32:
    case AttributeType::kInteger64:
      return number<std::int64_t>(text);
    case AttributeType::kDouble:
    case AttributeType::kFloat:
    case AttributeType::kDecimal:
      return number<double>(text);
    default:
      return {};
  }
}

/// The options of a statement: words, and words with a value.
class Options {
 public:
  explicit Options(std::istringstream& words) {
    for (std::string word; words >> word;) {
      const auto equals = word.find('=');
      const bool hasValue = equals != std::string::npos;
      given_[word.substr(0, equals)] = hasValue ? word.substr(equals + 1) : std::string();
    }
  }
  bool has(const std::string& name) { return take(name).has_value(); }
  std::optional<std::string> take(const std::string& name) {
    const auto found = given_.extract(name);
    return found ? std::optional(found.mapped()) : std::nullopt;
  }
  /// Returns an option that was not queried; `nullopt` if there is none.
  std::optional<std::string> unknown() const {
    return given_.empty() ? std::nullopt : std::optional(given_.begin()->first);
  }

 private:
  std::map<std::string, std::string> given_;
};

class Parser {
 public:
  Expected<ModelSource> parse(std::string_view text);

 private:
  /// Each parses a statement's words after the first and returns the error, or an empty text.
  std::string statement(std::istringstream& words);
  std::string readEntity(std::istringstream& words);
  std::string readAttribute(std::istringstream& words);
  std::string readRelationship(std::istringstream& words);
  template <typename Add>
  std::string addSince(Options& options, Add add);
  template <typename Add>
  std::string addProperty(Options& options, const std::string& name, Add add);
  std::string relationshipsWithoutEnd() const;

  ModelSource source_;
  std::string entityName_;  ///< The entity whose properties are being parsed.
};

std::string Parser::statement(std::istringstream& words) {
  std::string kind;
  if (!(words >> kind)) return {};
  if (kind == "attribute") return readAttribute(words);
  if (kind == "relationship") return readRelationship(words);
  if (kind == "entity") return readEntity(words);
  if (kind == "model" && source_.name.empty()) {
    return words >> source_.name ? "" : "expected the name of the model";
  }
  if (kind == "versions" && source_.versions.empty()) {
    for (std::string identifier; words >> identifier;) {
      source_.versions.push_back({identifier, {}});
    }
    return source_.versions.empty() ? "expected a version" : "";
  }
  return "unknown statement \"" + kind + "\"";
}

std::string Parser::readEntity(std::istringstream& words) {
  EntityDescription entity;
  if (!(words >> entity.name)) return "expected the name of the entity";
  if (source_.versions.empty()) return "expected versions before the entities";
  for (const auto& version : source_.versions) {
    for (const auto& other : version.entities) {
      if (other.name == entity.name) return "duplicate entity";
    }
  }
  entityName_ = entity.name;
  Options options(words);
  return addSince(options, [&](ModelVersion& version) {
    version.entities.push_back(entity);
    return true;
  });
}

/// Calls `add` with each version from that of the option "since" on. Returns the error.
template <typename Add>
std::string Parser::addSince(Options& options, Add add) {
  const auto since = options.take("since");
  if (const auto unknown = options.unknown()) return "unknown option \"" + *unknown + "\"";
  bool reached = !since;
  for (auto& version : source_.versions) {
    reached = reached || version.identifier == since;
    if (reached && !add(version)) return "duplicate property";
  }
  return reached ? "" : "unknown version " + *since;
}

/// Calls `add` with the last entity in each version that has the entity and the property.
template <typename Add>
std::string Parser::addProperty(Options& options, const std::string& name, Add add) {
  if (entityName_.empty()) return "expected an entity before the property";
  return addSince(options, [&](ModelVersion& version) {
    if (version.entities.empty() || version.entities.back().name != entityName_) return true;
    auto& entity = version.entities.back();
    const auto same = [&](const auto& property) { return property.name == name; };
    if (std::any_of(entity.attributes.begin(), entity.attributes.end(), same) ||
        std::any_of(entity.relationships.begin(), entity.relationships.end(), same)) {
      return false;
    }
    add(entity);
    return true;
  });
}

std::string Parser::readAttribute(std::istringstream& words) {
  AttributeDescription attribute;
  std::string typeName;
  if (!(words >> attribute.name >> typeName)) return "expected a name and a type";
  const auto type = lookUp(kTypes, typeName);
  if (!type) return "unknown type \"" + typeName + "\"";
  Options options(words);
  attribute.type = *type;
  attribute.isOptional = options.has("optional");
  attribute.isTransient = options.has("transient");
  attribute.storesExternally = options.has("external");
  const bool isIndexed = options.has("indexed");
  if (attribute.storesExternally && *type != AttributeType::kBinary) {
    return "only binary attributes can be external";
  }
  if (const auto text = options.take("default")) {
    attribute.defaultValue = defaultValue(*text, *type);
    if (attribute.defaultValue == Value()) return "invalid default \"" + *text + "\"";
  }
  return addProperty(options, attribute.name, [&](EntityDescription& entity) {
    entity.attributes.push_back(attribute);
    if (isIndexed) entity.indexedAttributes.push_back(attribute.name);
  });
}

std::string Parser::readRelationship(std::istringstream& words) {
  RelationshipDescription relationship;
  std::string count;
  if (!(words >> relationship.name >> count >> relationship.destinationEntityName)) {
    return "expected a name, one or many, and an entity";
  }
  if (count != "one" && count != "many") return "expected one or many, got \"" + count + "\"";
  Options options(words);
  const auto rule = lookUp(kDeleteRules, options.take("delete").value_or("nullify"));
  if (!rule) return "unknown delete rule";
  relationship.isToMany = count == "many";
  relationship.isOrdered = options.has("ordered");
  relationship.deleteRule = *rule;
  relationship.inverseName = options.take("inverse").value_or("");
  return addProperty(options, relationship.name, [&](EntityDescription& entity) {
    entity.relationships.push_back(relationship);
  });
}

std::string Parser::relationshipsWithoutEnd() const {
  for (const auto& version : source_.versions) {
    for (const auto& entity : version.entities) {
      for (const auto& relationship : entity.relationships) {
        const auto destination = std::find_if(
            version.entities.begin(), version.entities.end(),
            [&](const auto& other) { return other.name == relationship.destinationEntityName; });
        bool fits = destination != version.entities.end();
        if (fits && !relationship.inverseName.empty()) {
          const auto* inverse = destination->relationship(relationship.inverseName);
          fits = inverse && inverse->inverseName == relationship.name &&
                 inverse->destinationEntityName == entity.name;
        }
        if (!fits) return entity.name + "." + relationship.name + " has no matching inverse";
      }
    }
  }
  return {};
}

Expected<ModelSource> Parser::parse(std::string_view text) {
  const auto failure = [](const std::string& what) {
    return tl::unexpected(Error{"ModelSource", 1, what, {}});
  };
  std::istringstream lines{std::string(text)};
  std::size_t lineNumber = 0;
  for (std::string line; std::getline(lines, line);) {
    ++lineNumber;
    std::istringstream words(line.substr(0, line.find('#')));
    const auto wrong = statement(words);
    std::string left;
    if (!wrong.empty()) return failure(std::to_string(lineNumber) + ": " + wrong);
    if (words.clear(), words >> left) {
      return failure(std::to_string(lineNumber) + ": unexpected \"" + left + "\"");
    }
  }
  if (source_.name.empty() || source_.versions.empty())
    return failure("expected a model and a version");
  for (auto& version : source_.versions) {
    for (auto& entity : version.entities) {
      const auto byName = [](const auto& a, const auto& b) { return a.name < b.name; };
      std::sort(entity.attributes.begin(), entity.attributes.end(), byName);
      std::sort(entity.relationships.begin(), entity.relationships.end(), byName);
    }
  }
  const auto wrong = relationshipsWithoutEnd();
  if (!wrong.empty()) return failure(wrong);
  return std::move(source_);
}

}  // namespace

Expected<ModelSource> modelSourceWithText(std::string_view text) {
  return Parser().parse(text);
}

}  // namespace vantrel
