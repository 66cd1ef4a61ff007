/* Mandelbrot set: the hardware's reference for mandelbrot.bas, in single precision. */
#include <stdio.h>

int main(void) {
  float t = 0;
  int n = 0;
  for (int p = 1; p <= 40; p++) {
    t = 0;
    n = 0;
    for (int y = 0; y <= 119; y++) {
      float ci = y / 50.0f - 1.2f;
      for (int x = 0; x <= 159; x++) {
        float cr = x / 50.0f - 2.2f, zr = 0, zi = 0;
        int k = 0;
        while (k < 100 && zr * zr + zi * zi <= 4) {
          float t1 = zr * zr - zi * zi + cr;
          zi = 2 * zr * zi + ci;
          zr = t1;
          k++;
        }
        t += k;
        if (k == 100) n++;
      }
    }
  }
  printf("%d %d\n", n, (int)(t / 1000));
  return 0;
}
