local t
for r = 1, 6 do
t = 0
for i = 1, 6000 do
  local s = 0
  for j = 1, 1000 do
    local x = j / 1000 + i / 4000
    s = s + x * x * 0.5 - x / 3 + 1 / (x + 1)
  end
  t = t + s
end
end
print(string.format("%d", math.floor(t / 1000 + 0.5)))
