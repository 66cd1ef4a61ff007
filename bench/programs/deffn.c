/* DEF FN: the hardware's reference for deffn.bas, two float functions. */
#include <math.h>
#include <stdio.h>

static float fna(float x) { return x * x + 1; }
static float fnb(float x, float y) { return fmodf(fna(x) + y, 1000); }

int main(void) {
  float s = 0;
  for (int r = 1; r <= 7; r++)
    for (int i = 1; i <= 2500000; i++) {
      s = s + fnb(i % 100, i % 7);
      if (s >= 100000) s = s - 100000;
    }
  printf("%.0f\n", s);
  return 0;
}
