// SPDX-License-Identifier: MIT
#include "tools/run/matrix_blocks.h"

#include <algorithm>
#include <utility>

#include "lib/support/fatal.h"
#include "lib/support/files.h"

namespace mardle::tools {
namespace {

// A block ends with the row that brings it so far.
constexpr std::size_t kEntriesOfABlock = std::size_t{1} << 18;
constexpr int kMostRowsOfABlock = 1 << 16;

molva::File Open(const std::string& name) {
  molva::File file = molva::OpenFile(name.c_str(), "r");
  if (!file) {
    molva::FatalError("Matrix file to be clusterd (%s) does not exist!\n", name.c_str());
  }
  return file;
}

void Begin(RowBlock& block, bool is_dense) {
  block.first += block.nrows;
  block.nrows = 0;
  block.rowptr.assign(is_dense ? 0 : 1, 0);
  block.rowind.clear();
  block.rowval.clear();
}

}  // namespace

MatrixBlocks::MatrixBlocks(std::string name, bool is_dense)
    : name_(std::move(name)), is_dense_(is_dense) {
  const molva::File file = Open(name_);
  LineReader reader(file.get());
  header_ = ReadHeader(reader);
  if (header_.nrows < 0) RefuseRowCount(header_.nrows, 0);
  header_.ncols = std::max(header_.ncols, 0);
}

std::int64_t MatrixBlocks::entries() const {
  return is_dense_ ? std::int64_t{header_.nrows} * header_.ncols : header_.nnz;
}

void MatrixBlocks::ForEach(const std::function<void(const RowBlock&)>& visit) const {
  const molva::File file = Open(name_);
  LineReader reader(file.get());
  ReadHeader(reader);
  RowBlock block;
  block.ncols = header_.ncols;
  Begin(block, is_dense_);
  std::int64_t count = 0;
  for (int i = 0; i < header_.nrows; ++i) {
    const char* line = reader.Next();
    if (line == nullptr) RefuseRowCount(header_.nrows, i);
    if (is_dense_) {
      AppendDenseRow(line, i, header_.ncols, block.rowval);
    } else {
      const std::size_t before = block.rowind.size();
      AppendSparseRow(line, i, count, header_.ncols, block.rowind, block.rowval);
      count += static_cast<std::int64_t>(block.rowind.size() - before);
      block.rowptr.push_back(static_cast<int>(block.rowind.size()));
    }
    ++block.nrows;
    if (block.rowval.size() < kEntriesOfABlock && block.nrows < kMostRowsOfABlock) continue;
    visit(block);
    Begin(block, is_dense_);
  }
  if (!is_dense_) RequireEntries(header_, count);
  if (block.nrows > 0) visit(block);
}

}  // namespace mardle::tools
