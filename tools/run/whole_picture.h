// SPDX-License-Identifier: MIT
//
// Whether a picture has its end.
#pragma once

#include <string>
#include <string_view>

namespace mardle::tools {

// Whether the file ends as libplot ends a picture of the format, whose name may be in capitals. Of
// formats whose end cannot be told, every file does. A picture in fig has no end of its own; there
// its last object is whole. Throws FileError when the file cannot be read.
bool HasEndOfPicture(const std::string& name, std::string_view format);

}  // namespace mardle::tools
