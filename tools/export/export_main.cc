// SPDX-License-Identifier: MIT
//
// mardle-export: makes tables, trees and pages of what mardle wrote.
#include "tools/export/export_run.h"
#include "tools/text/tool_frame.h"

int main(int argc, char** argv) {
  mardle::tools::PrepareTool();
  return mardle::exporting::Export(argc, argv);
}
