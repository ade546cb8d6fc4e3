// SPDX-License-Identifier: MIT
#include "lib/blocks/sum_changes.h"

#include <algorithm>
#include <cstdlib>

#include "lib/blocks/fixed_point.h"
#include "lib/support/team.h"

namespace molva {
namespace {

// The rows of every list: those of list l stand from starts[l] to starts[l + 1] - 1, a row that
// leaves it as -1 - i.
struct ListedRows {
  Array<std::int64_t> starts;
  Array<int> rows;
};

template <typename Visit>
void ForEachChange(int nlists, Span<const int> from, Span<const int> to, Visit visit) {
  const auto is_list = [nlists](int l) { return l >= 0 && l < nlists; };
  for (std::size_t i = 0; i < from.size(); ++i) {
    if (from[i] == to[i]) continue;
    const int row = static_cast<int>(i);
    if (is_list(from[i])) visit(from[i], -1 - row);
    if (is_list(to[i])) visit(to[i], row);
  }
}

ListedRows ListRows(int nlists, Span<const int> from, Span<const int> to) {
  ListedRows listed;
  listed.starts = Array<std::int64_t>(std::int64_t{nlists} + 2, "SumChanges: starts");
  listed.starts.Fill(0);
  // Counted two places up, so that filling the lists moves each start to its place.
  ForEachChange(nlists, from, to, [&](int l, int) { ++listed.starts[l + 2]; });
  for (int l = 0; l < nlists; ++l) listed.starts[l + 2] += listed.starts[l + 1];
  listed.rows = AllocInts(listed.starts[nlists + 1], "SumChanges: rows");
  ForEachChange(nlists, from, to,
                [&](int l, int row) { listed.rows[listed.starts[l + 1]++] = row; });
  return listed;
}

// Sums one list at a time over all columns, and remembers which of them it met.
class ColumnSums {
 public:
  ColumnSums(const PreparedMatrix& mat, std::int64_t* sums, char* met)
      : mat_(mat), sums_(sums), met_(met) {}

  // Writes the columns met, in increasing order, and their sums; returns how many.
  std::int64_t Sum(const int* first, const int* last, int* columns, std::int64_t* sums) {
    std::int64_t count = 0;
    for (; first != last; ++first) {
      const bool leaves = *first < 0;
      const RowView row = Row(mat_, leaves ? -1 - *first : *first);
      for (std::size_t p = 0; p < row.size(); ++p) {
        const int j = row.columns[p];
        if (met_[j] == 0) columns[count++] = j;
        met_[j] = 1;
        const std::int64_t units = ToUnits(row.values[p]);
        AddUnits(leaves ? -units : units, sums_[j]);
      }
    }
    std::sort(columns, columns + count);
    return TakeSums(columns, count, sums);
  }

 private:
  std::int64_t TakeSums(int* columns, std::int64_t count, std::int64_t* sums) {
    std::int64_t kept = 0;
    for (std::int64_t p = 0; p < count; ++p) {
      const int j = columns[p];
      if (sums_[j] != 0) {
        columns[kept] = j;
        sums[kept++] = sums_[j];
      }
      sums_[j] = 0;
      met_[j] = 0;
    }
    return kept;
  }

  const PreparedMatrix& mat_;
  std::int64_t* sums_;  // 0 between lists, one for each column
  char* met_;
};

// Where the sums of each list may begin: room for all entries of its rows, or all columns.
Array<std::int64_t> RoomForLists(const PreparedMatrix& mat, int nlists, const ListedRows& listed) {
  Array<std::int64_t> begins(std::int64_t{nlists} + 1, "SumChanges: begins");
  begins[0] = 0;
  for (int l = 0; l < nlists; ++l) {
    std::int64_t entries = 0;
    for (std::int64_t at = listed.starts[l]; at < listed.starts[l + 1]; ++at) {
      const int row = listed.rows[at];
      entries += static_cast<std::int64_t>(Row(mat, row < 0 ? -1 - row : row).size());
    }
    begins[l + 1] = begins[l] + std::min<std::int64_t>(entries, mat.ncols);
  }
  return begins;
}

void CloseGaps(const Array<std::int64_t>& begins, const Array<std::int64_t>& counts, int nlists,
               SparseSums& changes) {
  changes.starts[0] = 0;
  for (int l = 0; l < nlists; ++l) {
    const std::int64_t to = changes.starts[l];
    std::copy_n(changes.columns.data() + begins[l], counts[l], changes.columns.data() + to);
    std::copy_n(changes.sums.data() + begins[l], counts[l], changes.sums.data() + to);
    changes.starts[l + 1] = to + counts[l];
  }
}

}  // namespace

SparseSums SumChanges(const PreparedMatrix& mat, int nlists, Span<const int> from,
                      Span<const int> to) {
  const ListedRows listed = ListRows(nlists, from, to);
  const Array<std::int64_t> begins = RoomForLists(mat, nlists, listed);
  SparseSums changes;
  changes.starts = Array<std::int64_t>(std::int64_t{nlists} + 1, "SumChanges: changes.starts");
  changes.columns = AllocInts(begins[nlists], "SumChanges: columns");
  changes.sums = Array<std::int64_t>(begins[nlists], "SumChanges: changes.sums");
  Array<std::int64_t> counts(nlists, "SumChanges: counts");
  // The next two are one for each member of the team.
  const std::int64_t room = std::int64_t{mat.ncols} * TeamSize();
  auto sums = Array<std::int64_t>::Zeroed(room, "SumChanges: sums");
  auto met = Array<char>::Zeroed(room, "SumChanges: met");
  ShareOut(nlists, 1, [&](std::int64_t first, std::int64_t last, int member) {
    const std::int64_t own = std::int64_t{member} * mat.ncols;
    ColumnSums list(mat, sums.data() + own, met.data() + own);
    for (std::int64_t l = first; l < last; ++l) {
      counts[l] =
          list.Sum(listed.rows.data() + listed.starts[l], listed.rows.data() + listed.starts[l + 1],
                   changes.columns.data() + begins[l], changes.sums.data() + begins[l]);
    }
  });
  CloseGaps(begins, counts, nlists, changes);
  return changes;
}

std::int64_t ReachOfSums(const PreparedMatrix& mat) {
  std::int64_t reach = 0;
  for (int i = 0; i < mat.nrows; ++i) {
    const RowView row = Row(mat, i);
    std::int64_t most = 0;
    std::int64_t all = 0;
    bool increases = true;
    for (std::size_t p = 0; p < row.size(); ++p) {
      const std::int64_t units = std::abs(ToUnits(row.values[p]));
      most = std::max(most, units);
      AddUnits(units, all);
      if (p > 0 && row.columns[p] <= row.columns[p - 1]) increases = false;
    }
    AddUnits(increases ? most : all, reach);
  }
  return reach;
}

}  // namespace molva
