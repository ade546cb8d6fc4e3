// SPDX-License-Identifier: MIT
//
// The text drawing of a binary tree: one line per node, numbers at the nodes, branches of "|" and
// "-". The root stands at column 0 of line 1; line 0 is left blank for a header.
#pragma once

#include <span>

#include "lib/support/alloc.h"
#include "lib/support/tree_arrays.h"

namespace mardle {

struct TreeDrawing {
  int lines = 0;             // lines in use, the header line included
  int width = 0;             // columns in use
  molva::Array<int> xnode;   // the column behind each node's number
  molva::Array<int> ynode;   // the line of each node, -1 for nodes that stand for nothing
  molva::Rows<char> canvas;  // one text per line, ended by a NUL
};

// Draws a tree of n leaves. All leaves stand in column 2n and internal node k in column
// 2 (2n - 2 - k), so nodes formed earlier stand further right. Lines end behind the number of their
// node, or, with fill_lines, are filled with blanks up to the width; line 0 is always as wide.
TreeDrawing DrawTree(int n, const molva::ChildTable& children, bool fill_lines);

}  // namespace mardle
