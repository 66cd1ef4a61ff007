for r = 1, 10 do
  for i = 1, 500000 do print(i) end
end
