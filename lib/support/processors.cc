// SPDX-License-Identifier: MIT
#include "lib/support/processors.h"

#include <sched.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

namespace molva {
namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File Open(const std::string& name) { return File(std::fopen(name.c_str(), "re")); }

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
  const File file = Open(folder + "/cpu.max");
  double quota = 0;
  double period = 0;
  if (!file || std::fscanf(file.get(), "%lf %lf", &quota, &period) != 2) return INT_MAX;
  return ProcessorsOf(quota, period);
}

double NumberIn(const std::string& name) {
  const File file = Open(name);
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

// Lines of /proc/self/cgroup are "0::/group" and, of the older kind, "4:cpu,cpuacct:/group".
int QuotaProcessors() {
  const File file = Open("/proc/self/cgroup");
  int least = INT_MAX;
  char line[4096];
  while (file && std::fgets(line, sizeof(line), file.get()) != nullptr) {
    line[std::strcspn(line, "\n")] = '\0';
    const char* const group = std::strchr(line, '/');
    if (group == nullptr) continue;
    if (std::strncmp(line, "0::", 3) == 0) {
      least = std::min(least, LeastQuota("/sys/fs/cgroup", group, QuotaOf));
    } else if (std::strstr(line, "cpu") != nullptr && std::strstr(line, "cpu") < group) {
      least = std::min(least, LeastQuota("/sys/fs/cgroup/cpu", group, OldQuotaOf));
    }
  }
  return least;
}

}  // namespace

int ProcessorCount() { return std::max(1, std::min(AllowedProcessors(), QuotaProcessors())); }

}  // namespace molva
