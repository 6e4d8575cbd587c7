-- Called by tools/test_editors: checks what Neovim's client receives from korv-ls for main.kor, which includes lib.kor.
local function fail(what, got)
  io.stderr:write("Neovim: " .. what .. ", got: " .. vim.inspect(got) .. "\n")
  vim.cmd("cquit 1")
end
local function expect(what, want, get)
  local got
  local isSeen = vim.wait(10000, function()
    got = get()
    return vim.deep_equal(got, want)
  end, 20)
  if not isSeen then
    fail(what, got)
  end
  print("Neovim: " .. what .. "\n")
end

local client = vim.lsp.start_client({ name = "korv-ls", cmd = { vim.env.KORV_LS }, root_dir = vim.fn.getcwd() })
local main = vim.api.nvim_get_current_buf()
vim.lsp.buf_attach_client(main, client)
vim.wait(10000, function() return vim.lsp.get_client_by_id(client).initialized end, 20)

local function request(method, extra)
  local params = vim.tbl_extend("force", vim.lsp.util.make_position_params(0, "utf-16"), extra or {})
  local replies = vim.lsp.buf_request_sync(0, method, params, 10000)
  return replies and replies[client] and replies[client].result
end
local function messages(buffer)
  return vim.tbl_map(function(each) return each.lnum + 1 .. ": " .. each.message end, vim.diagnostic.get(buffer))
end

vim.api.nvim_buf_set_lines(main, 1, 2, false, { "        LD   A,LIMITS" })
expect("a message for an unsaved change", 1, function() return #messages(main) end)
vim.api.nvim_buf_set_lines(main, 1, 2, false, { "        LD   A,LIMIT" })
expect("no message after it is mended", {}, function() return messages(main) end)
vim.api.nvim_win_set_cursor(0, { 1, 14 })
expect("hover", true, function()
  local hover = request("textDocument/hover")
  return hover ~= nil and hover.contents.value:find("prints a text") ~= nil
end)
expect("definition", 2, function()
  local found = request("textDocument/definition")
  return found and found[1] and found[1].uri:find("lib.kor") and found[1].range.start.line
end)
expect("completion", true, function()
  vim.api.nvim_win_set_cursor(0, { 1, 15 })
  for _, item in ipairs(request("textDocument/completion") or {}) do
    if item.label == "PRINT" then
      return true
    end
  end
end)
expect("formatting", true, function()
  return request("textDocument/formatting", { options = { tabSize = 8, insertSpaces = true } }) ~= nil
end)
vim.lsp.buf.rename("SHOW")
expect("rename in both files", { "        CALL SHOW", "SHOW:  RET" }, function()
  local lib = vim.fn.bufnr("lib.kor")
  local there = lib < 0 and {} or vim.api.nvim_buf_get_lines(lib, 2, 3, false)
  return { vim.api.nvim_buf_get_lines(main, 0, 1, false)[1], there[1] }
end)
vim.cmd("qall!")
