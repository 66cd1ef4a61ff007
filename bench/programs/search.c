/* String comparison and searching: the hardware's reference for search.bas. */
#include <math.h>
#include <stdio.h>
#include <string.h>

static char w[2001][4];
static char t[1201];

int main(void) {
  for (int i = 1; i <= 2000; i++) {
    w[i][0] = (char)(65 + (i * 7) % 26);
    w[i][1] = (char)(65 + (i * 11) % 26);
    w[i][2] = (char)(65 + (i * 13) % 19);
  }
  size_t length = 0;
  for (int i = 1; i <= 2000; i += 5) {
    memcpy(t + length, w[i], 3);
    length += 3;
  }
  float l = 0, e = 0, f = 0;
  for (int r = 1; r <= 6; r++) {
    l = e = f = 0;
    for (int i = 1; i <= 2000; i++) {
      for (int j = 1; j <= 2000; j++) {
        if (strcmp(w[i], w[j]) < 0) l = l + 1;
        if (strcmp(w[i], w[j]) == 0) e = e + 1;
      }
      const char* at = strstr(t, w[i]);
      f = f + (at ? (float)(at - t + 1) : 0);
    }
  }
  printf("%.0f %.0f %.0f\n", fmodf(l, 100000), e, fmodf(f, 100000));
  return 0;
}
