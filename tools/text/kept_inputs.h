// SPDX-License-Identifier: MIT
//
// No input is written over.
#pragma once

#include <span>
#include <string>

namespace mardle::tools {

// Throws FileError when an output leads to the file that an input leads to, which it would destroy.
void RefuseInputsAsOutputs(std::span<const std::string> inputs,
                           std::span<const std::string> outputs);

}  // namespace mardle::tools
