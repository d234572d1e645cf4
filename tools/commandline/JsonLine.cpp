#include "tools/commandline/JsonLine.h"

#include <QJsonDocument>

std::string JsonLine(const QJsonObject& object) {
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString() + '\n';
}
