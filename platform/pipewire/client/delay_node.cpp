// Builds and parses the parameter that carries the delay.
#include "pipewire/client/delay_node.h"

#include <spa/param/props.h>
#include <spa/pod/builder.h>
#include <spa/pod/iter.h>
#include <spa/pod/parser.h>

#include <string_view>

namespace orvex::pipewire {
namespace {

constexpr char kKey[] = "orvex:delay-ms";

// pw-cli writes whole numbers as integers and others as floats.
std::optional<double> NumberOf(const spa_pod* pod) {
  double asDouble = 0.0;
  float asFloat = 0.0F;
  std::int32_t asInt = 0;
  if (spa_pod_get_double(pod, &asDouble) >= 0) {
    return asDouble;
  }
  if (spa_pod_get_float(pod, &asFloat) >= 0) {
    return asFloat;
  }
  return spa_pod_get_int(pod, &asInt) >= 0 ? std::optional<double>(asInt) : std::nullopt;
}

std::optional<double> ReadPairs(const spa_pod* pairs) {
  spa_pod_parser parser;
  spa_pod_frame frame;
  spa_pod_parser_pod(&parser, pairs);
  if (spa_pod_parser_push_struct(&parser, &frame) < 0) {
    return std::nullopt;
  }
  const char* key = nullptr;
  spa_pod* value = nullptr;
  while (spa_pod_parser_get_string(&parser, &key) >= 0 && spa_pod_parser_get_pod(&parser, &value) >= 0) {
    if (std::string_view(key) == kKey) {
      return NumberOf(value);
    }
  }
  return std::nullopt;
}

}  // namespace

DelayProps::DelayProps(double delayMs) {
  spa_pod_builder builder;
  spa_pod_builder_init(&builder, m_Bytes.data(), static_cast<std::uint32_t>(m_Bytes.size()));
  spa_pod_frame object;
  spa_pod_frame pairs;
  spa_pod_builder_push_object(&builder, &object, SPA_TYPE_OBJECT_Props, SPA_PARAM_Props);
  spa_pod_builder_prop(&builder, SPA_PROP_params, 0);
  spa_pod_builder_push_struct(&builder, &pairs);
  spa_pod_builder_string(&builder, kKey);
  spa_pod_builder_double(&builder, delayMs);
  spa_pod_builder_pop(&builder, &pairs);
  m_Pod = static_cast<const spa_pod*>(spa_pod_builder_pop(&builder, &object));
}

const spa_pod* DelayProps::Get() const {
  return m_Pod;
}

std::optional<double> DelayProps::Read(const spa_pod* props) {
  if (props == nullptr || !spa_pod_is_object_type(props, SPA_TYPE_OBJECT_Props)) {
    return std::nullopt;
  }
  const spa_pod_prop* pairs = spa_pod_find_prop(props, nullptr, SPA_PROP_params);
  return pairs == nullptr ? std::nullopt : ReadPairs(&pairs->value);
}

}  // namespace orvex::pipewire
