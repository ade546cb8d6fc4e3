// SPDX-License-Identifier: MIT
#include "tools/text/kept_inputs.h"

#include <algorithm>
#include <optional>

#include "programs/files/file_identity.h"
#include "tools/text/file_error.h"

namespace mardle::tools {

void RefuseInputsAsOutputs(std::span<const std::string> inputs,
                           std::span<const std::string> outputs) {
  for (const std::string& output : outputs) {
    const std::optional<FileIdentity> file = RegularFileAt(output);
    if (!file) continue;
    const auto input = std::find_if(inputs.begin(), inputs.end(), [&file](const std::string& name) {
      return RegularFileAt(name) == file;
    });
    if (input != inputs.end()) {
      throw FileError({output, 0}, "would be written over the input " + *input);
    }
  }
}

}  // namespace mardle::tools
