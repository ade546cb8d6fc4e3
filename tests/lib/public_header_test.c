/* SPDX-License-Identifier: MIT
 *
 * molva.h is C: this program clusters four rows through it and checks what comes back. */
#include "lib/molva.h"

#include <stdio.h>

int main(void) {
  const int rowptr[] = {0, 1, 2, 3, 4};
  const int rowind[] = {0, 1, 0, 1};
  const float rowval[] = {1.0f, 1.0f, 2.0f, 3.0f};
  int part[4] = {-1, -1, -1, -1};
  MOLVA_VP_ClusterRB(4, 2, rowptr, rowind, rowval, 1, 2, 1, 1, 1.0f, 10, 10, 1, 0, 0, 2, part);
  const float quality =
      MOLVA_V_GetSolutionQuality(4, 2, rowptr, rowind, rowval, 1, 2, 1, 1, 1.0f, 2, part);
  const int pairs_found = part[0] == part[2] && part[1] == part[3] && part[0] != part[1];
  if (!pairs_found || quality != 4.0f) {
    printf("part %d %d %d %d, quality %f\n", part[0], part[1], part[2], part[3], quality);
    return 1;
  }
  return 0;
}
