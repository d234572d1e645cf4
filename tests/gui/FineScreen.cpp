#include <QByteArray>

namespace {

/// Before the program has its application object: every widget has two device pixels a pixel.
[[maybe_unused]] const bool fine = qputenv("QT_SCALE_FACTOR", QByteArrayLiteral("2"));

} // namespace
