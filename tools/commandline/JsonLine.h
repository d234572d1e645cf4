#pragma once

#include <QJsonObject>

#include <string>

/// An object on a line of its own: what every command prints with --json.
std::string JsonLine(const QJsonObject& object);
