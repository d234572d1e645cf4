#include "wire/JsonFlaw.h"

#include <charconv>
#include <set>
#include <string>
#include <vector>

namespace {

/// A key as the characters it stands for, in UTF-16, in which an escape names them; each of its functions
/// takes what it reads off the front of the text.
class KeyDecoder {
  public:
    explicit KeyDecoder(std::string_view written) : written(written) {}

    std::u16string Decoded() {
        std::u16string key;
        while (!written.empty()) {
            if (written.front() == '\\')
                key += TakeEscape();
            else
                Append(key, TakeCharacter());
        }
        return key;
    }

  private:
    unsigned TakeByte() {
        const auto byte = static_cast<unsigned char>(written.front());
        written.remove_prefix(1);
        return byte;
    }

    char16_t TakeEscape() {
        TakeByte();
        switch (const unsigned letter = written.empty() ? '\\' : TakeByte()) {
        case 'b':
            return u'\b';
        case 'f':
            return u'\f';
        case 'n':
            return u'\n';
        case 'r':
            return u'\r';
        case 't':
            return u'\t';
        case 'u':
            return TakeHexadecimal();
        default:
            return static_cast<char16_t>(letter);
        }
    }

    char16_t TakeHexadecimal() {
        constexpr std::size_t kDigits = 4;
        constexpr int kBase = 16;
        const std::string_view digits = written.substr(0, kDigits);
        std::uint16_t unit = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), unit, kBase);
        written.remove_prefix(digits.size());
        return unit;
    }

    char32_t TakeCharacter() {
        constexpr unsigned kLeadOfTwo = 0xC0;
        constexpr unsigned kLeadOfThree = 0xE0;
        constexpr unsigned kLeadOfFour = 0xF0;
        constexpr unsigned kBitsOfAByte = 6;
        constexpr unsigned kPayload = 0x3F;
        const unsigned lead = TakeByte();
        if (lead < kLeadOfTwo)
            return lead;
        const unsigned following = lead >= kLeadOfFour ? 3 : lead >= kLeadOfThree ? 2 : 1;
        char32_t character = lead & (kPayload >> following);
        for (unsigned i = 0; i < following && !written.empty(); ++i)
            character = character << kBitsOfAByte | (TakeByte() & kPayload);
        return character;
    }

    static void Append(std::u16string& key, char32_t character) {
        constexpr char32_t kFirstOfTwoUnits = 0x10000;
        constexpr char32_t kHighSurrogate = 0xD800;
        constexpr char32_t kLowSurrogate = 0xDC00;
        constexpr unsigned kBitsOfAUnit = 10;
        constexpr char32_t kPayload = 0x3FF;
        if (character < kFirstOfTwoUnits) {
            key += static_cast<char16_t>(character);
            return;
        }
        const char32_t rest = character - kFirstOfTwoUnits;
        key += static_cast<char16_t>(kHighSurrogate | (rest >> kBitsOfAUnit & kPayload));
        key += static_cast<char16_t>(kLowSurrogate | (rest & kPayload));
    }

    std::string_view written;
};

class FlawFinder {
  public:
    FlawFinder(std::string_view text, std::size_t deepest) : text(text), deepest(deepest) {}

    JsonFlaw Find() {
        for (at = 0; at < text.size(); ++at) {
            if (const JsonFlaw flaw = Look(); flaw != JsonFlaw::None)
                return flaw;
        }
        return JsonFlaw::None;
    }

  private:
    JsonFlaw Look() {
        switch (text[at]) {
        case '"':
            PassString();
            return JsonFlaw::None;
        case '{':
        case '[':
            keysOfOpen.emplace_back();
            return keysOfOpen.size() > deepest ? JsonFlaw::TooDeep : JsonFlaw::None;
        case '}':
        case ']':
            if (!keysOfOpen.empty())
                keysOfOpen.pop_back();
            return JsonFlaw::None;
        case ':':
            return LookAtKey();
        default:
            return JsonFlaw::None;
        }
    }

    /// Goes to the string's closing quotation mark, or behind the text where it has none.
    void PassString() {
        const std::size_t first = ++at;
        while (at < text.size() && text[at] != '"')
            at += text[at] == '\\' ? 2 : 1;
        lastString = text.substr(first, at - first);
    }

    /// What stands before a colon is a key.
    JsonFlaw LookAtKey() {
        if (lastString.find('\0') != std::string_view::npos)
            return JsonFlaw::ZeroInKey;
        const bool isNew =
            keysOfOpen.empty() || keysOfOpen.back().insert(KeyDecoder(lastString).Decoded()).second;
        return isNew ? JsonFlaw::None : JsonFlaw::RepeatedKey;
    }

    std::string_view text;
    std::size_t deepest;
    std::size_t at = 0;
    std::string_view lastString;
    std::vector<std::set<std::u16string>>
        keysOfOpen; ///< of each array or object that is open; none in an array
};

} // namespace

JsonFlaw FindJsonFlaw(std::string_view text, std::size_t deepest) {
    return FlawFinder(text, deepest).Find();
}
