// SPDX-License-Identifier: MIT
//
// Files opened and written, or a failure with the system's reason.
#pragma once

#include <string>

#include "lib/support/files.h"

namespace mardle::exporting {

// Opens a file for reading.
molva::File OpenOrFail(const std::string& path);

// Writes a whole file, or to standard output when the path is empty.
void WriteOrFail(const std::string& path, const std::string& text);

}  // namespace mardle::exporting
