-- Called by picture.lua: the session that the picture shows.
vim.opt.runtimepath:append(vim.env.KORV_VIM)
vim.opt.termguicolors, vim.opt.number, vim.opt.ruler, vim.opt.showmode = true, true, false, false
vim.opt.laststatus, vim.opt.signcolumn, vim.opt.shortmess, vim.opt.cmdheight = 0, "no", "aoOtTIF", 1
vim.cmd("edit greet.kor")
vim.cmd("set filetype=korv syntax=korv")
for group, colour in pairs({ Normal = "#d8dee9", Comment = "#7b88a1", Statement = "#81a1c1", PreProc = "#b48ead",
  Type = "#8fbcbb", Identifier = "#88c0d0", Function = "#88c0d0", Constant = "#a3be8c", Number = "#a3be8c",
  String = "#a3be8c", LineNr = "#4c566a", DiagnosticError = "#e0707c",
  DiagnosticWarn = "#ebcb8b" }) do
  vim.cmd(("highlight %s gui=NONE guifg=%s guibg=NONE"):format(group, colour))
end
vim.cmd("highlight NormalFloat guifg=#d8dee9 guibg=#3b4252 | highlight FloatBorder guifg=#d8dee9 guibg=#3b4252")
vim.opt.fillchars = "eob: "
vim.diagnostic.config({ virtual_text = { prefix = "■" } })

local client = vim.lsp.start_client({ name = "korv-ls", cmd = { vim.env.KORV_LS }, root_dir = vim.fn.getcwd() })
vim.lsp.buf_attach_client(0, client)
vim.wait(20000, function() return #vim.diagnostic.get(0) > 0 end, 20)
vim.api.nvim_win_set_cursor(0, { 10, 10 })
vim.lsp.buf.hover()
