/* Matrix product: the hardware's reference for matmul.bas, in single precision. */
#include <stdio.h>

#define N 170
static float a[N + 1][N + 1], b[N + 1][N + 1], c[N + 1][N + 1];

int main(void) {
  for (int i = 1; i <= N; i++)
    for (int j = 1; j <= N; j++) {
      a[i][j] = (i + j) % 5;
      b[i][j] = (i * j) % 5;
    }
  for (int r = 1; r <= 9; r++)
    for (int i = 1; i <= N; i++)
      for (int j = 1; j <= N; j++) {
        float s = 0;
        for (int k = 1; k <= N; k++) s += a[i][k] * b[k][j];
        c[i][j] = s;
      }
  float s = 0;
  for (int i = 1; i <= N; i++) s += c[i][N + 1 - i];
  printf("%.0f\n", s);
  return 0;
}
