#pragma once

#include "tools/track/HeightProfile.h"

#include <QImage>
#include <QSize>
#include <QString>

/// A profile as a curve over the distance, with a mark at each point of the path; the curve is interrupted
/// where there is no height. Makes an application object for the fonts, so there must be none.
QImage DrawProfile(const HeightProfile& profile, const QString& title, const QSize& size);
