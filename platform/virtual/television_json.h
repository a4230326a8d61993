// The television's files of JSON are read strictly, as the pieces of a port do it.
#pragma once

#include "linux/json_object.h"

namespace orvex::virtual_tv {

using port::ParseJsonObject;

}  // namespace orvex::virtual_tv
