-- DATA becomes a table and READ an index that RESTORE resets.
local data = {3, 1, 4, 1, 5, 9, 2, 6, 5, 3, 5, 8, 9, 7, 9, 3, 2, 3, 8, 4}
local s = 0
for i = 1, 2500000 do
  local pos = 0
  for j = 1, 20 do
    pos = pos + 1
    local v = data[pos]
    s = s + v * j
  end
  if s >= 99991 then s = s - 99991 end
end
print(s)
