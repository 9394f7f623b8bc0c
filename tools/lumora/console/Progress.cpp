#include "lumora/console/Progress.h"

#include <cmath>
#include <cstdint>

namespace Lumora {

namespace {

/// "2 h 5 min", "3 min 20 s" or "12 s".
std::wstring DurationText(double seconds)
{
    const auto whole = static_cast<uint64_t>(std::ceil(seconds));
    if (whole >= 3600)
        return std::to_wstring(whole / 3600) + L" h " + std::to_wstring(whole % 3600 / 60) + L" min";
    if (whole >= 60)
        return std::to_wstring(whole / 60) + L" min " + std::to_wstring(whole % 60) + L" s";
    return std::to_wstring(whole) + L" s";
}

std::wstring RateText(double perSecond)
{
    if (perSecond >= 1)
        return std::to_wstring(std::llround(perSecond)) + L" a second";
    if (perSecond * 60 >= 1)
        return std::to_wstring(std::llround(perSecond * 60)) + L" a minute";
    return std::to_wstring(std::llround(perSecond * 3600)) + L" an hour";
}

} // namespace

std::wstring ProgressLine(size_t done, std::optional<size_t> total, double seconds, std::wstring_view name)
{
    std::wstring line = std::to_wstring(done);
    if (total)
        line += L" of " + std::to_wstring(*total);
    // The first moments say nothing about the rest.
    if (seconds >= 1)
    {
        const double rate = static_cast<double>(done) / seconds;
        line += L", " + RateText(rate);
        if (total)
            line += L", " + DurationText(static_cast<double>(*total - done) / rate) + L" left";
    }
    return line.append(L": ").append(name);
}

void Progress::Show(size_t done, std::optional<size_t> total, std::wstring_view name)
{
    // Nobody reads faster, and a terminal takes its time for each line.
    constexpr std::chrono::milliseconds interval(100);
    const Clock::time_point now = Clock::now();
    if (now - shown < interval)
        return;
    shown = now;
    console.ShowPassing(ProgressLine(done, total, std::chrono::duration<double>(now - begin).count(), name));
}

} // namespace Lumora
