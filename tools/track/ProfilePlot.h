#pragma once

#include "tools/track/HeightProfile.h"

#include <QImage>
#include <QSize>
#include <QString>

/// Draws a profile as a curve over the distance, with a line at each point of the path and gaps where there
/// is no height. @pre no application object exists: it creates one, for the fonts
QImage DrawProfile(const HeightProfile& profile, const QString& title, const QSize& size);
