/* 48 inverses of a 200 x 200 matrix and the checks of matinv.bas: the hardware's
   reference. The matrices hold floats; the inverse is worked in doubles, as MAT INV works. */
#include <math.h>
#include <stdio.h>

#define N 200
static float a[N][N], b[N][N], c[N][N], d[N][N];
static double w[N][N];
static int pivots[N];

static void product(float x[N][N], float y[N][N], float out[N][N]) {
  static double sum[N];
  for (int i = 0; i < N; i++) {
    for (int j = 0; j < N; j++) sum[j] = 0;
    for (int k = 0; k < N; k++)
      for (int j = 0; j < N; j++) sum[j] += (double)x[i][k] * y[k][j];
    for (int j = 0; j < N; j++) out[i][j] = (float)sum[j];
  }
}

static void inverse(void) {
  for (int i = 0; i < N; i++)
    for (int j = 0; j < N; j++) w[i][j] = a[i][j];
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
  for (int i = 0; i < N; i++)
    for (int j = 0; j < N; j++) b[i][j] = (float)w[i][j];
}

int main(void) {
  for (int i = 0; i < N; i++) {
    for (int j = 0; j < N; j++) a[i][j] = ((i + 1) * (j + 1) + i + 1) % 7;
    a[i][i] += 600;
  }
  for (int r = 0; r < 48; r++) {
    inverse();
    product(a, b, c);
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
