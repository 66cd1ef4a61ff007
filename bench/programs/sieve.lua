local n = 1000000
local f = {}
local c
for p = 1, 16 do
  for i = 2, n do f[i] = 1 end
  local i = 2
  while i * i <= n do
    if f[i] == 1 then
      local j = i * i
      while j <= n do
        f[j] = 0
        j = j + i
      end
    end
    i = i + 1
  end
  c = 0
  for i = 2, n do c = c + f[i] end
end
print(c)
