local n = 170
local a, b, c = {}, {}, {}
for i = 1, n do
  a[i], b[i], c[i] = {}, {}, {}
  for j = 1, n do
    a[i][j] = (i + j) % 5
    b[i][j] = (i * j) % 5
  end
end
for r = 1, 9 do
for i = 1, n do
  local ai, ci = a[i], c[i]
  for j = 1, n do
    local s = 0
    for k = 1, n do s = s + ai[k] * b[k][j] end
    ci[j] = s
  end
end
end
local s = 0
for i = 1, n do s = s + c[i][n + 1 - i] end
print(s)
