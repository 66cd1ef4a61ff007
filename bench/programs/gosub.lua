-- GOSUB and RETURN become calls of functions that share the global state.
local s = 0
local function sub2()
  if s >= 29989 then s = s - 29989 end
end
local function sub1()
  s = s + 3
  sub2()
end
for r = 1, 5 do
  for i = 1, 7500000 do sub1() end
end
print(s)
