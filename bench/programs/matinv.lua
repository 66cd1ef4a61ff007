-- 48 inverses of a 200 x 200 matrix by Gauss-Jordan elimination with partial
-- pivoting, each checked by a product; then the integer product of the matrix with itself.
local n = 200
local function matrix()
  local m = {}
  for i = 1, n do m[i] = {} end
  return m
end
local function product(a, b)
  local c = matrix()
  for i = 1, n do
    local ai, ci = a[i], c[i]
    for j = 1, n do ci[j] = 0 end
    for k = 1, n do
      local f, bk = ai[k], b[k]
      for j = 1, n do ci[j] = ci[j] + f * bk[j] end
    end
  end
  return c
end
local function inverse(a)
  local w = matrix()
  for i = 1, n do for j = 1, n do w[i][j] = a[i][j] end end
  local pivots = {}
  for k = 1, n do
    local best, largest = k, math.abs(w[k][k])
    for i = k + 1, n do
      local v = math.abs(w[i][k])
      if v > largest then best, largest = i, v end
    end
    pivots[k] = best
    w[k], w[best] = w[best], w[k]
    local rowk = w[k]
    local pivot = rowk[k]
    rowk[k] = 1
    for j = 1, n do rowk[j] = rowk[j] / pivot end
    for i = 1, n do
      if i ~= k then
        local row = w[i]
        local f = row[k]
        if f ~= 0 then
          row[k] = 0
          for j = 1, n do row[j] = row[j] - f * rowk[j] end
        end
      end
    end
  end
  for k = n, 1, -1 do
    local other = pivots[k]
    if other ~= k then
      for i = 1, n do w[i][k], w[i][other] = w[i][other], w[i][k] end
    end
  end
  return w
end

local a = matrix()
for i = 1, n do
  for j = 1, n do a[i][j] = (i * j + i) % 7 end
  a[i][i] = a[i][i] + 600
end
local c
for _ = 1, 48 do
  local b = inverse(a)
  c = product(a, b)
end
local t, e = 0, 0
for i = 1, n do
  t = t + c[i][i]
  for j = 1, n do e = math.max(e, math.abs(c[i][j] - (i == j and 1 or 0))) end
end
print(math.floor(t + 0.5))
print(e < 0.0001 and "IDENTITY" or "NOT THE IDENTITY")
local d = product(a, a)
local s = 0
for i = 1, n do s = (s + d[i][n + 1 - i]) % 9973 end
print(s)
