// SPDX-License-Identifier: MIT
//
// Who may do what with a file that takes another's place.
#pragma once

namespace mardle {

// Gives the file behind `newcomer` the owner, the group, the access list and the permissions of the
// one behind `old`. Returns whether it has all of them now: only its owner can give a file away.
bool GiveSameAccess(int old, int newcomer);

}  // namespace mardle
