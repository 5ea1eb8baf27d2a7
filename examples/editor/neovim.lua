-- For Neovim 0.7 and later: copy it to ~/.config/nvim/plugin/kcodec2_spec.lua.
local command = { "kcodec2_spec", "lsp" } -- Add "--settings", "FILE" or "--rootdir", "DIR" here.

local client -- Of Neovim 0.7, which does not share a server by itself.

local function start(buffer)
  local config = { name = "kcodec2_spec", cmd = command }
  if vim.lsp.start then
    return vim.lsp.start(config, { bufnr = buffer })
  end
  client = client or vim.lsp.start_client(config)
  vim.lsp.buf_attach_client(buffer, client)
end

vim.api.nvim_create_autocmd({ "BufReadPost", "BufNewFile" }, {
  pattern = { "video_system_specs.json", "video_private_configs.json" },
  callback = function(event)
    vim.bo[event.buf].filetype = "jsonc" -- Documents may contain comments.
    vim.bo[event.buf].omnifunc = "v:lua.vim.lsp.omnifunc" -- Ctrl-X Ctrl-O completes.
    local key = function(keys, action)
      vim.keymap.set("n", keys, action, { buffer = event.buf })
    end
    key("K", vim.lsp.buf.hover)
    key("gd", vim.lsp.buf.definition)
    key("<Leader>a", vim.lsp.buf.code_action) -- The fixes.
    start(event.buf)
  end,
})
