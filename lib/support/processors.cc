// SPDX-License-Identifier: MIT
#include "lib/support/processors.h"

#include <sched.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <thread>

#include "lib/support/files.h"

namespace molva {
namespace {

int AllowedProcessors() {
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  if (sched_getaffinity(0, sizeof(allowed), &allowed) == 0) return CPU_COUNT(&allowed);
  return static_cast<int>(std::thread::hardware_concurrency());
}

// What a quota of so much time in a period comes to; none where there is no positive quota.
int ProcessorsOf(double quota, double period) {
  if (!(quota > 0 && period > 0)) return INT_MAX;
  return static_cast<int>(std::min(std::ceil(quota / period), static_cast<double>(INT_MAX)));
}

// "200000 100000", or "max 100000" without a quota.
int QuotaOf(const std::string& folder) {
  const File file = OpenFile((folder + "/cpu.max").c_str(), "r");
  double quota = 0;
  double period = 0;
  if (!file || std::fscanf(file.get(), "%lf %lf", &quota, &period) != 2) return INT_MAX;
  return ProcessorsOf(quota, period);
}

double NumberIn(const std::string& name) {
  const File file = OpenFile(name.c_str(), "r");
  double number = 0;
  return file && std::fscanf(file.get(), "%lf", &number) == 1 ? number : 0;
}

// The same as the older kind of control groups has it, -1 without a quota.
int OldQuotaOf(const std::string& folder) {
  return ProcessorsOf(NumberIn(folder + "/cpu.cfs_quota_us"),
                      NumberIn(folder + "/cpu.cfs_period_us"));
}

// The least quota of a group and of all that it is in.
template <typename Quota>
int LeastQuota(const std::string& root, std::string group, const Quota& quota_of) {
  int least = quota_of(root);
  while (!group.empty() && group != "/") {
    least = std::min(least, quota_of(root + group));
    group.erase(group.rfind('/'));
  }
  return least;
}

// Whether a list with commas names the controller of processor time, and not cpuset or cpuacct
// alone.
bool ListsProcessorTime(std::string_view list) {
  while (!list.empty()) {
    const std::size_t end = std::min(list.find(','), list.size());
    if (list.substr(0, end) == "cpu") return true;
    list.remove_prefix(std::min(end + 1, list.size()));
  }
  return false;
}

}  // namespace

// Lines are "0::/group" and, of the older kind, "4:cpu,cpuacct:/group".
int QuotaProcessors(const std::string& list, const std::string& root) {
  const File file = OpenFile(list.c_str(), "r");
  int least = INT_MAX;
  char text[4096];
  while (file && std::fgets(text, sizeof(text), file.get()) != nullptr) {
    const std::string_view line(text, std::strcspn(text, "\n"));
    const std::size_t first = line.find(':');
    const std::size_t second = line.find(':', first + 1);
    if (first == line.npos || second == line.npos || line.substr(second + 1, 1) != "/") continue;
    const std::string group(line.substr(second + 1));
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    if (controllers.empty()) {
      least = std::min(least, LeastQuota(root, group, QuotaOf));
    } else if (ListsProcessorTime(controllers)) {
      least = std::min(least, LeastQuota(root + "/cpu", group, OldQuotaOf));
    }
  }
  return least;
}

int ProcessorCount() {
  const int quota = QuotaProcessors("/proc/self/cgroup", "/sys/fs/cgroup");
  return std::max(1, std::min(AllowedProcessors(), quota));
}

}  // namespace molva
