#include "tools/track/PathsText.h"

#include "tools/commandline/Failure.h"
#include "tools/track/LoadedTrack.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <limits>

namespace {

const QString kType = QStringLiteral("type");
const QString kFeatures = QStringLiteral("features");
const QString kFeature = QStringLiteral("Feature");
const QString kCollection = QStringLiteral("FeatureCollection");
const QString kGeometry = QStringLiteral("geometry");
const QString kLine = QStringLiteral("LineString");
const QString kCoordinates = QStringLiteral("coordinates");
const QString kProperties = QStringLiteral("properties");
const QString kTrack = QStringLiteral("track");

/// The list of a segment parameter, and its name in a feature's properties.
struct Parameter {
    QString name;
    std::vector<int> TrackPath::*list;
    int PathPoint::*ofPoint;
};

const std::vector<Parameter>& Parameters() {
    static const std::vector<Parameter> parameters = {
        {QStringLiteral("method"), &TrackPath::methods, &PathPoint::method},
        {QStringLiteral("length"), &TrackPath::lengths, &PathPoint::length},
        {QStringLiteral("width"), &TrackPath::widths, &PathPoint::width},
        {QStringLiteral("space"), &TrackPath::spaces, &PathPoint::space}};
    return parameters;
}

QJsonObject FeatureOf(const TrackPath& path, int index, const WorldTransform& world) {
    QJsonArray coordinates;
    for (const QPointF& point : path.points) {
        const QPointF place = world.PointOf(point);
        coordinates.append(QJsonArray{place.x(), place.y()});
    }
    QJsonObject properties{{kTrack, index}};
    for (const Parameter& parameter : Parameters()) {
        QJsonArray values;
        for (const int value : path.*parameter.list)
            values.append(value);
        properties.insert(parameter.name, values);
    }
    return {{kType, kFeature},
            {kProperties, properties},
            {kGeometry, QJsonObject{{kType, kLine}, {kCoordinates, coordinates}}}};
}

/// Reads the features of one file.
class JsonPathsReader {
  public:
    JsonPathsReader(const std::string& file, const WorldTransform& world) : file(file), world(world) {}

    std::vector<TrackPath> Read() {
        std::vector<TrackPath> paths;
        for (const QJsonValue value : ReadFeatures()) {
            paths.push_back(PathOf(value.toObject()));
            ++index;
        }
        return paths;
    }

  private:
    [[nodiscard]] QJsonArray ReadFeatures() const {
        QFile input(QString::fromStdString(file));
        if (!input.open(QIODevice::ReadOnly))
            throw Failure(ExitCode::Unreadable, file + ": " + input.errorString().toStdString());
        QJsonParseError error;
        const QJsonObject document = QJsonDocument::fromJson(input.readAll(), &error).object();
        if (error.error != QJsonParseError::NoError)
            throw Failure(ExitCode::Unreadable, file + ": byte " + std::to_string(error.offset) + ": " +
                                                    error.errorString().toStdString());
        if (document.value(kType) != kCollection || !document.value(kFeatures).isArray())
            throw Failure(ExitCode::Unreadable, file + ": not a FeatureCollection with features");
        return document.value(kFeatures).toArray();
    }

    [[nodiscard]] TrackPath PathOf(const QJsonObject& feature) const {
        const QJsonObject geometry = feature.value(kGeometry).toObject();
        if (feature.value(kType) != kFeature || geometry.value(kType) != kLine)
            Fail("not a Feature with a LineString");
        const QJsonObject properties = feature.value(kProperties).toObject();
        if (properties.contains(kTrack) && properties.value(kTrack) != QJsonValue(index))
            Fail("its track is not " + std::to_string(index));
        const QJsonArray coordinates = geometry.value(kCoordinates).toArray();
        if (coordinates.isEmpty())
            Fail("no coordinates");
        TrackPath path;
        for (int point = 0; point < coordinates.size(); ++point) {
            PathPoint next;
            next.position = PositionOf(coordinates[point].toArray(), point);
            for (const Parameter& parameter : Parameters())
                if (properties.contains(parameter.name))
                    next.*parameter.ofPoint =
                        ValueAt(properties.value(parameter.name), point, coordinates.size(), parameter.name);
            path.AppendPoint(next);
        }
        return path;
    }

    [[nodiscard]] QPointF PositionOf(const QJsonArray& place, int point) const {
        if (place.size() != 2 || !place[0].isDouble() || !place[1].isDouble())
            Fail("point " + std::to_string(point) + " is not a pair of numbers");
        const QPointF position = NormalisedPoint({place[0].toDouble(), place[1].toDouble()}, world);
        if (!std::isfinite(position.x()) || !std::isfinite(position.y()))
            Fail("point " + std::to_string(point) + " has no place in the track");
        return position;
    }

    [[nodiscard]] int ValueAt(const QJsonValue& values, int point, int points, const QString& name) const {
        const QJsonArray list = values.toArray();
        if (values.isArray() && list.size() != points)
            Fail(name.toStdString() + " has " + std::to_string(list.size()) + " entries for " +
                 std::to_string(points) + " points");
        const double value = (values.isArray() ? list[point] : values).toDouble(std::nan(""));
        if (!(value >= std::numeric_limits<std::int32_t>::min() &&
              value <= std::numeric_limits<std::int32_t>::max() && value == std::floor(value)))
            Fail(name.toStdString() + " is not an integer");
        return static_cast<int>(value);
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        throw Failure(ExitCode::Unreadable, file + ": feature " + std::to_string(index) + ": " + reason);
    }

    std::string file;
    WorldTransform world;
    int index = 0; ///< of the feature, from 0
};

} // namespace

std::string PathsAsJson(const std::vector<TrackPath>& paths, const WorldTransform& world) {
    QJsonArray features;
    for (std::size_t path = 0; path < paths.size(); ++path)
        features.append(FeatureOf(paths[path], static_cast<int>(path), world));
    const QJsonObject collection{{kType, kCollection}, {kFeatures, features}};
    return QJsonDocument(collection).toJson(QJsonDocument::Indented).toStdString();
}

std::vector<TrackPath> PathsFromJson(const std::string& file, const WorldTransform& world) {
    RequireFile(file);
    return JsonPathsReader(file, world).Read();
}
