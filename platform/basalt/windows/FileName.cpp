#include "basalt/windows/FileName.h"

#include <algorithm>
#include <array>
#include <string>

namespace {

/// Names of devices, in capitals; a digit follows those of the second list.
constexpr std::array<std::wstring_view, 7> kDevices = {L"CON",    L"PRN",     L"AUX",   L"NUL",
                                                       L"CONIN$", L"CONOUT$", L"CLOCK$"};
constexpr std::array<std::wstring_view, 2> kNumberedDevices = {L"COM", L"LPT"};

std::wstring InCapitals(std::wstring_view text) {
    std::wstring capitals(text);
    std::transform(capitals.begin(), capitals.end(), capitals.begin(), [](wchar_t letter) {
        return letter >= L'a' && letter <= L'z' ? static_cast<wchar_t>(letter - L'a' + L'A') : letter;
    });
    return capitals;
}

bool IsDigitOfADevice(wchar_t letter) {
    return (letter >= L'0' && letter <= L'9') || letter == L'\u00b9' || letter == L'\u00b2' ||
           letter == L'\u00b3';
}

/// A device keeps its name whatever follows a point, and blanks before it.
bool IsDevice(std::wstring_view name) {
    std::wstring_view stem = name.substr(0, name.find(L'.'));
    while (stem.ends_with(L' '))
        stem.remove_suffix(1);
    const std::wstring base = InCapitals(stem);
    if (std::find(kDevices.begin(), kDevices.end(), base) != kDevices.end())
        return true;
    return base.size() == 4 && IsDigitOfADevice(base.back()) &&
           std::find(kNumberedDevices.begin(), kNumberedDevices.end(), base.substr(0, 3)) !=
               kNumberedDevices.end();
}

bool IsPlainCharacter(wchar_t letter) {
    constexpr std::wstring_view kForbidden = L"<>:\"/\\|?*";
    return letter >= L' ' && kForbidden.find(letter) == std::wstring_view::npos;
}

} // namespace

bool IsOrdinaryName(std::wstring_view name) {
    return !name.empty() && name.back() != L'.' && name.back() != L' ' &&
           std::all_of(name.begin(), name.end(), &IsPlainCharacter) && !IsDevice(name);
}
