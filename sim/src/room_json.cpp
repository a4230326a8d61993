// Reads and writes a room value by value, as the table of room_fields.h lists them.
#include "orvex/sim/room_json.h"

#include <algorithm>
#include <set>
#include <utility>

#include <json/value.h>
#include <json/writer.h>

#include "linux/json_text.h"
#include "sim/src/room_fields.h"

namespace orvex::sim {
namespace {

constexpr std::size_t kMaxQuoted = 60;  // characters of a bad value that an error repeats

std::string Quote(const Json::Value& value) {
  const std::string text = port::CompactJson(value);
  return text.size() <= kMaxQuoted ? text : text.substr(0, kMaxQuoted) + "...";
}

Json::Value ParseObject(const std::string& text, const std::string& nameForErrors) {
  Json::Value root;
  try {
    root = port::ParseJson(text);
  } catch (const port::JsonError& error) {
    throw RoomError(nameForErrors + ": no valid JSON, expected one object: " + error.what());
  }
  if (!root.isObject()) {
    throw RoomError(nameForErrors + ": the text is " + Quote(root) + ", expected a JSON object");
  }
  return root;
}

// Stores one JSON value in a field, if it has the field's type and range.
class FieldReader {
public:
  FieldReader(const RoomField& field, std::string name, const Json::Value& value, const std::string& nameForErrors)
      : m_Field(field), m_Name(std::move(name)), m_Value(value), m_NameForErrors(nameForErrors) {}

  void operator()(double* target) const { *target = ReadNumber(RangeOf(m_Field)); }

  void operator()(std::optional<double>* target) const {
    if (m_Value.isString() && m_Value.asString() == "none") {
      target->reset();
    } else {
      *target = ReadNumber(RangeOf(m_Field) + " or \"none\"");
    }
  }

  void operator()(bool* target) const {
    Require(m_Value.isBool(), "true or false");
    *target = m_Value.asBool();
  }

  void operator()(std::string* target) const {
    Require(m_Value.isString(), "a string");
    *target = m_Value.asString();
  }

  void operator()(std::uint64_t* target) const {
    Require(m_Value.isUInt64(), "an integer from 0 to 18446744073709551615");
    *target = m_Value.asUInt64();
  }

  void operator()(std::vector<Reflection>* target) const;

private:
  void Require(bool holds, const std::string& expected) const {
    if (!holds) {
      throw MakeValueError(m_NameForErrors, m_Name, Quote(m_Value), expected);
    }
  }

  double ReadNumber(const std::string& expected) const {
    Require(m_Value.isNumeric() && IsInRange(m_Field, m_Value.asDouble()), expected);
    return m_Value.asDouble();
  }

  const RoomField& m_Field;
  std::string m_Name;
  const Json::Value& m_Value;
  const std::string& m_NameForErrors;
};

// The keys of a section, as a list for errors; in the topmost object the sections are keys, too.
std::string KnownKeys(const std::vector<RoomField>& fields, const std::string& section) {
  std::set<std::string> keys;
  for (const RoomField& field : fields) {
    if (field.section == section) {
      keys.insert(field.key);
    } else if (section.empty()) {
      keys.insert(field.section);
    }
  }
  std::string text;
  for (const std::string& key : keys) {
    text += (text.empty() ? "" : ", ") + key;
  }
  return text;
}

// Reads the members of one object that belong to `section`; `prefix` stands before their names in errors.
void ReadSection(const Json::Value& object, const std::vector<RoomField>& fields, const std::string& section,
                 const std::string& prefix, const std::string& nameForErrors) {
  for (const std::string& key : object.getMemberNames()) {
    const auto field = std::find_if(fields.begin(), fields.end(), [&](const RoomField& candidate) {
      return candidate.section == section && candidate.key == key;
    });
    if (field == fields.end()) {
      throw MakeValueError(nameForErrors, prefix + key, "an unknown key with the value " + Quote(object[key]),
                           "one of: " + KnownKeys(fields, section));
    }
    std::visit(FieldReader(*field, prefix + key, object[key], nameForErrors), field->target);
  }
}

void FieldReader::operator()(std::vector<Reflection>* target) const {
  Require(m_Value.isArray() && m_Value.size() <= kMaxReflections,
          "a list of at most " + std::to_string(kMaxReflections) + " reflections");
  target->assign(m_Value.size(), {});
  for (Json::ArrayIndex i = 0; i < m_Value.size(); ++i) {
    const std::string name = m_Name + "[" + std::to_string(i) + "]";
    if (!m_Value[i].isObject()) {
      throw MakeValueError(m_NameForErrors, name, Quote(m_Value[i]), "an object with delay_ms and gain_db");
    }
    ReadSection(m_Value[i], MakeReflectionFields((*target)[i]), "", name + ".", m_NameForErrors);
  }
}

// Converts one field's value to JSON.
struct FieldWriter {
  Json::Value operator()(const double* value) const { return *value; }
  Json::Value operator()(const std::optional<double>* value) const {
    return *value ? Json::Value(**value) : Json::Value("none");
  }
  Json::Value operator()(const bool* value) const { return *value; }
  Json::Value operator()(const std::string* value) const { return *value; }
  Json::Value operator()(const std::uint64_t* value) const { return Json::Value::UInt64{*value}; }
  Json::Value operator()(const std::vector<Reflection>* value) const {
    Json::Value list(Json::arrayValue);
    for (Reflection reflection : *value) {
      Json::Value object;
      for (const RoomField& field : MakeReflectionFields(reflection)) {
        object[field.key] = std::visit(*this, field.target);
      }
      list.append(object);
    }
    return list;
  }
};

std::string Write(const Json::Value& root, int digits) {
  Json::StreamWriterBuilder builder;
  builder["indentation"] = "  ";
  builder["precision"] = digits;
  builder["emitUTF8"] = true;  // leaves the bytes of a path as they are
  return Json::writeString(builder, root) + "\n";
}

}  // namespace

RoomConfig ParseRoom(const std::string& text, const std::string& nameForErrors) {
  const Json::Value root = ParseObject(text, nameForErrors);
  RoomConfig config;
  const std::vector<RoomField> fields = MakeRoomFields(config);
  Json::Value topmost(Json::objectValue);
  for (const std::string& key : root.getMemberNames()) {
    const bool isSection = std::any_of(fields.begin(), fields.end(),
                                       [&](const RoomField& field) { return field.section == key && !key.empty(); });
    if (!isSection) {
      topmost[key] = root[key];
    } else if (root[key].isObject()) {
      ReadSection(root[key], fields, key, key + ".", nameForErrors);
    } else {
      throw MakeValueError(nameForErrors, key, Quote(root[key]), "an object");
    }
  }
  ReadSection(topmost, fields, "", "", nameForErrors);
  return config;
}

std::string RoomToJson(const RoomConfig& config) {
  RoomConfig copy = config;
  Json::Value root;
  for (const RoomField& field : MakeRoomFields(copy)) {
    Json::Value& object = *field.section == '\0' ? root : root[field.section];
    object[field.key] = std::visit(FieldWriter{}, field.target);
  }
  // 15 digits read better, 17 always give the same number back.
  const std::string text = Write(root, 15);
  return ParseRoom(text, "room") == config ? text : Write(root, 17);
}

}  // namespace orvex::sim
