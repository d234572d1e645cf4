#include "workflow/KeptName.h"

#include "basalt/SystemCalls.h"

#include <QString>

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr std::size_t kMaxNameBytes = 255; ///< of every common file system
constexpr std::size_t kMaxExtensionBytes = 16;
constexpr std::string_view kTimePattern = "0000-00-00 00.00.00 ";
constexpr std::array<std::string_view, 6> kWords = {"unsaved",  "unsent", "deleted",
                                                    "replaced", "crash",  "text original"};

bool IsDigit(char letter) {
    return letter >= '0' && letter <= '9';
}

bool IsLetterOrDigit(char letter) {
    return IsDigit(letter) || (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
}

bool IsControl(char letter) {
    constexpr char kDelete = 0x7F;
    return (letter >= 0 && letter < ' ') || letter == kDelete;
}

/// A dot and a few letters or digits. Anything else after a dot belongs to the name.
bool IsExtension(std::string_view text) {
    return text.size() > 1 && text.size() <= kMaxExtensionBytes && text[0] == '.' &&
           std::all_of(text.begin() + 1, text.end(), IsLetterOrDigit);
}

std::string ExtensionOf(const std::string& name) {
    const std::size_t point = name.rfind('.');
    if (point == std::string::npos || !IsExtension(std::string_view(name).substr(point)))
        return {};
    return name.substr(point);
}

std::string TimeText(std::time_t time) {
    const std::optional<std::tm> local = LocalTime(time);
    std::array<char, 32> text{};
    if (!local ||
        std::strftime(text.data(), text.size(), "%Y-%m-%d %H.%M.%S", &*local) != kTimePattern.size() - 1)
        return "0000-00-00 00.00.00"; // a year of other than four digits
    return text.data();
}

/// The part of a path after its last "/", as one line of valid UTF-8.
std::string ReadableName(const std::string& path) {
    const std::string bytes = path.substr(path.rfind('/') + 1);
    QString name = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    for (QChar& letter : name) {
        const QChar::Category category = letter.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            letter = QLatin1Char('_');
    }
    return name.isEmpty() ? "_" : name.toStdString();
}

/// The text truncated to at most so many bytes, between two characters.
std::string Shortened(const std::string& text, std::size_t bytes) {
    if (text.size() <= bytes)
        return text;
    constexpr unsigned kTopBits = 0xC0;
    constexpr unsigned kContinuation = 0x80;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & kTopBits) == kContinuation)
        --bytes;
    return text.substr(0, bytes);
}

/// Whether this is the content of the parentheses: a reason, and the number of a further copy.
bool IsReason(std::string_view text) {
    return std::any_of(kWords.begin(), kWords.end(), [text](std::string_view word) {
        if (!text.starts_with(word))
            return false;
        const std::string_view number = text.substr(word.size());
        return number.empty() || (number.size() > 1 && number[0] == ' ' &&
                                  std::all_of(number.begin() + 1, number.end(), IsDigit));
    });
}

bool BeginsWithTime(std::string_view name) {
    if (name.size() <= kTimePattern.size())
        return false;
    return std::equal(kTimePattern.begin(), kTimePattern.end(), name.begin(), [](char pattern, char letter) {
        return pattern == '0' ? IsDigit(letter) : letter == pattern;
    });
}

} // namespace

std::string_view WordOf(KeptReason reason) {
    return kWords.at(static_cast<std::size_t>(reason));
}

KeptName::KeptName(std::time_t time, const std::string& original, KeptReason reason)
    : time(TimeText(time)),
      original(ReadableName(original)),
      reason(WordOf(reason)),
      extension(ExtensionOf(this->original)) {
}

std::string KeptName::Text(unsigned number) const {
    std::string ending = " (" + reason;
    if (number > 1)
        ending += " " + std::to_string(number);
    ending += ")" + extension;
    return time + " " + Shortened(original, kMaxNameBytes - time.size() - 1 - ending.size()) + ending;
}

bool KeptName::IsOne(std::string_view name) {
    const std::size_t opened = name.rfind(" (");
    const std::size_t closed = name.rfind(')');
    if (!BeginsWithTime(name) || std::any_of(name.begin(), name.end(), IsControl) ||
        opened == std::string_view::npos || opened <= kTimePattern.size() - 1 ||
        closed == std::string_view::npos || closed < opened)
        return false;
    const std::string_view extension = name.substr(closed + 1);
    return IsReason(name.substr(opened + 2, closed - opened - 2)) &&
           (extension.empty() || IsExtension(extension));
}

std::string_view KeptName::TimeOf(std::string_view name) {
    return name.substr(0, kTimePattern.size() - 1);
}
