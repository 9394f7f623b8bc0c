#include "windows/tool/ToolRun.h"

ToolRun::ToolRun(const std::vector<std::wstring>& arguments, const std::filesystem::path& folder,
                 ToolOutput toolOutput)
{
    const RunningTool tool(arguments, folder, toolOutput);
    exitCode = tool.WaitForEnd();
    output = tool.Output();
    error = tool.Error();
}
