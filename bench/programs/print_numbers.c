/* PRINT of 500,000 numbers ten times: the hardware's reference for print_numbers.bas. */
#include <stdio.h>

int main(void) {
  for (int r = 1; r <= 10; r++)
    for (int i = 1; i <= 500000; i++) printf("%d\n", i);
  return 0;
}
