// SPDX-License-Identifier: MIT
#include "tools/export/export_run.h"

int main(int argc, char** argv) { return mardle::exporting::Export(argc, argv); }
