#pragma once

#include "basalt/AtomicFile.h"
#include "document/formats/Heights.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QImage;

/// Reads and writes one encoding of track files. Converters hold no state and never throw: each operation
/// catches what its work throws, logs it at ERROR and returns a code. Paths are narrow strings in UTF-8.
class Converter {
  public:
    /// Fills the information block. In the text encoding `minHeight` and `maxHeight` are the caller's
    /// starting values, which the heights found widen; the binary encoding starts them itself. @return 0, or
    /// 1 on failure with what was read so far left in `info`.
    virtual int ReadInfo(const std::string& path, TrackInfo& info) = 0;

    /// Paints the height map, `info.height` rows of `info.width` pixels, by HeightRamp between the two
    /// heights; cells without a measurement are black. The image is in QImage::Format_RGB888. @return 0, or 1
    /// on failure.
    virtual int ReadImage(const std::string& path, TrackInfo info, double lowHeight, double highHeight,
                          QImage& image) = 0;

    /// Reads the raw heights. `size` is reported as width x width, whatever the height: tools depend on that
    /// figure; the map itself has height x width cells. @return 0, 1 on failure, -1 where the encoding does
    /// not offer it.
    virtual int ReadHeightMap(const std::string& path, TrackInfo info, HeightMap& heights,
                              std::int64_t& size) = 0;

    /// Replaces `paths` with the file's. Ruler marks come back empty. @return 0, or 1 on failure; a text
    /// file without a path section is a failure, a binary one has no paths.
    virtual int ReadPath(const std::string& path, std::vector<TrackPath>& paths) = 0;

    /// Writes a complete track file; a normalised point (x, y) is stored at x * xScale + xOffset, y * yScale
    /// + yOffset.
    /// @return 0, 2 when the target cannot be written (it is then unchanged), -1 if the encoding does not
    /// offer it.
    virtual int WriteTrack(const std::string& target, const TrackInfo& info, const HeightMap& heights,
                           std::int64_t size, const std::vector<TrackPath>& paths, double widthScale,
                           double xOffset, double yOffset, double xScale, double yScale) = 0;

    /// Writes `original` with `paths` in place of its own to `target`.
    /// @return 0, 1 when the original cannot be read, 2 when the target cannot be written (it is then
    /// unchanged).
    virtual int UpdatePath(const std::string& original, const std::string& target,
                           const std::vector<TrackPath>& paths, double widthScale, double xOffset,
                           double yOffset, double xScale, double yScale) = 0;

  protected:
    /// Not virtual, so not public: a converter is deleted as the type it was created as.
    ~Converter() = default;
};

/// The converter for a file, chosen by its encoding; the text converter for a file that cannot be opened (its
/// reads then fail with their own messages). Never null.
std::shared_ptr<Converter> CreateConverter(const std::string& path);

/// The converter that writes binary files.
std::shared_ptr<Converter> CreateBinaryConverter();

/// How a track file is written.
enum class TrackEncoding : std::uint8_t { Text, Binary };

/// The encoding of a file, by its first line: binary when that holds "Trac", else text; none for a file that
/// cannot be read.
[[nodiscard]] std::optional<TrackEncoding> EncodingOf(const std::string& path);

/// What WriteTrack and UpdatePath return.
constexpr int kWritten = 0;
constexpr int kOriginalNotReadable = 1;
constexpr int kTargetNotWritable = 2;

/// Puts a finished target in place. @return kWritten, or kTargetNotWritable after an ERROR line.
[[nodiscard]] int CommitTarget(AtomicFile& file, const std::string& path);

/// Logs a caught exception's text after a tag, at ERROR. Throws nothing: without memory for the line, only
/// the operation's result reports the failure.
void LogException(const char* tag, const char* text) noexcept;

/// Does the work of an operation that must not throw. @return the work's result; `failure` when it threw,
/// with the exception's text logged after the tag
template<typename Work>
int Guarded(const char* tag, Work&& work, int failure = 1) noexcept {
    try {
        return work();
    } catch (const std::exception& exception) {
        LogException(tag, exception.what());
    } catch (...) {
        LogException(tag, "unknown exception");
    }
    return failure;
}
