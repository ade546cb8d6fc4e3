// SPDX-License-Identifier: MIT
#include "tests/testing/oracles.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>

#include "lib/support/random.h"

namespace testing_support {

using molva::PreparedMatrix;
using molva::Row;
using molva::RowView;

WideVector DenseRow(const PreparedMatrix& mat, int i) {
  WideVector dense(static_cast<std::size_t>(mat.ncols));
  const RowView row = Row(mat, i);
  for (std::size_t p = 0; p < row.size(); ++p) {
    dense[static_cast<std::size_t>(row.columns[p])] += row.values[p];
  }
  return dense;
}

Wide Dot(const WideVector& a, const WideVector& b) {
  return std::inner_product(a.begin(), a.end(), b.begin(), Wide{0});
}

WideVector CompositeOf(const PreparedMatrix& mat, std::span<const int> part, int k) {
  WideVector composite(static_cast<std::size_t>(mat.ncols));
  for (int i = 0; i < mat.nrows; ++i) {
    if (k >= 0 && part[static_cast<std::size_t>(i)] != k) continue;
    const WideVector row = DenseRow(mat, i);
    for (std::size_t j = 0; j < row.size(); ++j) composite[j] += row[j];
  }
  return composite;
}

Wide CriterionValue(int code, const PreparedMatrix& mat, std::span<const int> part, int nparts) {
  const WideVector whole = CompositeOf(mat, part, -1);
  Wide i1 = 0, i2 = 0, e1 = 0, g1 = 0, g1_prime = 0, sized_g1 = 0;
  for (int k = 0; k < nparts; ++k) {
    const WideVector composite = CompositeOf(mat, part, k);
    const Wide n = static_cast<Wide>(std::count(part.begin(), part.end(), k));
    const Wide squared = Dot(composite, composite);
    const Wide outside = Dot(composite, whole);
    i1 += squared / n;
    i2 += molva::Sqrt(squared);
    e1 += n * outside / molva::Sqrt(squared);
    g1 += outside / squared;
    g1_prime += n * n * outside / squared;
    sized_g1 += n * outside / squared;
  }
  const Wide values[] = {
      i1, i2, e1, g1, g1_prime, i1 / e1, i2 / e1, i2 * molva::Sqrt(molva::Sqrt(i1)), sized_g1};
  return values[code - 1];
}

Wide QualityOf(int code, Wide value, int nrows) {
  const bool ratio = code == 6 || code == 7;
  const bool minimised = code == 3 || code == 4 || code == 5 || code == 9;
  if (ratio) return value;
  return minimised ? nrows / value : value / nrows;
}

namespace {

// The clusters during a plain refinement, single precision where they are stored.
struct PlainState {
  std::vector<int> n;
  std::vector<float> dnorms, csim, whole;
  std::vector<std::vector<float>> centers;
  Wide t = 0, a = 0, b = 0, value = 0;
};

float RoundedDot(const std::vector<float>& x, const std::vector<float>& y) {
  Wide sum = 0;
  for (std::size_t j = 0; j < x.size(); ++j) sum += Wide{x[j]} * y[j];
  return static_cast<float>(sum);
}

Wide OneTerm(int code, Wide n, Wide q, Wide s) {
  switch (code) {
    case 1:
      return q / n;
    case 2:
      return molva::Sqrt(q);
    case 3:
      return n * s / molva::Sqrt(q);
    case 4:
      return s / q;
    case 5:
      return n * n * s / q;
    default:
      return n * s / q;
  }
}

// The terms of the two sums of codes 6, 7 and 8.
int FirstOf(int code) { return code == 7 ? 2 : 1; }
int SecondOf(int code) { return code == 8 ? 2 : 3; }
bool HasTwoSums(int code) { return code >= 6 && code <= 8; }

Wide Combined(int code, Wide a, Wide b) { return code == 8 ? molva::QuarterPower(a) * b : a / b; }

PlainState StateOf(int code, const PreparedMatrix& mat, int nparts, std::span<const int> part) {
  const auto columns = static_cast<std::size_t>(mat.ncols);
  const auto clusters = static_cast<std::size_t>(nparts);
  PlainState state;
  state.n.resize(clusters);
  state.whole.resize(columns);
  state.centers.assign(clusters, std::vector<float>(columns));
  for (int i = 0; i < mat.nrows; ++i) {
    const auto k = static_cast<std::size_t>(part[static_cast<std::size_t>(i)]);
    const RowView row = Row(mat, i);
    ++state.n[k];
    for (std::size_t p = 0; p < row.size(); ++p) {
      const auto j = static_cast<std::size_t>(row.columns[p]);
      state.centers[k][j] += row.values[p];
      state.whole[j] += row.values[p];
    }
  }
  for (std::size_t k = 0; k < clusters; ++k) {
    state.dnorms.push_back(RoundedDot(state.centers[k], state.centers[k]));
    state.csim.push_back(RoundedDot(state.centers[k], state.whole));
    const Wide n = state.n[k];
    state.t += OneTerm(code, n, state.dnorms[k], state.csim[k]);
    state.a += OneTerm(FirstOf(code), n, state.dnorms[k], state.csim[k]);
    state.b += OneTerm(SecondOf(code), n, state.dnorms[k], state.csim[k]);
  }
  state.value = Combined(code, state.a, state.b);
  return state;
}

// Moves the row from one cluster to another if that improves the criterion; tells whether it did.
bool TryMove(int code, const RowView& row, std::size_t from, std::size_t to, PlainState& state) {
  Wide newfrom = state.dnorms[from], newto = state.dnorms[to], similarity = 0;
  for (std::size_t p = 0; p < row.size(); ++p) {
    const Wide v = row.values[p];
    const auto j = static_cast<std::size_t>(row.columns[p]);
    newfrom += v * (v - 2 * Wide{state.centers[from][j]});
    newto += v * (2 * Wide{state.centers[to][j]} + v);
    similarity += v * state.whole[j];
  }
  const auto before = [&](int term) {
    return OneTerm(term, state.n[from], state.dnorms[from], state.csim[from]) +
           OneTerm(term, state.n[to], state.dnorms[to], state.csim[to]);
  };
  const auto after = [&](int term) {
    return OneTerm(term, state.n[from] - 1, newfrom, state.csim[from] - similarity) +
           OneTerm(term, state.n[to] + 1, newto, state.csim[to] + similarity);
  };
  if (HasTwoSums(code)) {
    const Wide a = state.a - before(FirstOf(code)) + after(FirstOf(code));
    const Wide b = state.b - before(SecondOf(code)) + after(SecondOf(code));
    if (!(Combined(code, a, b) > state.value)) return false;
    state.a = a;
    state.b = b;
    state.value = Combined(code, a, b);
  } else {
    const float old_value = static_cast<float>(before(code));
    const float new_value = static_cast<float>(after(code));
    const bool maximised = code <= 2;
    if (maximised ? !(new_value > old_value) : !(new_value < old_value)) return false;
    state.t += Wide{new_value} - old_value;
  }
  state.dnorms[from] = static_cast<float>(newfrom);
  state.dnorms[to] = static_cast<float>(newto);
  state.csim[from] = static_cast<float>(state.csim[from] - similarity);
  state.csim[to] = static_cast<float>(state.csim[to] + similarity);
  --state.n[from];
  ++state.n[to];
  for (std::size_t p = 0; p < row.size(); ++p) {
    const auto j = static_cast<std::size_t>(row.columns[p]);
    state.centers[to][j] += row.values[p];
    state.centers[from][j] -= row.values[p];
  }
  return true;
}

std::vector<std::size_t> DrawnOrder(int nrows) {
  std::vector<std::size_t> order(static_cast<std::size_t>(nrows));
  std::iota(order.begin(), order.end(), std::size_t{0});
  for (int round = 0; round < nrows; ++round) {
    const auto u = static_cast<std::size_t>(drand48() * nrows);
    const auto v = static_cast<std::size_t>(drand48() * nrows);
    std::swap(order[u], order[v]);
  }
  return order;
}

}  // namespace

void SeedBoth(int seed) {
  molva::SeedGenerator(seed);
  srand48(seed);
}

void PlainSeeding(const PreparedMatrix& mat, int nparts, std::span<int> part) {
  std::vector<std::size_t> order(static_cast<std::size_t>(mat.nrows));
  std::iota(order.begin(), order.end(), std::size_t{0});
  for (int swap = 0; swap < 5 * mat.nrows; ++swap) {
    const auto u = static_cast<std::size_t>(drand48() * mat.nrows);
    const auto v = static_cast<std::size_t>(drand48() * mat.nrows);
    std::swap(order[u], order[v]);
  }
  const auto clusters = static_cast<std::size_t>(nparts);
  std::vector<float> dnorms(clusters);
  std::vector<std::vector<float>> centers(clusters,
                                          std::vector<float>(static_cast<std::size_t>(mat.ncols)));
  for (std::size_t taken = 0; taken < order.size(); ++taken) {
    const RowView row = Row(mat, static_cast<int>(order[taken]));
    std::size_t chosen = taken;
    Wide best_gain = 0;
    Wide best_length = 0;
    if (taken < clusters) {
      for (const Wide v : row.values) best_length += v * v;
    } else {
      for (std::size_t k = 0; k < clusters; ++k) {
        Wide length = dnorms[k];
        for (std::size_t p = 0; p < row.size(); ++p) {
          const Wide c = centers[k][static_cast<std::size_t>(row.columns[p])];
          const Wide v = row.values[p];
          length += (c + v) * (c + v) - c * c;
        }
        const Wide gain = molva::Sqrt(length) - molva::Sqrt(Wide{dnorms[k]});
        if (k > 0 && !(gain > best_gain)) continue;
        chosen = k;
        best_gain = gain;
        best_length = length;
      }
    }
    part[order[taken]] = static_cast<int>(chosen);
    dnorms[chosen] = static_cast<float>(best_length);
    for (std::size_t p = 0; p < row.size(); ++p) {
      float& c = centers[chosen][static_cast<std::size_t>(row.columns[p])];
      c = taken < clusters ? row.values[p] : c + row.values[p];
    }
  }
}

float PlainRefinement(int code, const PreparedMatrix& mat, int nparts, int niter,
                      std::span<int> part) {
  PlainState state = StateOf(code, mat, nparts, part);
  bool moved = true;
  for (int pass = 0; pass < niter && moved; ++pass) {
    moved = false;
    for (const std::size_t i : DrawnOrder(mat.nrows)) {
      if (state.n[static_cast<std::size_t>(part[i])] <= 2) continue;
      for (int k = 0; k < nparts; ++k) {
        if (k == part[i]) continue;
        const auto from = static_cast<std::size_t>(part[i]);
        if (!TryMove(code, Row(mat, static_cast<int>(i)), from, static_cast<std::size_t>(k),
                     state)) {
          continue;
        }
        part[i] = k;
        moved = true;
      }
    }
  }
  const Wide total = HasTwoSums(code) ? state.value : state.t;
  return static_cast<float>(QualityOf(code, total, mat.nrows));
}

}  // namespace testing_support
