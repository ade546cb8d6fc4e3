// SPDX-License-Identifier: MIT
//
// Integer and floating logarithms to base 2.
#pragma once

namespace molva {

// floor(log2 n) for n >= 2, else 0.
int Log2Int(int n);

// 1 when n is a positive power of two (1 counts), else 0.
int IsPowerOf2(int n);

// ln x / ln 2, brought to single precision.
float Log2Float(float x);

}  // namespace molva
