local w = {}
for i = 1, 2000 do
  w[i] = string.char(65 + i * 7 % 26, 65 + i * 11 % 26, 65 + i * 13 % 19)
end
local parts = {}
for i = 1, 2000, 5 do parts[#parts + 1] = w[i] end
local t = table.concat(parts)
local l, e, f
for r = 1, 6 do
l, e, f = 0, 0, 0
for i = 1, 2000 do
  local wi = w[i]
  for j = 1, 2000 do
    if wi < w[j] then l = l + 1 end
    if wi == w[j] then e = e + 1 end
  end
  f = f + (string.find(t, wi, 1, true) or 0)
end
end
print(l % 100000, e, f % 100000)
