#pragma once

#include "document/formats/TrackBytes.h"
#include "document/formats/TrackInfo.h"
#include "tools/track/PointCheck.h"
#include "tools/track/TrackCheck.h"

#include <optional>
#include <string>
#include <vector>

/// Reports the problems of a binary track, in file order.
class BinaryTrackCheck final {
  public:
    /// @param file an existing one
    BinaryTrackCheck(const std::string& file, const ProblemSink& sink);

    void Run();

  private:
    void CheckMagic();
    void CheckVersion();
    void CheckHeader();
    void CheckMap();
    void CheckHeights(std::int64_t cells);
    void CheckBlocks();
    void CheckAnchor();
    void CheckRulers();
    void CheckPoints();
    void CheckPoint(PointCheck& points);
    void CheckRulerRecords(const std::vector<std::int64_t>& pointCounts);

    /// Reads a number. @pre enough bytes remain
    template<typename Number>
    Number Next() {
        place = size - bytes.Remaining();
        return bytes.Read<Number>();
    }
    /// Reads the next tag unless one is pending. @return whether it is this one; otherwise it remains pending
    bool NextIs(std::int32_t blockTag);
    void Require(std::int64_t count, const char* what);

    /// Reports an error and ends the check: no reader can continue after this place.
    [[noreturn]] void Fail(const std::string& text);
    void Error(const std::string& text) { sink({TrackProblem::Severity::Error, {}, place, text}); }
    void Warning(const std::string& text) { sink({TrackProblem::Severity::Warning, {}, place, text}); }

    std::string file;
    TrackByteReader bytes;
    std::int64_t size; ///< of the file
    const ProblemSink& sink;
    std::int64_t place = 0; ///< of what is being checked
    TrackInfo info;
    std::optional<std::int32_t> tag; ///< a tag that has been read, but whose block has not been handled yet
    std::int64_t rulersAt = 0;       ///< where the ruler records begin
    std::int32_t rulers = 0;
};
