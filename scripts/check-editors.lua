-- What check-editors.sh does in Neovim: opens a document, sees a mistake, fixes it by a key, saves.
-- Ends Neovim with 1 and a line on standard error when something is not as it must be.

local function fail(what)
  io.stderr:write("check-editors.lua: " .. what .. "\n")
  vim.cmd("cquit 1")
end

local function await(what, condition)
  local result
  if not vim.wait(10000, function()
    result = condition()
    return result
  end, 20) then
    fail(what .. ": not within 10 seconds")
  end
  return result
end

local function codes()
  local list = {}
  for _, diagnostic in ipairs(vim.diagnostic.get(0)) do
    local data = diagnostic.user_data and diagnostic.user_data.lsp or {}
    list[#list + 1] = tostring(diagnostic.code or data.code)
  end
  table.sort(list)
  return table.concat(list, " ")
end

local function press(keys)
  vim.api.nvim_feedkeys(vim.api.nvim_replace_termcodes(keys, true, false, true), "xm", false)
end

-- The cursor on the first character of a text.
local function go(text)
  if vim.fn.search("\\V" .. text, "cw") == 0 then
    fail(text .. " is not in the document")
  end
end

local function lineOf(text)
  go(text)
  return vim.api.nvim_get_current_line()
end

local function check()
  await("the server", function() return #vim.lsp.get_active_clients() == 1 end)

  -- A misspelt name, typed and not saved.
  go("private_max_supported_render_rate")
  vim.cmd([[substitute/private_max_supported_render_rate/private_max_suported_render_rate/]])
  await("a finding", function() return codes():find("name%-misspelt") end)

  -- Hover, on a name beside it.
  go("private_vt_extension_version")
  press("K")
  await("the hover", function()
    for _, window in ipairs(vim.api.nvim_list_wins()) do
      local lines = vim.api.nvim_buf_get_lines(vim.api.nvim_win_get_buf(window), 0, -1, false)
      if vim.api.nvim_win_get_config(window).relative ~= ""
          and table.concat(lines, "\n"):find("section   Presets", 1, true) then
        vim.api.nvim_win_close(window, true)
        return true
      end
    end
  end)

  -- The quick fix, by its key; the choice is the first one.
  vim.ui.select = function(items, _, choose) choose(items[1], 1) end
  go("private_max_suported_render_rate")
  press("<Leader>a")
  await("the fix", function() return vim.fn.search("private_max_supported_render_rate", "nw") > 0 end)
  await("no finding", function() return not codes():find("name%-misspelt") end)

  -- Completion of a name that is begun, with what Ctrl-X Ctrl-O sends; it works only while typing.
  go([["Features"]])
  press([[o"private_enc_vpss]])
  local place = vim.lsp.util.make_position_params()
  place.position.character = vim.fn.col("$") - 1
  local answers = vim.lsp.buf_request_sync(0, "textDocument/completion", place, 10000) or {}
  for _, answer in pairs(answers) do
    for _, item in ipairs(answer.result or {}) do
      if item.label == "private_enc_vpss_flip" then
        vim.lsp.util.apply_text_edits({ item.textEdit }, vim.api.nvim_get_current_buf(), "utf-16")
      end
    end
  end
  if not lineOf("private_enc_vpss"):find([["private_enc_vpss_flip": true,]], 1, true) then
    fail("the completion is not there: " .. lineOf("private_enc_vpss"))
  end

  await("no finding", function() return codes() == "" end)
  vim.cmd("write")
  vim.cmd("quitall")
end

local ok, wrong = pcall(check)
if not ok then
  fail(tostring(wrong))
end
