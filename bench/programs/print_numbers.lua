for i = 1, 500000 do print(i) end
