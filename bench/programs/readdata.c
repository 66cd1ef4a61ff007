/* READ and DATA: the hardware's reference for readdata.bas; DATA becomes an array of
   floats and READ an index that RESTORE resets. */
#include <stdio.h>

static const float data[20] = {3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5, 8, 9, 7, 9, 3, 2, 3, 8, 4};

int main(void) {
  float s = 0;
  for (int i = 1; i <= 2500000; i++) {
    int pos = 0;
    for (int j = 1; j <= 20; j++) {
      float v = data[pos++];
      s = s + v * j;
    }
    if (s >= 99991) s = s - 99991;
  }
  printf("%.0f\n", s);
  return 0;
}
