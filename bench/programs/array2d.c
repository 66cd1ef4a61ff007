/* Nested loops over a 2-D array: the hardware's reference for array2d.bas, in single
   precision. */
#include <math.h>
#include <stdio.h>

static float a[301][301];

int main(void) {
  for (int i = 1; i <= 300; i++)
    for (int j = 1; j <= 300; j++) a[i][j] = (i * j) % 7;
  for (int k = 1; k <= 240; k++)
    for (int i = 2; i <= 300; i++)
      for (int j = 2; j <= 300; j++) a[i][j] = fmodf(a[i - 1][j] + a[i][j - 1] + a[i][j], 1000);
  float s = 0;
  for (int i = 1; i <= 300; i++) s = s + a[i][300] + a[300][i];
  printf("%.0f\n", s);
  return 0;
}
