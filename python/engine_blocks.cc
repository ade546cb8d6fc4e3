// SPDX-License-Identifier: MIT
//
// The library's entry points for blocks of rows over numpy arrays.
#include <cstdint>

#include "python/engine_call.h"

namespace molva_python {
namespace {

using Longs = py::array_t<std::int64_t, py::array::c_style>;
using Hashes = py::array_t<std::uint64_t, py::array::c_style>;
using Doubles = py::array_t<double, py::array::c_style>;
using Bytes = py::array_t<signed char, py::array::c_style>;

// How the rows of every block are prepared; null arrays for none.
struct Space {
  Space(int simfun_code, int rowmodel_code, std::optional<Floats> column_weights,
        std::optional<Bytes> kept_columns)
      : simfun(simfun_code), rowmodel(rowmodel_code), weights(column_weights), kept(kept_columns) {}

  MOLVA_Space Of(const Matrix& block) const {
    const auto covers = [&](const auto& array) { return !array || array->size() == block.ncols; };
    Check(covers(weights) && covers(kept), "the block has other columns than the space");
    return {simfun, rowmodel, weights ? weights->data() : nullptr, kept ? kept->data() : nullptr};
  }

  int simfun;
  int rowmodel;
  std::optional<Floats> weights;
  std::optional<Bytes> kept;
};

// What the rows of a pass are judged against, its arrays kept alive.
struct View {
  View(Floats all_composites, Floats all_rows, Longs sizes, Doubles lengths, Doubles similarities)
      : composites(all_composites),
        whole(all_rows),
        pwgts(sizes),
        dnorms(lengths),
        csim(similarities) {
    Check(composites.size() == whole.size() * pwgts.size() && dnorms.size() == pwgts.size() &&
              csim.size() == pwgts.size(),
          "the arrays of the view are of different sizes");
  }

  MOLVA_View view() const {
    return {static_cast<int>(pwgts.size()),
            static_cast<int>(whole.size()),
            composites.data(),
            whole.data(),
            pwgts.data(),
            dnorms.data(),
            csim.data()};
  }

