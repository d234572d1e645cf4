#pragma once

#include "wire/ContentDigest.h"

#include <QPointF>

#include <bit>
#include <cstdint>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

static_assert(std::endian::native == std::endian::little, "records are little-endian");

// A file of the program's own beside the kept copies: eight bytes that identify it, a version, its content,
// the length of all this, and a checksum of everything. Such a file is used only if it is complete and
// unchanged.

/// Writes a record, in pieces: a large one must not need the same memory twice.
class KeptRecordWriter final {
  public:
    /// Takes the next bytes of the file.
    using Sink = std::function<void(const void* data, std::size_t size)>;

    /// @param magic eight bytes
    KeptRecordWriter(Sink sink, std::string_view magic, std::uint32_t version);

    template<typename Number>
    void Add(Number number) {
        static_assert(std::is_arithmetic_v<Number>);
        AddBytes(&number, sizeof number);
    }

    /// A count, followed by the elements.
    void AddText(std::string_view text) { AddCounted(text.data(), text.size(), 1); }
    void AddList(const std::vector<int>& list) { AddCounted(list.data(), list.size(), sizeof(int)); }
    void AddList(const std::vector<QPointF>& list) { AddCounted(list.data(), list.size(), sizeof(QPointF)); }

    /// Without this the record counts as truncated.
    void Finish();

  private:
    void AddCounted(const void* data, std::size_t count, std::size_t size);
    void AddBytes(const void* data, std::size_t size);
    void Flush();

    Sink sink;
    std::vector<char> buffer;
    std::uint64_t length = 0;
    Crc32c checksum;
};

/// Takes the content of a record in the order in which it was added.
class KeptRecordReader final {
  public:
    /// @throws std::runtime_error with what is wrong with the file
    KeptRecordReader(std::string file, std::string_view magic, std::uint32_t version);

    // @throws std::runtime_error if the record is shorter than that

    template<typename Number>
    Number Read() {
        static_assert(std::is_arithmetic_v<Number>);
        Number number{};
        std::memcpy(&number, Take(sizeof number), sizeof number);
        return number;
    }
    std::string ReadText();
    std::vector<int> ReadNumbers() { return ReadList<int>(); }
    std::vector<QPointF> ReadPoints() { return ReadList<QPointF>(); }

    /// @throws std::runtime_error if something was not read
    void ExpectEnd() const;

  private:
    /// @return the next `count` bytes
    const char* Take(std::size_t size);
    /// Reads a count of elements of this size that the record can hold.
    std::size_t ReadCount(std::size_t size);

    template<typename Element>
    std::vector<Element> ReadList() {
        static_assert(std::is_trivially_copyable_v<Element>);
        std::vector<Element> list(ReadCount(sizeof(Element)));
        if (!list.empty())
            std::memcpy(static_cast<void*>(list.data()), Take(list.size() * sizeof(Element)),
                        list.size() * sizeof(Element));
        return list;
    }

    std::string bytes;
    std::size_t at = 0;
    std::size_t end = 0;
};
