// jsoncpp writes on one line when there is nothing to indent with.
#include "linux/compact_json.h"

#include <json/writer.h>

namespace orvex::port {

std::string CompactJson(const Json::Value& value) {
  Json::StreamWriterBuilder writer;
  writer["indentation"] = "";
  return Json::writeString(writer, value);
}

}  // namespace orvex::port
