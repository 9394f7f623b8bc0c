#include "core/Diagnostics.h"
#include "support/streams/DiagnosticLines.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Tav::Imaging::RawImage;

namespace {

TEST(Diagnostics, WriteOneLineWithPrefixTagAndMessage)
{
    DiagnosticLines diagnostics;
    WriteDiagnostic(L"MRC: ", L"Unsupported pixel type");
    WriteDiagnostic(L"Invalid resolution");
    EXPECT_EQ(diagnostics.Take(),
              (Lines{"[Lumora] MRC: Unsupported pixel type", "[Lumora] Invalid resolution"}));
}

TEST(Diagnostics, EndLongLinesAfter255Characters)
{
    DiagnosticLines diagnostics;
    WriteDiagnostic(std::wstring(246, L'x'));
    WriteDiagnostic(std::wstring(247, L'x'));
    WriteDiagnostic(std::wstring(1000, L't'), L"message");
    const std::string longest = "[Lumora] " + std::string(246, 'x');
    EXPECT_EQ(longest.size(), 255U);
    EXPECT_EQ(diagnostics.Take(), (Lines{longest, longest, "[Lumora] " + std::string(246, 't')}));
}

} // namespace
