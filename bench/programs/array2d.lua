local a = {}
for i = 1, 300 do
  local row = {}
  for j = 1, 300 do row[j] = (i * j) % 7 end
  a[i] = row
end
for k = 1, 240 do
  for i = 2, 300 do
    local up, row = a[i - 1], a[i]
    for j = 2, 300 do
      row[j] = (up[j] + row[j - 1] + row[j]) % 1000
    end
  end
end
local s = 0
for i = 1, 300 do s = s + a[i][300] + a[300][i] end
print(s)
