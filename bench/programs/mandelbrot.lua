local t, n
for p = 1, 40 do
  t, n = 0, 0
  for y = 0, 119 do
    local ci = y / 50 - 1.2
    for x = 0, 159 do
      local cr = x / 50 - 2.2
      local zr, zi, k = 0.0, 0.0, 0
      while k < 100 and zr * zr + zi * zi <= 4 do
        local t1 = zr * zr - zi * zi + cr
        zi = 2 * zr * zi + ci
        zr = t1
        k = k + 1
      end
      t = t + k
      if k == 100 then n = n + 1 end
    end
  end
end
print(n, math.floor(t / 1000))
