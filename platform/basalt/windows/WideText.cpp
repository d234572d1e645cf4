#include "basalt/windows/WideText.h"

#include <algorithm>

#include <windows.h>

namespace {

constexpr std::wstring_view kLong = L"\\\\?\\";
constexpr std::wstring_view kLongShare = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";
constexpr std::wstring_view kShare = L"\\\\";

std::optional<std::wstring> FromTheRoot(const std::wstring& path) {
    std::wstring full;
    DWORD size = MAX_PATH;
    do { // the size comes back with the terminating zero when it was too small, and without when it was not
        full.resize(size);
        size = GetFullPathNameW(path.c_str(), size, full.data(), nullptr);
    } while (size > full.size());
    full.resize(size);
    return size == 0 ? std::nullopt : std::optional(full);
}

} // namespace

std::optional<std::wstring> WideOf(std::string_view text) {
    if (text.empty())
        return std::wstring();
    const int size = static_cast<int>(text.size());
    const int needed = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(needed), L'\0');
    if (needed == 0 ||
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text.data(), size, wide.data(), needed) != needed)
        return std::nullopt;
    return wide;
}

std::optional<std::string> Utf8Of(std::wstring_view text) {
    if (text.empty())
        return std::string();
    const int size = static_cast<int>(text.size());
    const int needed =
        WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(needed), '\0');
    if (needed == 0 || WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, text.data(), size, bytes.data(),
                                           needed, nullptr, nullptr) != needed)
        return std::nullopt;
    return bytes;
}

std::optional<std::wstring> LongPathOf(std::string_view path) {
    const std::optional<std::wstring> wide = WideOf(path);
    if (!wide || wide->empty() || wide->find(L'\0') != std::wstring::npos)
        return std::nullopt;
    const std::optional<std::wstring> full = FromTheRoot(*wide);
    if (!full || full->starts_with(kLong) || full->starts_with(kDevice))
        return full;
    if (full->starts_with(kShare))
        return std::wstring(kLongShare) + full->substr(kShare.size());
    return std::wstring(kLong) + *full;
}

std::string PathFromSystem(std::wstring_view path) {
    std::wstring plain(path);
    if (path.starts_with(kLongShare))
        plain = std::wstring(kShare) + std::wstring(path.substr(kLongShare.size()));
    else if (path.starts_with(kLong))
        plain = path.substr(kLong.size());
    std::replace(plain.begin(), plain.end(), L'\\', L'/');
    return Utf8Of(plain).value_or(std::string());
}
