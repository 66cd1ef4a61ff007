/* Three inverses of a 200 x 200 matrix and the checks of matinv.bas: the
   hardware's reference. */
#include <math.h>
#include <stdio.h>
#include <string.h>

#define N 200
static double a[N][N], w[N][N], c[N][N], d[N][N];
static int pivots[N];

static void product(double x[N][N], double y[N][N], double out[N][N]) {
  for (int i = 0; i < N; i++) {
    for (int j = 0; j < N; j++) out[i][j] = 0;
    for (int k = 0; k < N; k++)
      for (int j = 0; j < N; j++) out[i][j] += x[i][k] * y[k][j];
  }
}

static void inverse(void) {
  memcpy(w, a, sizeof w);
  for (int k = 0; k < N; k++) {
    int best = k;
    double largest = fabs(w[k][k]);
    for (int i = k + 1; i < N; i++)
      if (fabs(w[i][k]) > largest) largest = fabs(w[i][k]), best = i;
    pivots[k] = best;
    for (int j = 0; j < N; j++) {
      double t = w[k][j];
      w[k][j] = w[best][j];
      w[best][j] = t;
    }
    double pivot = w[k][k];
    w[k][k] = 1;
    for (int j = 0; j < N; j++) w[k][j] /= pivot;
    for (int i = 0; i < N; i++) {
      if (i == k || w[i][k] == 0) continue;
      double f = w[i][k];
      w[i][k] = 0;
      for (int j = 0; j < N; j++) w[i][j] -= f * w[k][j];
    }
  }
  for (int k = N - 1; k >= 0; k--)
    if (pivots[k] != k)
      for (int i = 0; i < N; i++) {
        double t = w[i][k];
        w[i][k] = w[i][pivots[k]];
        w[i][pivots[k]] = t;
      }
}

int main(void) {
  for (int i = 0; i < N; i++) {
    for (int j = 0; j < N; j++) a[i][j] = ((i + 1) * (j + 1) + i + 1) % 7;
    a[i][i] += 600;
  }
  for (int r = 0; r < 3; r++) {
    inverse();
    product(a, w, c);
  }
  double t = 0, e = 0;
  for (int i = 0; i < N; i++) {
    t += c[i][i];
    for (int j = 0; j < N; j++) e = fmax(e, fabs(c[i][j] - (i == j)));
  }
  printf("%.0f\n%s\n", floor(t + 0.5), e < 0.0001 ? "IDENTITY" : "NOT THE IDENTITY");
  product(a, a, d);
  long s = 0;
  for (int i = 0; i < N; i++) s = (s + (long)d[i][N - 1 - i]) % 9973;
  printf("%ld\n", s);
  return 0;
}
