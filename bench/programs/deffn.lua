local function fna(x) return x * x + 1 end
local function fnb(x, y) return (fna(x) + y) % 1000 end
local s = 0
for r = 1, 7 do
for i = 1, 2500000 do
  s = s + fnb(i % 100, i % 7)
  if s >= 100000 then s = s - 100000 end
end
end
print(s)
