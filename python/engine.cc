// SPDX-License-Identifier: MIT
//
// The extension module molva._engine: libmolva's entry points over numpy arrays. It checks shapes
// and nothing else; types and meanings are the Python modules' business.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "lib/molva.h"
#include "lib/support/fatal.h"
#include "lib/support/files.h"
#include "programs/io/read_matrix.h"
#include "python/engine_call.h"

namespace molva_python {
namespace {

// ---- Threads

void SetNumThreads(int nthreads) {
  Run([&] { MOLVA_SetNumThreads(nthreads); });
}

// What the process may use; the number in use stays.
int Processors() {
  const int before = MOLVA_GetNumThreads();
  SetNumThreads(0);
  const int all = MOLVA_GetNumThreads();
  SetNumThreads(before);
  return all;
}

// The cluster of every row.
struct Partition {
  Partition(const Matrix& matrix, int clusters, const Ints& array)
      : nparts(clusters), part(array.data()) {
    Check(nparts >= 1, "the number of clusters must be positive");
    Check(array.size() == matrix.nrows, "every row of the matrix needs a label");
  }
  int nparts;
  const int* part;
};

// ---- The entry points

Ints ClusterByBisection(const Matrix& m, const Models& o, int crfun, int ntrials, int niter,
                        int seed, bool refine, int nparts, const py::object& progress) {
  Ints labels = Filled<int>({m.nrows}, -1);
  int* part = labels.mutable_data();
  Run(progress, [&] {
    MOLVA_VP_ClusterRB(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, crfun, o.rowmodel,
                       o.colmodel, o.prune, ntrials, niter, seed, refine ? 1 : 0, 0, nparts, part);
  });
  return labels;
}

Ints ClusterDirectly(const Matrix& m, const Models& o, int crfun, int ntrials, int niter, int seed,
                     int nparts, const py::object& progress) {
  Ints labels = Filled<int>({m.nrows}, -1);
  int* part = labels.mutable_data();
  Run(progress, [&] {
    MOLVA_VP_ClusterDirect(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, crfun,
                           o.rowmodel, o.colmodel, o.prune, ntrials, niter, seed, 0, nparts, part);
  });
  return labels;
}

py::tuple ClusterStatistics(const Matrix& m, const Models& o, int nparts, const Ints& labels) {
  const Partition p(m, nparts, labels);
  Ints sizes = Filled<int>({nparts}, 0);
  Floats isim = Filled<float>({nparts}, 0), isdev = Filled<float>({nparts}, 0);
  Floats esim = Filled<float>({nparts}, 0), esdev = Filled<float>({nparts}, 0);
  Floats izscores = Filled<float>({m.nrows}, 0), ezscores = Filled<float>({m.nrows}, 0);
  Run([&, pwgts = sizes.mutable_data(), cintsim = isim.mutable_data(),
       cintsdev = isdev.mutable_data(), cextsim = esim.mutable_data(),
       cextsdev = esdev.mutable_data(), iz = izscores.mutable_data(),
       ez = ezscores.mutable_data()] {
    MOLVA_V_GetClusterStats(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, o.rowmodel,
                            o.colmodel, o.prune, p.nparts, p.part, pwgts, cintsim, cintsdev, iz,
                            cextsim, cextsdev, ez);
  });
  return py::make_tuple(sizes, isim, isdev, esim, esdev, izscores, ezscores);
}

float CriterionValue(const Matrix& m, const Models& o, int nparts, const Ints& labels, int crfun) {
  const Partition p(m, nparts, labels);
  float value = 0;
  Run([&] {
    value = MOLVA_V_GetSolutionQuality(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun,
                                       crfun, o.rowmodel, o.colmodel, o.prune, p.nparts, p.part);
  });
  return value;
}

py::tuple ClusterFeatures(const Matrix& m, const Models& o, int nparts, const Ints& labels,
                          int nfeatures) {
  const Partition p(m, nparts, labels);
  Check(nfeatures >= 1, "the number of features must be positive");
  Ints descriptive = Filled<int>({nparts, nfeatures}, -1);
  Ints discriminating = Filled<int>({nparts, nfeatures}, -1);
  Floats descriptive_shares = Filled<float>({nparts, nfeatures}, 0);
  Floats discriminating_shares = Filled<float>({nparts, nfeatures}, 0);
  Run([&, iids = descriptive.mutable_data(), iwgts = descriptive_shares.mutable_data(),
       eids = discriminating.mutable_data(), ewgts = discriminating_shares.mutable_data()] {
    MOLVA_V_GetClusterFeatures(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, o.rowmodel,
                               o.colmodel, o.prune, p.nparts, p.part, nfeatures, iids, iwgts, eids,
                               ewgts);
  });
  return py::make_tuple(descriptive, descriptive_shares, discriminating, discriminating_shares);
}

py::tuple BuildTree(const Matrix& m, const Models& o, int crfun, int treetype, int nparts,
                    const Ints& labels) {
  const Partition p(m, nparts, labels);
  const py::ssize_t nodes = 2 * py::ssize_t{treetype == MOLVA_TREE_ROWS ? m.nrows : nparts};
  Ints parents = Filled<int>({nodes}, -1);
  Floats similarities = Filled<float>({nodes}, 0);
  Run([&, ptree = parents.mutable_data(), tsims = similarities.mutable_data()] {
    MOLVA_V_BuildTree(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, crfun, o.rowmodel,
                      o.colmodel, o.prune, treetype, 0, p.nparts, p.part, ptree, tsims);
  });
  return py::make_tuple(parents, similarities);
}

// `children` has a pair of children, -1 where absent, for each of the 2L nodes of `parents`.
Ints OrderTree(const Matrix& m, const Models& o, int treetype, int nparts, const Ints& labels,
               const Ints& parents, const Ints& children) {
  const Partition p(m, nparts, labels);
  const py::ssize_t nodes = 2 * py::ssize_t{treetype == MOLVA_TREE_ROWS ? m.nrows : nparts};
  Check(parents.size() == nodes && children.size() == 2 * nodes, "the tree is of another size");
  Ints ordered = Filled<int>({nodes, py::ssize_t{2}}, -1);
  std::copy_n(children.data(), children.size(), ordered.mutable_data());
  Run([&, ptree = parents.data(), ftree = ordered.mutable_data()] {
    if (treetype == MOLVA_TREE_ROWS) {
      MOLVA_V_TreeReorder(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, o.rowmodel,
                          o.colmodel, o.prune, 0, ptree, ftree);
    } else {
      MOLVA_V_ClusterTreeReorder(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun,
                                 o.rowmodel, o.colmodel, o.prune, 0, p.nparts, p.part, ptree,
                                 ftree);
    }
  });
  return ordered;
}

py::tuple Prepare(const Matrix& m, const Models& o) {
  int nrows = 0, ncols = 0;
  int* rowptr = nullptr;
  int* rowind = nullptr;
  float* rowval = nullptr;
  Ints rperm = Filled<int>({m.nrows}, 0), cperm = Filled<int>({m.ncols}, 0);
  Run([&, row_of = rperm.mutable_data(), column_of = cperm.mutable_data()] {
    MOLVA_InternalizeMatrix(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, o.simfun, o.rowmodel,
                            o.colmodel, o.prune, &nrows, &ncols, &rowptr, &rowind, &rowval, row_of,
                            column_of);
  });
  std::unique_ptr<int, decltype(&MOLVA_Free)> starts(rowptr, MOLVA_Free);
  std::unique_ptr<int, decltype(&MOLVA_Free)> columns(rowind, MOLVA_Free);
  std::unique_ptr<float, decltype(&MOLVA_Free)> values(rowval, MOLVA_Free);
  const py::ssize_t entries = rowptr == nullptr ? 0 : rowptr[nrows];
  return py::make_tuple(nrows, ncols, Adopt<int>(std::move(starts), py::ssize_t{nrows} + 1),
                        Adopt<int>(std::move(columns), entries),
                        Adopt<float>(std::move(values), entries), rperm, cperm);
}

// ---- Files

// The program's own reader, with its checks and messages.
py::tuple ReadMatrixFile(const std::string& path, bool dense) {
  mardle::Matrix mat;
  Run([&] {
    const molva::File file = molva::OpenFile(path.c_str(), "r");
    if (!file) molva::FatalError("The matrix file (%s) cannot be opened!", path.c_str());
    mardle::LineReader reader(file.get());
    const mardle::MatrixHeader header = mardle::ReadHeader(reader);
    mat.nrows = header.nrows;
    mat.ncols = header.ncols;
    if (dense) {
      mardle::ReadDenseRows(reader, header, mat);
    } else {
      mardle::ReadSparseRows(reader, header, mat);
    }
  });
  const auto copy = [](const auto& array) {
    using Element = std::remove_cvref_t<decltype(array[0])>;
    return py::array_t<Element>(static_cast<py::ssize_t>(array.size()), array.data());
  };
  return py::make_tuple(mat.nrows, mat.ncols, copy(mat.rowptr), copy(mat.rowind), copy(mat.rowval));
}

}  // namespace
}  // namespace molva_python

