local fmt = string.format
for r = 1, 10 do
  for i = 1, 500000 do io.write(fmt("%10.2f\n", (i % 50000) / 4)) end
end
