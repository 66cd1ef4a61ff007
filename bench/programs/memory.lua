local a = {}
for i = 1, 1000000 do a[i] = i % 10 end
local s = 0
for i = 1, 1000000, 1000 do s = s + a[i] end
print(s)
