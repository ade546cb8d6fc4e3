// SPDX-License-Identifier: MIT
#include "lib/matrix/prepared_matrix.h"

namespace molva {

Owned<PreparedMatrix> CreateMatrix() { return AllocRecord<PreparedMatrix>("CreateMatrix: mat"); }

void FreeMatrix(Owned<PreparedMatrix>& mat) { mat.reset(); }

Span<float> RowValues(PreparedMatrix& mat, int i) {
  const int begin = mat.rowptr[i];
  return {mat.rowval.data() + begin, mat.rowptr[i + 1] - begin};
}

void CreateColMat(PreparedMatrix& mat) {
  const int entries = EntryCount(mat);
  mat.colptr = AllocIntsSet(std::int64_t{mat.ncols} + 1, 0, "CreateColMat: colptr");
  mat.colind = AllocInts(entries, "CreateColMat: colind");
  mat.colval = AllocFloats(entries, "CreateColMat: colval");
  // Lengths, shifted by one, become starts; each start then runs to its column's end while the rows
  // are taken in increasing order, and is shifted back.
  for (int p = 0; p < entries; ++p) ++mat.colptr[mat.rowind[p] + 1];
  for (int j = 0; j < mat.ncols; ++j) mat.colptr[j + 1] += mat.colptr[j];
  for (int i = 0; i < mat.nrows; ++i) {
    for (int p = mat.rowptr[i]; p < mat.rowptr[i + 1]; ++p) {
      const int position = mat.colptr[mat.rowind[p]]++;
      mat.colind[position] = i;
      mat.colval[position] = mat.rowval[p];
    }
  }
  for (int j = mat.ncols; j > 0; --j) mat.colptr[j] = mat.colptr[j - 1];
  mat.colptr[0] = 0;
}

int EntryCount(const PreparedMatrix& mat) { return mat.rowptr[mat.nrows]; }

}  // namespace molva
