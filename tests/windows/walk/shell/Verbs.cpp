#include "platform/ComPtr.h"
#include "windows/walk/shell/ShellSteps.h"

#include <windows.h>

#include <shlobj.h>
#include <shobjidl.h>

namespace {

/// The texts of a menu's entries, without those of submenus.
std::vector<std::string> TextsOf(HMENU menu)
{
    std::vector<std::string> texts;
    for (int index = 0; index < GetMenuItemCount(menu); ++index)
    {
        wchar_t text[256] = {};
        if (GetMenuStringW(menu, static_cast<UINT>(index), text, static_cast<int>(std::size(text)),
                           MF_BYPOSITION) > 0)
            texts.push_back(Utf8(text));
    }
    return texts;
}

HRESULT GetMenu(const std::filesystem::path& file, ComPtr<IContextMenu>& menu)
{
    ComPtr<IShellItem> item;
    const HRESULT result = SHCreateItemFromParsingName(file.c_str(), nullptr, IID_IShellItem, item.PutVoid());
    if (FAILED(result))
        return result;
    return item->BindToHandler(nullptr, BHID_SFUIObject, IID_IContextMenu, menu.PutVoid());
}

} // namespace

void ListVerbs(Report& report, const std::filesystem::path& sample)
{
    const std::string step = "the shell's menu of " + Utf8(sample.filename());
    ComPtr<IContextMenu> source;
    HRESULT result = GetMenu(sample, source);
    const HMENU menu = CreatePopupMenu();
    if (SUCCEEDED(result))
        result = source->QueryContextMenu(menu, 0, 1, 0x7FFF, CMF_NORMAL);
    if (FAILED(result))
        report.Add(Verdict::NotChecked, step,
                   {"there is none: " + HexCode(static_cast<unsigned long>(result))});
    else
        report.Add(Verdict::Look, step + ": it should have what other pictures have, and nothing that fails",
                   TextsOf(menu));
    DestroyMenu(menu);
}
