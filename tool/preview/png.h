// PNG files.
#pragma once

#include <string>

#include "preview/canvas.h"

namespace zerklsc::tool {

std::string encode_png(const Canvas& canvas);

} // namespace zerklsc::tool
