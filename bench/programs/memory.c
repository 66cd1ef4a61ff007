/* A 1,000,000-element float array, every element written: the peak memory of C. */
#include <stdio.h>
#include <stdlib.h>

int main(void) {
  float* a = malloc(1000001 * sizeof *a);
  if (!a) return 1;
  for (int i = 1; i <= 1000000; i++) a[i] = i % 10;
  float s = 0;
  for (int i = 1; i <= 1000000; i += 1000) s = s + a[i];
  printf("%.0f\n", s);
  free(a);
  return 0;
}
