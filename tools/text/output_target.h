// SPDX-License-Identifier: MIT
//
// Where the name of an output leads.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

namespace mardle::tools {

struct OutputTarget {
  std::string path;            // a link's target; written through: the name itself
  bool written_through;        // pipes, devices and the standard streams cannot be replaced
  std::optional<mode_t> mode;  // of the file that is to be replaced
};

// Throws FileError when the file is there and may not be written, and where no file can be.
OutputTarget TargetOf(const std::string& name);

}  // namespace mardle::tools
