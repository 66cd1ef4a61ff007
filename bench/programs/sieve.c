/* Sieve of Eratosthenes: the hardware's reference for sieve.bas, its flags floats. */
#include <stdio.h>

static float f[1000001];

int main(void) {
  const int n = 1000000;
  float c = 0;
  for (int p = 1; p <= 16; p++) {
    for (int i = 2; i <= n; i++) f[i] = 1;
    for (int i = 2; i * i <= n; i++)
      if (f[i] == 1)
        for (int j = i * i; j <= n; j += i) f[j] = 0;
    c = 0;
    for (int i = 2; i <= n; i++) c += f[i];
  }
  printf("%.0f\n", c);
  return 0;
}
