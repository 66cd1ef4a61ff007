/* Float arithmetic: the hardware's reference for float_loop.bas. */
#include <math.h>
#include <stdio.h>

int main(void) {
  double t = 0;
  for (int i = 1; i <= 6000; i++) {
    double s = 0;
    for (int j = 1; j <= 1000; j++) {
      double x = j / 1000.0 + i / 4000.0;
      s = s + x * x * 0.5 - x / 3 + 1 / (x + 1);
    }
    t = t + s;
  }
  printf("%.0f\n", floor(t / 1000 + 0.5));
  return 0;
}
