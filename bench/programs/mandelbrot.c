/* Mandelbrot set: the hardware's reference for mandelbrot.bas. */
#include <stdio.h>

int main(void) {
  long t = 0;
  int n = 0;
  for (int p = 1; p <= 8; p++) {
    t = 0;
    n = 0;
    for (int y = 0; y <= 119; y++) {
      double ci = y / 50.0 - 1.2;
      for (int x = 0; x <= 159; x++) {
        double cr = x / 50.0 - 2.2, zr = 0, zi = 0;
        int k = 0;
        while (k < 100 && zr * zr + zi * zi <= 4) {
          double t1 = zr * zr - zi * zi + cr;
          zi = 2 * zr * zi + ci;
          zr = t1;
          k++;
        }
        t += k;
        if (k == 100) n++;
      }
    }
  }
  printf("%d %ld\n", n, t / 1000);
  return 0;
}
