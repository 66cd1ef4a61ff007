local a, b, c, d, e, f
for r = 1, 8 do
a, b, c, d, e, f = 0, 0, 0, 0, 0, 0
for i = 1, 2400000 do
  local k = i % 10
  if k == 0 then a = a + 1
  elseif k == 1 or k == 2 then b = b + 1
  elseif k >= 3 and k <= 5 then c = c + 1
  else d = d + 1 end
  if k > 6 then
    e = e + 1
  elseif k < 3 then
    f = f + 1
  end
end
end
print(a, b, c, d, e, f)
