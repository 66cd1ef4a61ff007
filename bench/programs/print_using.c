/* PRINT USING with two decimals: the hardware's reference for print_using.bas. */
#include <stdio.h>

int main(void) {
  for (int r = 1; r <= 10; r++)
    for (int i = 1; i <= 500000; i++) printf("%10.2f\n", (i % 50000) / 4.0f);
  return 0;
}
