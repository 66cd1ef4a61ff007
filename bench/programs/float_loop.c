/* Float arithmetic: the hardware's reference for float_loop.bas, in single precision. */
#include <math.h>
#include <stdio.h>

int main(void) {
  float t = 0;
  for (int r = 1; r <= 6; r++) {
    t = 0;
    for (int i = 1; i <= 6000; i++) {
      float s = 0;
      for (int j = 1; j <= 1000; j++) {
        float x = j / 1000.0f + i / 4000.0f;
        s = s + x * x * 0.5f - x / 3 + 1 / (x + 1);
      }
      t = t + s;
    }
  }
  printf("%.0f\n", floorf(t / 1000 + 0.5f));
  return 0;
}
