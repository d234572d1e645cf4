#pragma once

#include "document/formats/CsvScan.h"
#include "document/formats/HeightRange.h"
#include "document/formats/TrackInfo.h"
#include "tools/track/PointCheck.h"
#include "tools/track/TrackCheck.h"

#include <string>
#include <string_view>

/// Reports the problems of a text track, line by line.
class TextTrackCheck final {
  public:
    /// @param file an existing one
    TextTrackCheck(const std::string& file, const ProblemSink& sink) : lines(file), sink(sink) {}

    void Run();

  private:
    bool NextLine();
    bool NextInSection();
    bool MoveAfterHeader();
    bool TakeLine(std::string_view& text);
    void Split(std::string_view text);

    void CheckSections();
    void CheckInfo();
    void CheckAnchor();
    void CheckMap();
    void CheckSize();
    void CheckRow(std::int64_t row, HeightRange& range);
    void CheckCells(CsvFields& fields, HeightRange& range);
    void CheckPoints();
    void CheckPoint(PointCheck& points, bool& fails);
    void CheckMissingSections();
    double NumberOf(std::string_view field, const std::string& name);
    std::int32_t IntegerOf(std::string_view field, const std::string& name);

    void Error(const std::string& text) { Report(TrackProblem::Severity::Error, text); }
    void Warning(const std::string& text) { Report(TrackProblem::Severity::Warning, text); }
    void Report(TrackProblem::Severity severity, const std::string& text);

    TextLines lines;
    const ProblemSink& sink;
    CsvLine line;
    bool isUsable = false;   ///< whether the line could be split
    bool isAtEnd = false;    ///< of the file
    std::int64_t number = 0; ///< of the line, from 1
    TrackInfo info;
    bool hasInfo = false;
    bool hasMap = false;
    bool hasAnchor = false;
    bool hasPoints = false;
};
