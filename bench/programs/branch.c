/* SELECT and IF: the hardware's reference for branch.bas, with float counters. */
#include <stdio.h>

int main(void) {
  float a = 0, b = 0, c = 0, d = 0, e = 0, f = 0;
  for (int r = 1; r <= 8; r++) {
    a = b = c = d = e = f = 0;
    for (int i = 1; i <= 2400000; i++) {
      int k = i % 10;
      switch (k) {
        case 0: a = a + 1; break;
        case 1: case 2: b = b + 1; break;
        case 3: case 4: case 5: c = c + 1; break;
        default: d = d + 1;
      }
      if (k > 6)
        e = e + 1;
      else if (k < 3)
        f = f + 1;
    }
  }
  printf("%.0f %.0f %.0f %.0f %.0f %.0f\n", a, b, c, d, e, f);
  return 0;
}
