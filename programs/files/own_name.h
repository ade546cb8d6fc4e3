// SPDX-License-Identifier: MIT
//
// Names that nobody else has.
#pragma once

#include <string>

namespace mardle {

// The folder of a file, "." for one without a slash in its path.
std::string FolderOf(const std::string& path);

// A name in the folder that cannot be foreseen, so that neither another process nor anybody's file
// or link stands under it.
std::string OwnName(const std::string& folder);

}  // namespace mardle
