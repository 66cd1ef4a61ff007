/* String building and substrings: the hardware's reference for strings.bas, with
   character buffers and a float sum. */
#include <math.h>
#include <stdio.h>
#include <string.h>

int main(void) {
  char b[501], c[11], t[16];
  float n = 0;
  for (int k = 1; k <= 12000; k++) {
    size_t length = 0;
    for (int i = 1; i <= 500; i++) {
      b[length++] = (char)(65 + (i + k) % 26);
      b[length] = 0;
    }
    for (int i = 1; i <= 490; i++) {
      memcpy(c, b + i - 1, 10);
      c[10] = 0;
      int right = i % 5;
      memcpy(t, c, 3);
      memcpy(t + 3, c + 10 - right, (size_t)right);
      t[3 + right] = 0;
      n = n + (unsigned char)c[4] + strlen(t);
    }
    n = fmodf(n, 100000);
  }
  printf("%.0f\n", n);
  return 0;
}
