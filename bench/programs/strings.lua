local n = 0
for k = 1, 12000 do
  local b = ""
  for i = 1, 500 do b = b .. string.char(65 + (i + k) % 26) end
  for i = 1, 490 do
    local c = string.sub(b, i, i + 9)
    n = n + string.byte(c, 5) + #(string.sub(c, 1, 3) .. string.sub(c, 11 - i % 5, 10))
  end
  n = n % 100000
end
print(n)
