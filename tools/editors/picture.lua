-- Called by tools/make_picture: runs session.lua in a terminal and draws its screen.
local width, height, cell, row = 98, 24, 8.4, 19
vim.opt.termguicolors, vim.opt.laststatus, vim.opt.cmdheight = true, 0, 1
vim.opt.columns, vim.opt.lines = width, height + 1
vim.fn.termopen({ "nvim", "--clean", "-n", "-S", vim.env.KORV_TOOLS .. "/session.lua" })

local function cells()
  vim.cmd("redraw!")
  local all, text = {}, {}
  for y = 1, height do
    all[y] = {}
    for x = 1, width do
      local inspected = vim.api.nvim__inspect_cell(1, y - 1, x - 1)
      all[y][x] = { text = inspected[1], hl = inspected[2] or {} }
      text[#text + 1] = inspected[1]
    end
  end
  return all, table.concat(text)
end

local screen, text
local isThere = vim.wait(30000, function()
  screen, text = cells()
  return text:find("T%-states") ~= nil
end, 200)
if not isThere then
  io.stderr:write("make_picture: no hover on the screen:\n" .. text .. "\n")
  vim.cmd("cquit 1")
end

while height > 1 and vim.tbl_isempty(vim.tbl_filter(
    function(at) return at.text ~= " " and not at.hl.reverse end, screen[height])) do
  height = height - 1  -- empty rows at the end
end

local function colour(number, otherwise) return number and ("#%06x"):format(number) or otherwise end
local function colours(at)
  local front, back = colour(at.hl.foreground, "#d8dee9"), colour(at.hl.background, nil)
  if at.hl.reverse then
    front, back = back or "#2e3440", front
  end
  return front, back
end
local escapes = { ["&"] = "&amp;", ["<"] = "&lt;", [">"] = "&gt;" }
local svg = {
  ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" font-family="monospace" font-size="14" '
    .. 'xml:space="preserve">'):format(width * cell + 24, height * row + 24),
  '<rect width="100%" height="100%" rx="8" fill="#2e3440"/>',
}
for y = 1, height do
  local x = 1
  while x <= width do  -- a run of cells that look the same
    local front, back = colours(screen[y][x])
    local first, run = x, {}
    while x <= width do
      local f, b = colours(screen[y][x])
      if f ~= front or b ~= back then
        break
      end
      run[#run + 1] = screen[y][x].text
      x = x + 1
    end
    local left, top = 12 + (first - 1) * cell, 12 + (y - 1) * row
    if back and back ~= "#2e3440" then
      svg[#svg + 1] = ('<rect x="%.1f" y="%d" width="%.1f" height="%d" fill="%s"/>')
        :format(left, top, #run * cell, row, back)
    end
    local blanks, words = table.concat(run):match("^(%s*)(.-)%s*$")
    if words ~= "" then
      svg[#svg + 1] = ('<text x="%.1f" y="%d" fill="%s" textLength="%.1f">%s</text>'):format(left + #blanks * cell,
        top + 14, front, vim.fn.strchars(words) * cell, (words:gsub("[&<>]", escapes)))
    end
  end
end
svg[#svg + 1] = "</svg>\n"
local file = assert(io.open(vim.env.KORV_PICTURE, "w"))
file:write(table.concat(svg, "\n"))
file:close()
vim.cmd("qall!")