  Floats composites, whole;
  Longs pwgts;
  Doubles dnorms, csim;
};

struct Sums {
  explicit Sums(const Longs& array) : sums(array.data()) {
    Check(array.ndim() == 2, "the sums are no table of clusters and columns");
    nparts = static_cast<int>(array.shape(0));
    ncols = static_cast<int>(array.shape(1));
  }
  int nparts, ncols;
  const std::int64_t* sums;
};

Longs CountColumns(const Matrix& m) {
  Longs counts = Filled<std::int64_t>({m.ncols}, 0);
  Run([&, into = counts.mutable_data()] {
    MOLVA_B_CountColumns(m.nrows, m.ncols, m.rowptr, m.rowind, into);
  });
  return counts;
}

Floats WeighColumns(const Longs& counts, std::int64_t nrows) {
  Floats weights = Filled<float>({counts.size()}, 0);
  MOLVA_B_WeighColumns(static_cast<int>(counts.size()), nrows, counts.data(),
                       weights.mutable_data());
  return weights;
}

Longs SumColumns(const Matrix& m) {
  Longs sums = Filled<std::int64_t>({m.ncols}, 0);
  Run([&, into = sums.mutable_data()] {
    MOLVA_B_SumColumns(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, into);
  });
  return sums;
}

Bytes ChooseColumns(float prune, const Longs& counts, const std::optional<Longs>& sums) {
  Check(!sums || sums->size() == counts.size(), "every column needs a sum");
  Bytes kept = Filled<signed char>({counts.size()}, 0);
  Run([&, into = kept.mutable_data()] {
    MOLVA_B_ChooseColumns(static_cast<int>(counts.size()), prune, counts.data(),
                          sums ? sums->data() : nullptr, into);
  });
  return kept;
}

template <typename T>
using Handed = std::unique_ptr<T, decltype(&MOLVA_Free)>;

// Row starts, columns, values, and the block's row of each prepared one.
py::tuple PrepareBlock(const Matrix& m, const Space& space) {
  const MOLVA_Space used = space.Of(m);
  int nrows = 0, ncols = 0;
  int* rowptr = nullptr;
  int* rowind = nullptr;
  float* rowval = nullptr;
  Ints rperm = Filled<int>({m.nrows}, 0);
  Run([&, row_of = rperm.mutable_data()] {
    MOLVA_B_Prepare(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, &used, &nrows, &ncols, &rowptr,
                    &rowind, &rowval, row_of);
  });
  Handed<int> starts(rowptr, MOLVA_Free), columns(rowind, MOLVA_Free);
  Handed<float> values(rowval, MOLVA_Free);
  const py::ssize_t entries = rowptr[nrows];
  return py::make_tuple(nrows, ncols, Adopt<int>(std::move(starts), py::ssize_t{nrows} + 1),
                        Adopt<int>(std::move(columns), entries),
                        Adopt<float>(std::move(values), entries), rperm);
}

Hashes HashRows(std::int64_t first, int nrows, std::uint64_t salt) {
  Hashes hashes(py::ssize_t{std::max(nrows, 0)});
  MOLVA_B_HashRows(first, nrows, salt, hashes.mutable_data());
  return hashes;
}

Ints AssignRows(const Matrix& m, const View& view, int crfun, const Ints& part) {
  Check(part.size() == m.nrows, "every row of the block needs a label");
  Check(view.whole.size() == m.ncols, "the block has other columns than the view");
  Ints best = Filled<int>({m.nrows}, -1);
  const MOLVA_View against = view.view();
  Run([&, labels = part.data(), into = best.mutable_data()] {
    MOLVA_B_AssignRows(m.nrows, m.rowptr, m.rowind, m.rowval, crfun, &against, labels, into);
  });
  return best;
}

// Starts, columns and sums of the lists, and the reach of the rows.
py::tuple SumChanges(const Matrix& m, int nlists, const Ints& from, const Ints& to) {
  Check(from.size() == m.nrows && to.size() == m.nrows, "every row of the block needs its lists");
  Longs starts = Filled<std::int64_t>({py::ssize_t{nlists} + 1}, 0);
  int* columns = nullptr;
  std::int64_t* sums = nullptr;
  std::int64_t reach = 0;
  Run([&, left = from.data(), joined = to.data(), into = starts.mutable_data()] {
    reach = MOLVA_B_SumChanges(m.nrows, m.ncols, m.rowptr, m.rowind, m.rowval, nlists, left, joined,
                               into, &columns, &sums);
  });
  Handed<int> of_columns(columns, MOLVA_Free);
  Handed<std::int64_t> of_sums(sums, MOLVA_Free);
  const py::ssize_t size = starts.at(nlists);
  return py::make_tuple(starts, Adopt<int>(std::move(of_columns), size),
                        Adopt<std::int64_t>(std::move(of_sums), size), reach);
}

py::tuple AverageRows(const Matrix& m, const View& view, const Ints& part) {
  Check(part.size() == m.nrows, "every row of the block needs a label");
  Check(view.whole.size() == m.ncols, "the block has other columns than the view");
  Floats internal = Filled<float>({m.nrows}, 0), external = Filled<float>({m.nrows}, 0);
  const MOLVA_View against = view.view();
  Run([&, labels = part.data(), inside = internal.mutable_data(),
       outside = external.mutable_data()] {
    MOLVA_B_AverageRows(m.nrows, m.rowptr, m.rowind, m.rowval, &against, labels, inside, outside);
  });
  return py::make_tuple(internal, external);
}

py::tuple MeasureSums(const Longs& array) {
  const Sums s(array);
  Doubles dnorms = Filled<double>({s.nparts}, 0), csim = Filled<double>({s.nparts}, 0);
  Run([&, lengths = dnorms.mutable_data(), similarities = csim.mutable_data()] {
    MOLVA_B_MeasureSums(s.nparts, s.ncols, s.sums, lengths, similarities);
  });
  return py::make_tuple(dnorms, csim);
}

Floats MultiplySums(const Longs& array) {
  const Sums s(array);
  Floats smat = Filled<float>({s.nparts, s.nparts}, 0);
  Run([&, into = smat.mutable_data()] { MOLVA_B_MultiplySums(s.nparts, s.ncols, s.sums, into); });
  return smat;
}

// The composites with the clusters side by side, and the whole.
py::tuple MakeView(const Longs& array, double scale) {
  const Sums s(array);
  Floats composites = Filled<float>({s.ncols, s.nparts}, 0), whole = Filled<float>({s.ncols}, 0);
  Run([&, into = composites.mutable_data(), all = whole.mutable_data()] {
    MOLVA_B_MakeView(s.nparts, s.ncols, s.sums, scale, into, all);
  });
  return py::make_tuple(composites, whole);
}

double ValueOfSums(int crfun, const Longs& pwgts, const Doubles& dnorms, const Doubles& csim) {
  Check(pwgts.size() == dnorms.size() && pwgts.size() == csim.size(),
        "the measures are of different numbers of clusters");
  double value = 0;
  Run([&, sizes = pwgts.data(), lengths = dnorms.data(), similarities = csim.data()] {
    value =
        MOLVA_B_CriterionValue(crfun, static_cast<int>(pwgts.size()), sizes, lengths, similarities);
  });
  return value;
}

// The tree over items by their products: parents, similarities.
py::tuple MergeItems(const Ints& sizes, Floats products, int crfun) {
  const auto n = static_cast<int>(sizes.size());
  Check(products.size() == py::ssize_t{n} * n, "the products are no square of the items");
  const py::ssize_t nodes = 2 * py::ssize_t{n};
  Ints parents = Filled<int>({nodes}, -1), part = Filled<int>({n}, 0);
  Floats similarities = Filled<float>({nodes}, 0), gains = Filled<float>({nodes}, 0);
  constexpr int kKeepsProducts = 1;
  Run([&, weights = sizes.data(), smat = products.mutable_data(), ptree = parents.mutable_data(),
       tsims = similarities.mutable_data(), steps = gains.mutable_data(),
       labels = part.mutable_data()] {
    MOLVA_SA_Cluster(n, weights, smat, crfun, kKeepsProducts, 0, 1, labels, ptree, tsims, steps);
  });
  return py::make_tuple(parents, similarities);
}

Ints OrderItems(const Ints& sizes, Floats products, const Ints& parents, const Ints& children) {
  const auto n = static_cast<int>(sizes.size());
  const py::ssize_t nodes = 2 * py::ssize_t{n};
  Check(products.size() == py::ssize_t{n} * n, "the products are no square of the items");
  Check(parents.size() == nodes && children.size() == 2 * nodes, "the tree is of another size");
  Ints ordered = Filled<int>({nodes, py::ssize_t{2}}, -1);
  std::copy_n(children.data(), children.size(), ordered.mutable_data());
  constexpr int kKeepsProducts = 1;
  Run([&, weights = sizes.data(), smat = products.mutable_data(), ptree = parents.data(),
       ftree = ordered.mutable_data()] {
    MOLVA_S_TreeReorder(n, weights, smat, kKeepsProducts, 0, ptree, ftree);
  });
  return ordered;
}

}  // namespace

void DefineBlockCalls(py::module_& module) {
  using py::arg;
  py::class_<Space>(module, "BlockSpace")
      .def(py::init<int, int, std::optional<Floats>, std::optional<Bytes>>(), arg("simfun"),
           arg("rowmodel"), arg("weights").noconvert().none(true),
           arg("kept").noconvert().none(true));
  py::class_<View>(module, "BlockView")
      .def(py::init<Floats, Floats, Longs, Doubles, Doubles>(), arg("composites").noconvert(),
           arg("whole").noconvert(), arg("pwgts").noconvert(), arg("dnorms").noconvert(),
           arg("csim").noconvert());
  module.def("count_columns", &CountColumns, arg("block"));
  module.def("weigh_columns", &WeighColumns, arg("counts").noconvert(), arg("nrows"));
  module.def("sum_columns", &SumColumns, arg("block"));
  module.def("choose_columns", &ChooseColumns, arg("prune"), arg("counts").noconvert(),
             arg("sums").noconvert().none(true));
  module.def("prepare_block", &PrepareBlock, arg("block"), arg("space"));
  module.def("hash_rows", &HashRows, arg("first"), arg("nrows"), arg("salt"));
  module.def("assign_rows", &AssignRows, arg("block"), arg("view"), arg("crfun"),
             arg("labels").noconvert());
  module.def("sum_changes", &SumChanges, arg("block"), arg("nlists"), arg("from").noconvert(),
             arg("to").noconvert());
  module.def("average_rows", &AverageRows, arg("block"), arg("view"), arg("labels").noconvert());
  module.def("measure_sums", &MeasureSums, arg("sums").noconvert());
  module.def("multiply_sums", &MultiplySums, arg("sums").noconvert());
  module.def("make_view", &MakeView, arg("sums").noconvert(), arg("scale"));
  module.def("value_of_sums", &ValueOfSums, arg("crfun"), arg("pwgts").noconvert(),
             arg("dnorms").noconvert(), arg("csim").noconvert());
  module.def("merge_items", &MergeItems, arg("sizes").noconvert(), arg("products").noconvert(),
             arg("crfun"));
  module.def("order_items", &OrderItems, arg("sizes").noconvert(), arg("products").noconvert(),
             arg("parents").noconvert(), arg("children").noconvert());
}

}  // namespace molva_python
