-- Text files: 1,000,000 lines written and read back a line at a time
local words = {"ALPHA", "BRAVO", "CHARLIE", "DELTA", "ECHO",
               "FOXTROT", "GOLF", "HOTEL", "INDIA", "JULIETT"}
local f = assert(io.open("lines.txt", "w"))
for i = 1, 1000000 do
  f:write(words[i % 10 + 1], "\n")
end
f:close()
f = assert(io.open("lines.txt", "r"))
local s = 0
for i = 1, 1000000 do
  local l = f:read("l")
  s = s + #l
  if s > 100000 then s = s - 100000 end
end
f:close()
os.remove("lines.txt")
print("READ", s)
