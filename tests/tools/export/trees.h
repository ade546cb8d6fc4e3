// SPDX-License-Identifier: MIT
//
// Two tree files, small enough to be worked out by hand.
#pragma once

// Five leaves: 5 joins 1 and 3, 6 joins 0 and 4, 7 joins 2 and 5, 8 joins 6 and 7.
inline constexpr char kFiveLeaves[] =
    "6 0.000000\n"
    "5 0.000000\n"
    "7 0.000000\n"
    "5 0.000000\n"
    "6 0.000000\n"
    "7 0.900000\n"
    "8 0.800000\n"
    "8 0.950000\n"
    "-1 0.250000\n";

// Leaf 2 was dropped: 5 joins 1 and 3, 6 joins 0 and 4, 7 joins 5 and 6, 8 stands for nothing.
inline constexpr char kFiveLeavesOneDropped[] =
    "6 0.000000\n"
    "5 0.000000\n"
    "-1 0.000000\n"
    "5 0.000000\n"
    "6 0.000000\n"
    "7 0.900000\n"
    "7 0.800000\n"
    "-1 0.250000\n"
    "-1 0.000000\n";
