// SPDX-License-Identifier: MIT
//
// What all calls of the library from Python share: they run without the interpreter's lock, turn
// the library's errors into exceptions and let signals stop them; and the arrays that they take and
// give.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "lib/molva.h"

namespace molva_python {

namespace py = pybind11;

using Ints = py::array_t<int, py::array::c_style>;
using Floats = py::array_t<float, py::array::c_style>;

struct LibraryError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// ---- Running without the lock

// What the library's hook asks: passes events on to Python and lets signal handlers run. Both need
// the lock, which polls take only now and then.
class Watcher {
 public:
  explicit Watcher(const py::object& progress) : progress_(progress) {}

  // True when a Python exception waits to be raised.
  bool raised() const { return raised_; }

  static int Hook(MOLVA_Event event, int done, int total, void* self) {
    return static_cast<Watcher*>(self)->GoesOn(event, done, total) ? 0 : 1;
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::milliseconds kBetweenSignalChecks{50};

  bool GoesOn(MOLVA_Event event, int done, int total) {
    const bool tells = event != MOLVA_EVENT_POLL && !progress_.is_none();
    const auto now = Clock::now();
    if (!tells && now - last_check_ < kBetweenSignalChecks) return true;
    last_check_ = now;
    const py::gil_scoped_acquire locked;
    raised_ = (tells && !Tell(event, done, total)) || PyErr_CheckSignals() != 0;
    return !raised_;
  }

  bool Tell(MOLVA_Event event, int done, int total) {
    try {
      progress_(static_cast<int>(event), done, total);
      return true;
    } catch (py::error_already_set& error) {
      error.restore();
      return false;
    }
  }

  const py::object& progress_;
  Clock::time_point last_check_ = Clock::now();
  bool raised_ = false;
};

// Messages of the program end with a newline now and then.
inline std::string WithoutNewlines(std::string text) {
  text.erase(std::find_if(text.rbegin(), text.rend(), [](char c) { return c != '\n'; }).base(),
             text.end());
  return text;
}

// Has the library's runs in this thread watched. What Python does meanwhile, in a signal handler or
// while it prints, may run the library again, so the watcher in place before comes back.
class Watch {
 public:
  explicit Watch(Watcher& watcher) : before_(std::exchange(current_, &watcher)) { Hook(); }
  ~Watch() {
    current_ = before_;
    Hook();
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;

 private:
  static void Hook() {
    MOLVA_SetProgressHook(current_ == nullptr ? nullptr : &Watcher::Hook, current_);
  }

  static inline thread_local Watcher* current_ = nullptr;
  Watcher* before_;
};

template <typename Call>
void Run(const py::object& progress, Call call) {
  Watcher watcher(progress);
  char message[2048];
  int failed = 0;
  {
    const py::gil_scoped_release unlocked;
    const Watch watch(watcher);
    failed = MOLVA_Try([](void* argument) { (*static_cast<Call*>(argument))(); }, &call, message,
                       sizeof message);
  }
  if (watcher.raised()) throw py::error_already_set();
  if (failed != 0) throw LibraryError(WithoutNewlines(message));
}

template <typename Call>
void Run(Call call) {
  Run(py::none(), call);
}

// ---- Arguments

inline void Check(bool holds, const char* message) {
  if (!holds) throw py::value_error(message);
}

// A borrowed matrix, its arrays kept alive: row-compressed, or dense when rowptr is absent.
struct Matrix {
  Matrix(int rows, int columns, std::optional<Ints> starts, std::optional<Ints> entry_columns,
         Floats values)
      : nrows(rows), ncols(columns), starts_(starts), columns_(entry_columns), values_(values) {
    Check(nrows >= 0 && ncols >= 0, "the shape of the matrix is negative");
    Check(starts_.has_value() == columns_.has_value(), "rowptr and rowind go together");
    if (!starts_) {
      Check(values_.size() == py::ssize_t{nrows} * ncols, "rowval does not fill the matrix");
      rowval = values_.data();
      return;
    }
    Check(starts_->size() == py::ssize_t{nrows} + 1, "rowptr needs nrows + 1 elements");
    rowptr = starts_->data();
    Check(std::min(columns_->size(), values_.size()) >= rowptr[nrows], "rowptr passes the entries");
    rowind = columns_->data();
    rowval = values_.data();
  }

  int nrows;
  int ncols;
  const int* rowptr = nullptr;
  const int* rowind = nullptr;
  const float* rowval = nullptr;

 private:
  std::optional<Ints> starts_;
  std::optional<Ints> columns_;
  Floats values_;
};

// How rows become unit vectors; the codes of molva.h.
struct Models {
  int simfun;
  int rowmodel;
  int colmodel;
  float prune;
};

template <typename T>
py::array_t<T> Filled(py::array::ShapeContainer shape, T value) {
  py::array_t<T> array(std::move(shape));
  std::fill_n(array.mutable_data(), array.size(), value);
  return array;
}

// An array of the library's as a numpy array, released with it.
template <typename T>
py::array_t<T> Adopt(std::unique_ptr<T, decltype(&MOLVA_Free)> block, py::ssize_t size) {
  if (block == nullptr) return py::array_t<T>(py::ssize_t{0});
  T* data = block.get();
  const py::capsule owner(data, [](void* array) { MOLVA_Free(array); });
  block.release();
  return py::array_t<T>(size, data, owner);
}

// The entry points for blocks of rows.
void DefineBlockCalls(py::module_& module);

}  // namespace molva_python
