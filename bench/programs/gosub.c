/* GOSUB and RETURN: the hardware's reference for gosub.bas, two functions sharing a
   float. */
#include <stdio.h>

static float s;

static void sub2(void) {
  if (s >= 29989) s = s - 29989;
}

static void sub1(void) {
  s = s + 3;
  sub2();
}

int main(void) {
  s = 0;
  for (int r = 1; r <= 5; r++)
    for (int i = 1; i <= 7500000; i++) sub1();
  printf("%.0f\n", s);
  return 0;
}
