#include "Desktop.h"

#include <QApplication>
#include <QFont>
#include <QLocale>
#include <QPalette>
#include <QStyleFactory>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace {

constexpr std::array kScales = {"125", "150", "175", "200"};
constexpr std::array kOthers = {"plain", "dark", "comma", "right-to-left", "large-fonts"};

bool IsScale(const std::string& name) {
    return std::find(kScales.begin(), kScales.end(), name) != kScales.end();
}

void Darken() {
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QPalette dark(QColor(45, 45, 48));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Highlight, QColor(42, 100, 160));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(role, QColor(230, 230, 230));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        dark.setColor(QPalette::Disabled, role, QColor(120, 120, 120));
    QApplication::setPalette(dark);
}

} // namespace

Desktop::Desktop(std::string name) : name(std::move(name)) {
    if (!IsScale(this->name) && std::find(kOthers.begin(), kOthers.end(), this->name) == kOthers.end())
        throw std::runtime_error("there is no desktop \"" + this->name + "\"");
}

void Desktop::Prepare() const {
    // Dialogs that a system brings with it have no widgets to look for.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    if (IsScale(name))
        qputenv("QT_SCALE_FACTOR", QByteArray::number(std::stoi(name) / 100.0));
}

void Desktop::Apply() {
    if (name == "dark")
        Darken();
    if (name == "right-to-left")
        QApplication::setLayoutDirection(Qt::RightToLeft);
    if (name == "comma") {
        locale = std::make_unique<CommaLocale>();
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    }
    if (name == "large-fonts") {
        QFont font = QApplication::font();
        font.setPointSizeF(font.pointSizeF() * 1.6);
        QApplication::setFont(font);
    }
}