PYBIND11_MODULE(_engine, module) {
  using namespace molva_python;
  module.doc() = "libmolva's entry points over numpy arrays; use the package molva.";
  module.attr("version") = MOLVA_Version();
  const py::tuple bases =
      py::make_tuple(py::handle(PyExc_ValueError), py::handle(PyExc_RuntimeError));
  py::register_exception<LibraryError>(module, "MolvaError", bases);

  using py::arg;
  py::class_<Matrix>(module, "Matrix")
      .def(py::init<int, int, std::optional<Ints>, std::optional<Ints>, Floats>(), arg("nrows"),
           arg("ncols"), arg("rowptr").noconvert().none(true), arg("rowind").noconvert().none(true),
           arg("rowval").noconvert())
      .def_readonly("nrows", &Matrix::nrows)
      .def_readonly("ncols", &Matrix::ncols);
  py::class_<Models>(module, "Models")
      .def(py::init<int, int, int, float>(), arg("simfun"), arg("rowmodel"), arg("colmodel"),
           arg("prune"));

  module.def("cluster_by_bisection", &ClusterByBisection, arg("matrix"), arg("models"),
             arg("crfun"), arg("ntrials"), arg("niter"), arg("seed"), arg("refine"), arg("nparts"),
             arg("progress"));
  module.def("cluster_directly", &ClusterDirectly, arg("matrix"), arg("models"), arg("crfun"),
             arg("ntrials"), arg("niter"), arg("seed"), arg("nparts"), arg("progress"));
  module.def("cluster_statistics", &ClusterStatistics, arg("matrix"), arg("models"), arg("nparts"),
             arg("labels").noconvert());
  module.def("criterion_value", &CriterionValue, arg("matrix"), arg("models"), arg("nparts"),
             arg("labels").noconvert(), arg("crfun"));
  module.def("cluster_features", &ClusterFeatures, arg("matrix"), arg("models"), arg("nparts"),
             arg("labels").noconvert(), arg("nfeatures"));
  module.def("build_tree", &BuildTree, arg("matrix"), arg("models"), arg("crfun"), arg("treetype"),
             arg("nparts"), arg("labels").noconvert());
  module.def("order_tree", &OrderTree, arg("matrix"), arg("models"), arg("treetype"), arg("nparts"),
             arg("labels").noconvert(), arg("parents").noconvert(), arg("children").noconvert());
  module.def("prepare", &Prepare, arg("matrix"), arg("models"));
  module.def("read_matrix", &ReadMatrixFile, arg("path"), arg("dense"));
  module.def("num_threads", &MOLVA_GetNumThreads);
  module.def("set_num_threads", &SetNumThreads, arg("nthreads"));
  module.def("processors", &Processors);
  DefineBlockCalls(module);
}
