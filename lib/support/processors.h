// SPDX-License-Identifier: MIT
//
// How many processors there are for the process.
#pragma once

#include <string>

namespace molva {

// As many as it may run on, or as its control group's share of processor time comes to, rounded up,
// if that is less; at least 1.
int ProcessorCount();

// What the quotas come to of the groups that a file like /proc/self/cgroup lists, whose folders are
// below the given one as below /sys/fs/cgroup; the largest int without a quota.
int QuotaProcessors(const std::string& list, const std::string& root);

}  // namespace molva
